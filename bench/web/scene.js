// The picture that all draw: a photo of 12 megapixels under a thousand shapes, on a phone's screen.

export const screen = { width: 390, height: 844, scale: 3 };
export const photoSize = { width: 3000, height: 4000 };
// As large as the screen's width allows.
export const photoPlace = { x: 0, y: 162, width: 390, height: 520 };
export const steps = 120;
const count = 1000;
// The shape that is dragged lies in the middle of the pile; nothing else is near its start.
export const draggedIndex = 500;
export const dragged = { kind: 0, x: 40, y: 625, endX: 120, endY: 705, width: 4, color: [1, 0.2, 0.2] };

const colors = [[1, 0.23, 0.19], [1, 0.8, 0], [0.3, 0.85, 0.39], [0, 0.48, 1], [1, 1, 1]];

// kind: 0 rectangle, 1 ellipse, 2 line, 3 arrow; points; the same at every call.
export function shapes() {
  let seed = 1;
  const next = (below) => {
    seed = (seed * 1103515245 + 12345) % 2147483648;
    return Math.floor(seed / 65536) % below;
  };
  return Array.from({ length: count }, (_, i) => {
    if (i === draggedIndex) return dragged;
    const x = 10 + next(300);
    const y = 170 + next(380);
    return { kind: i % 4, x, y, endX: x + 20 + next(50), endY: y + 20 + next(40), width: 2 + next(4),
      color: colors[next(colors.length)] };
  });
}

// Where the dragged shape is after so many steps: up and across the others.
export function pathOf(step) {
  return { x: dragged.x + step * 2, y: dragged.y - step * 3 };
}

// The photo as a file, made of a smaller one.
export async function photoFile() {
  const small = await createImageBitmap(await (await fetch('/photos/rocket.jpg')).blob());
  const canvas = new OffscreenCanvas(photoSize.width, photoSize.height);
  canvas.getContext('2d').drawImage(small, 0, 0, photoSize.width, photoSize.height);
  return canvas.convertToBlob({ type: 'image/jpeg', quality: 0.9 });
}

export const css = (color) => `rgb(${color.map((part) => Math.round(part * 255)).join()})`;
