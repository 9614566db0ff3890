// Each makes the scene in an element and answers with
//   move(step)   drags the shape on; the script's work is done when it returns
//   drop()       the shape is let go; what lies above it does so again
//   canvases     what has to be rasterised before the step can be seen

import { css, dragged, draggedIndex, pathOf, photoPlace, screen, shapes } from './scene.js';

// The pointer holds the shape in the middle of its left edge, that much below its corner.
const grip = (dragged.endY - dragged.y) / 2;

const edge = (shape) => ({
  stroke: css(shape.color),
  strokeWidth: shape.width,
});

// ---- KalimKit: the pointer's own events, as a browser would send them

export async function kalimkit(element, photo) {
  const { KalimEditor } = await import('/kalimkit/host/browser/kalim.js');
  const canvas = document.createElement('canvas');
  canvas.style.cssText = `display: block; width: ${screen.width}px; height: ${screen.height}px`;
  element.append(canvas);
  const bytes = await (await fetch('/bench-page.wasm')).arrayBuffer();
  let calls;
  const instantiate = WebAssembly.instantiate;
  WebAssembly.instantiate = async (...values) => {
    const made = await instantiate(...values);
    calls = (made.instance ?? made).exports;
    return made;
  };
  const editor = await KalimEditor.create(canvas, { wasm: bytes });
  WebAssembly.instantiate = instantiate;
  await editor.open(photo);
  await new Promise((done) => setTimeout(done, 1500));
  for (const { kind, x, y, endX, endY, width, color } of shapes()) {
    calls.bench_add(kind, x, y, endX, endY, width, ...color);
  }
  const send = (type, { x, y }) => {
    const place = canvas.getBoundingClientRect();
    canvas.dispatchEvent(new PointerEvent(type, { pointerId: 1, pointerType: 'touch', isPrimary: true,
      button: 0, buttons: 1, bubbles: true, clientX: place.x + x, clientY: place.y + y + grip }));
  };
  canvas.setPointerCapture = () => {};
  send('pointerdown', pathOf(0));
  // A finger that moves far enough drags.
  send('pointermove', pathOf(5));
  const isHeld = () => calls.bench_selected(dragged.endX - dragged.x) === draggedIndex;
  if (!isHeld()) throw new Error('The shape was not taken hold of');
  return {
    move: (step) => send('pointermove', pathOf(step)),
    drop() {
      send('pointerup', pathOf(120));
      if (!isHeld()) throw new Error('Its size or its place among the others has changed');
    },
    canvases: () => [canvas],
  };
}

// ---- konva

function konvaShape({ Konva }, shape) {
  const { kind, x, y, endX, endY } = shape;
  const common = { x, y, ...edge(shape) };
  const width = endX - x;
  const height = endY - y;
  if (kind === 0) return new Konva.Rect({ ...common, width, height });
  if (kind === 1) {
    return new Konva.Ellipse({ ...common, x: x + width / 2, y: y + height / 2, radiusX: width / 2,
      radiusY: height / 2 });
  }
  if (kind === 2) return new Konva.Line({ ...common, points: [0, 0, width, height] });
  return new Konva.Arrow({ ...common, points: [0, 0, width, height], fill: css(shape.color) });
}

async function konvaScene(element, photo) {
  const { Konva } = window;
  Konva.pixelRatio = screen.scale;
  const image = await createImageBitmap(photo);
  const stage = new Konva.Stage({ container: element, width: screen.width, height: screen.height });
  const all = shapes().map((shape) => konvaShape(window, shape));
  return { Konva, image, stage, all };
}

const konvaCanvas = (layer) => layer.getNativeCanvasElement();
const place = (shape, step) => shape.position(pathOf(step));

// Here everything lies on one layer.
export async function konva(element, photo) {
  const { Konva, image, stage, all } = await konvaScene(element, photo);
  const layer = new Konva.Layer();
  layer.add(new Konva.Image({ image, ...photoPlace }), ...all);
  stage.add(layer);
  return {
    move(step) {
      place(all[draggedIndex], step);
      layer.draw();
    },
    drop() {},
    canvases: () => [konvaCanvas(layer)],
  };
}

// The photo and the dragged shape on layers of their own, and nothing that listens needlessly.
export async function konvaLayers(element, photo) {
  const { Konva, image, stage, all } = await konvaScene(element, photo);
  const [below, middle, above] = [0, 1, 2].map(() => new Konva.Layer({ listening: false }));
  below.add(new Konva.Image({ image, ...photoPlace }));
  middle.add(...all);
  stage.add(below, middle, above);
  const moved = all[draggedIndex];
  moved.moveTo(above);
  middle.draw();
  return {
    move(step) {
      place(moved, step);
      above.draw();
    },
    drop() {
      moved.moveTo(middle);
      moved.zIndex(draggedIndex);
      middle.draw();
      above.draw();
    },
    canvases: () => [konvaCanvas(above)],
    canvasesOfDrop: () => [konvaCanvas(above), konvaCanvas(middle)],
  };
}

// ---- fabric

function fabricShape({ fabric }, shape) {
  const { kind, x, y, endX, endY } = shape;
  const common = { left: x, top: y, originX: 'left', originY: 'top', fill: '', ...edge(shape) };
  const width = endX - x;
  const height = endY - y;
  if (kind === 0) return new fabric.Rect({ ...common, width, height });
  if (kind === 1) return new fabric.Ellipse({ ...common, rx: width / 2, ry: height / 2 });
  if (kind === 2) return new fabric.Line([x, y, endX, endY], common);
  const length = Math.hypot(width, height);
  const [along, across] = [[width / length, height / length], [-height / length, width / length]];
  const head = [1, -1].map((side) =>
    [endX - 10 * along[0] + side * 5 * across[0], endY - 10 * along[1] + side * 5 * across[1]]);
  return new fabric.Path(`M ${x} ${y} L ${endX} ${endY} L ${head[0]} L ${head[1]} L ${endX} ${endY}`,
    { ...edge(shape), fill: css(shape.color) });
}

async function fabricScene(element, photo, objectCaching) {
  const { fabric } = window;
  fabric.config.configure({ devicePixelRatio: screen.scale });
  if (objectCaching === false) {
    fabric.FabricObject.ownDefaults.objectCaching = false;
  }
  const node = document.createElement('canvas');
  element.append(node);
  const canvas = new fabric.Canvas(node, { width: screen.width, height: screen.height,
    renderOnAddRemove: false });
  const image = document.createElement('img');
  image.src = URL.createObjectURL(photo);
  await image.decode();
  canvas.add(new fabric.FabricImage(image, { left: photoPlace.x, top: photoPlace.y, originX: 'left',
    originY: 'top', scaleX: photoPlace.width / image.naturalWidth,
    scaleY: photoPlace.height / image.naturalHeight }));
  const all = shapes().map((shape) => fabricShape(window, shape));
  canvas.add(...all);
  canvas.renderAll();
  return {
    move(step) {
      const to = pathOf(step);
      all[draggedIndex].set({ left: to.x, top: to.y });
      all[draggedIndex].setCoords();
      canvas.renderAll();
    },
    drop() {},
    canvases: () => [node],
  };
}

export const fabric = (element, photo) => fabricScene(element, photo);
export const fabricWithoutCache = (element, photo) => fabricScene(element, photo, false);
