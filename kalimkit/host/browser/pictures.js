// Pictures that come into the editor and go out of it.

// Of names of files that are sent, by their types.
export const endings = { 'image/png': 'png', 'image/jpeg': 'jpg', 'image/webp': 'webp' };

// What drawImage takes gives no pixels back once something is in it that another site keeps to itself.
function isReadable(bitmap) {
  const pixel = document.createElement('canvas').getContext('2d');
  pixel.drawImage(bitmap, 0, 0, 1, 1);
  try {
    pixel.getImageData(0, 0, 1, 1);
    return true;
  } catch {
    return false;
  }
}

async function bitmapOf(picture) {
  try {
    return await createImageBitmap(picture, {
      imageOrientation: 'from-image',
      colorSpaceConversion: 'default',
    });
  } catch (error) {
    if (!picture?.name) throw error;
    throw new DOMException(`${picture.name}: ${error.message}`, error.name);
  }
}

// A picture file, or anything else that createImageBitmap takes, upright and in sRGB. Rejects, with the
// file's name, when the browser cannot read it, or may not.
export async function decode(picture) {
  const bitmap = await bitmapOf(picture);
  if (isReadable(bitmap)) return bitmap;
  bitmap.close();
  throw new DOMException('The site of this picture does not let the page read it', 'SecurityError');
}

export function tooLarge({ width, height }) {
  return new RangeError(`This browser has no room for a picture of ${width} x ${height} pixels`);
}

// What drawImage takes, as a Blob; what is transparent shows white in a JPEG. It is read before this
// returns.
export function encode(source, type, quality) {
  const { width, height } = source;
  let canvas = source;
  if (!canvas.toBlob || type === 'image/jpeg') {
    canvas = document.createElement('canvas');
    canvas.width = width;
    canvas.height = height;
    const context = canvas.getContext('2d');
    if (type === 'image/jpeg') {
      context.fillStyle = '#fff';
      context.fillRect(0, 0, width, height);
    }
    context.drawImage(source, 0, 0);
  }
  return new Promise((resolve, reject) => {
    // Chromium encodes while it is idle, which it may be only after a frame.
    let frame = 0;
    const ask = () => {
      frame = requestAnimationFrame(ask);
    };
    ask();
    canvas.toBlob((blob) => {
      cancelAnimationFrame(frame);
      if (blob) resolve(blob);
      else reject(tooLarge({ width, height }));
    }, type, quality);
  });
}

// Gives the user a file; the browser may change its name.
export function download(blob, name) {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  // Some browsers read it only after this has returned.
  setTimeout(() => URL.revokeObjectURL(link.href), 60000);
}

// Has the user choose a picture's file, in answer to what the user did. Returns what takes the question
// back; answer(file), null for none. Safari opens only what is in the page.
export function askForFile(element, answer) {
  const picker = document.createElement('input');
  picker.type = 'file';
  picker.accept = 'image/*';
  picker.hidden = true;
  element.after(picker);
  // They would reach listeners of the page.
  for (const type of ['click', 'input', 'change', 'cancel']) {
    picker.addEventListener(type, (event) => event.stopPropagation());
  }
  const end = (file) => {
    picker.remove();
    answer(file);
  };
  picker.addEventListener('cancel', () => end(null));
  picker.addEventListener('change', () => end(picker.files[0] ?? null));
  picker.click();
  return () => picker.remove();
}
