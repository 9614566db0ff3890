// Names and values that a page may choose, the same as those of the command line. Each throws for a
// value that is none.

import { Pen } from '../../kalimkit/host/browser/kalim.js';

const names = Object.keys(Pen);
const widest = 100;
// No tool, but the bars show it.
const cropPen = 'crop';
const layouts = ['auto', 'phone', 'desk'];
const themes = ['light dark', 'dark light', 'light', 'dark'];

function oneOf(values, value, what) {
  if (!values.includes(value)) throw new RangeError(`${what} is one of ${values.join(', ')}, not "${value}"`);
  return value;
}

const words = (text) => text.split(/\s+/).filter(Boolean);

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

// ---- what is around the picture; lists have blanks between

export const penOnlyOf = (text) => oneOf(['on', 'off'], text, 'pen-only') === 'on';
export const layoutOf = (text) => oneOf(layouts, text, 'A layout');
export const themeOf = (text) => oneOf(themes, words(text).join(' '), 'A theme');
export const uiOf = (text) => oneOf(['none'], text, 'A user interface of the page\'s own');

export function pensOf(text) {
  return words(text).map((name) => oneOf([...names, cropPen], name, 'A pen'));
}

export function colorsOf(text) {
  return words(text).map((color) => rgbOf(color.replace(/^#(.)(.)(.)$/, '#$1$1$2$2$3$3')));
}

export function widthsOf(text) {
  return words(text).map(widthOf);
}
