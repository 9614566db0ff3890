// Canvases that are not shown: making them, giving them back, shrinking what they hold.

import { prepareText } from './text.js';

// Pixels from which on a browser may refuse a canvas without a word.
const doubtfulArea = 1 << 24;
const doubtfulSide = 1 << 14;

function isUsable(context) {
  const { width, height } = context.canvas;
  if (width * height < doubtfulArea && Math.max(width, height) < doubtfulSide) return true;
  const [x, y] = [width - 1, height - 1];
  try {
    context.fillRect(x, y, 1, 1);
    const isDrawn = context.getImageData(x, y, 1, 1).data[3] === 255;
    context.clearRect(x, y, 1, 1);
    return isDrawn;
  } catch {
    return false;
  }
}

// Of a clear canvas; null where the browser has none of this size.
export function makeContext(width, height) {
  const canvas = document.createElement('canvas');
  canvas.width = width;
  canvas.height = height;
  const context = canvas.getContext('2d');
  if (context && isUsable(context)) return prepareText(context);
  release(canvas);
  return null;
}

// Browsers give the memory of a canvas back late unless it is made small.
export function release(source) {
  if (source.close) return source.close();
  source.width = 0;
  source.height = 0;
}

// Half as many pixels in the directions asked for, each the average of those that it stands for. What is
// left over of an odd number at the end is stretched. Null where there is no room for it.
function halve(source, width, height, isAcross, isDown) {
  const half = (side, isHalved) => (isHalved ? side / 2 : side);
  const [w, h] = [half(width, isAcross), half(height, isDown)];
  const context = makeContext(Math.ceil(w), Math.ceil(h));
  if (!context) return null;
  const { canvas } = context;
  context.imageSmoothingQuality = 'low';
  context.drawImage(source, 0, 0, canvas.width, canvas.height);
  context.beginPath();
  context.rect(0, 0, Math.floor(w), Math.floor(h));
  context.clip();
  context.globalCompositeOperation = 'copy';
  context.drawImage(source, 0, 0, w, h);
  return canvas;
}

// A canvas with the source halved as often as asked for in each direction, or null. The source stays.
export function shrink(source, width, height, across, down) {
  let canvas = source;
  for (let i = 0; i < Math.max(across, down); ++i) {
    const halved = halve(canvas, width, height, i < across, i < down);
    if (canvas !== source) release(canvas);
    if (!halved) return null;
    canvas = halved;
    ({ width, height } = canvas);
  }
  return canvas;
}

// Canvases that are needed again and again for a moment, kept as far as they are small together.
export class LayerPool {
  static #pixelsKept = 1 << 23;
  #free = [];

  // Yields the context of a cleared canvas at least as large as asked for, or null.
  take(width, height) {
    const fits = ({ canvas }) => canvas.width >= width && canvas.height >= height &&
      canvas.width * canvas.height <= 4 * width * height;
    const at = this.#free.findIndex(fits);
    const context = at < 0 ? makeContext(width, height) : this.#free.splice(at, 1)[0];
    context?.save();
    context?.clearRect(0, 0, context.canvas.width, context.canvas.height);
    return context;
  }

  give(context) {
    context.restore();
    this.#free.push(context);
    const pixels = () => this.#free.reduce((sum, { canvas }) => sum + canvas.width * canvas.height, 0);
    while (pixels() > LayerPool.#pixelsKept) release(this.#free.shift().canvas);
  }

  drop() {
    for (const { canvas } of this.#free.splice(0)) release(canvas);
  }
}
