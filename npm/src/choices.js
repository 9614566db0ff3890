// Names and values that a page may choose, the same as those of the command line. Each throws for a
// value that is none.

import { Pen } from '../../kalimkit/host/browser/kalim.js';

const names = Object.keys(Pen);
const widest = 100;

export function penOf(name) {
  if (!names.includes(name)) throw new RangeError(`A tool is one of ${names.join(', ')}, not "${name}"`);
  return Pen[name];
}

export function rgbOf(color) {
  if (!/^#[0-9a-f]{6}$/i.test(color)) throw new RangeError(`A colour is such as #F63434, not "${color}"`);
  return color;
}

// Widths are points.
export function widthOf(value) {
  const width = Number(value);
  if (!(width >= 1 && width <= widest)) {
    throw new RangeError(`A line width is a number from 1 to ${widest}, not "${value}"`);
  }
  return width;
}
