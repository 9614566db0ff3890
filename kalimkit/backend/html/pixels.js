// The pixels of pictures, between canvases and the library, which keeps them as blue, green, red and
// alpha, premultiplied. They go in strips, so that a photo does not need its size again and again.

import { makeContext, release } from './canvases.js';

const stripPixels = 1 << 20;

// Browsers keep premultiplied colours and tell straight ones; most round to the nearest of both, Firefox
// up to the one and down to the other. What to add to a colour, in levels, so that it comes out as it
// was: before it is rounded as a straight one, and before it is cut off as a premultiplied one.
function findRounding() {
  const context = makeContext(1, 1);
  const pixel = context.createImageData(1, 1);
  pixel.data.set([128, 0, 0, 2]);
  context.putImageData(pixel, 0, 0);
  const isUp = context.getImageData(0, 0, 1, 1).data[0] > 128;
  return isUp ? { straight: -0.499, premultiplied: 0.999 } : { straight: 0, premultiplied: 0.5 };
}

let known;
const rounding = () => (known ??= findRounding());

const rowsOf = (width, height) => Math.min(Math.max(Math.floor(stripPixels / width), 1), height);

// A canvas with the pixels that lie in `bytes` from `at` on; null where there is no room for it.
export function makePicture(bytes, at, width, height) {
  const context = makeContext(width, height);
  if (!context) return null;
  const rows = rowsOf(width, height);
  const offset = rounding().straight;
  for (let y = 0; y < height; y += rows) {
    const strip = context.createImageData(width, Math.min(rows, height - y));
    const to = strip.data;
    for (let i = 0; i < to.length; i += 4, at += 4) {
      const alpha = bytes[at + 3];
      const straight = alpha && 255 / alpha;
      to[i] = bytes[at + 2] * straight + offset;
      to[i + 1] = bytes[at + 1] * straight + offset;
      to[i + 2] = bytes[at] * straight + offset;
      to[i + 3] = alpha;
    }
    context.putImageData(strip, 0, y);
  }
  return context.canvas;
}

// Writes the source's pixels into `bytes`, from `at` on.
export function readPicture(source, width, height, bytes, at) {
  const rows = rowsOf(width, height);
  const strip = document.createElement('canvas');
  strip.width = width;
  strip.height = rows;
  const context = strip.getContext('2d', { willReadFrequently: true });
  const offset = rounding().premultiplied;
  for (let y = 0; y < height; y += rows) {
    context.clearRect(0, 0, width, rows);
    context.drawImage(source, 0, -y);
    const { data } = context.getImageData(0, 0, width, Math.min(rows, height - y));
    for (let i = 0; i < data.length; i += 4, at += 4) {
      const alpha = data[i + 3] / 255;
      bytes[at] = data[i + 2] * alpha + offset;
      bytes[at + 1] = data[i + 1] * alpha + offset;
      bytes[at + 2] = data[i] * alpha + offset;
      bytes[at + 3] = data[i + 3];
    }
  }
  release(strip);
}
