// How things are to look: what the user's system asks for, and the colours that the page's style gives.

const isDark = '(prefers-color-scheme: dark)';
const hasContrast = '(prefers-contrast: more), (forced-colors: active)';
const bothThemes = 'light dark';
const prefix = '--kalim-';

// In points; 0 where none is given.
const sizes = ['bar-size', 'button-size'];
const pointsOf = (text) => (/^\d+(\.\d+)?(px)?$/.test(text) ? parseFloat(text) : null);

// A colour of CSS as 0xRRGGBBAA; null for what is none.
function packedOf(text) {
  const pixel = new OffscreenCanvas(1, 1).getContext('2d');
  const readings = ['#000000', '#ffffff'].map((before) => {
    pixel.fillStyle = before;
    pixel.fillStyle = text;
    return pixel.fillStyle;
  });
  if (readings[0] !== readings[1]) return null;
  pixel.fillRect(0, 0, 1, 1);
  const [red, green, blue, alpha] = pixel.getImageData(0, 0, 1, 1).data;
  return ((red << 24) | (green << 16) | (blue << 8) | alpha) >>> 0;
}

export class Appearance {
  #element;
  #target;
  #theme = bothThemes;
  // The texts of the page's colours, by their names.
  #colors = new Map();
  #sizes = ',';
  #watching = null;

  // target: appearance(isDark, hasHighContrast), names() of the colours that there are, color(name, packed), with
  // null for none, sizes(bar, button) in points, 0 for none, done(), after some of them, and warn(error).
  constructor(element, target) {
    this.#element = element;
    this.#target = target;
  }

  // Until stop(), after which it may be called again.
  watch() {
    this.#watching = new AbortController();
    const { signal } = this.#watching;
    for (const query of [isDark, hasContrast]) {
      matchMedia(query).addEventListener('change', () => this.look(), { signal });
    }
    // Style sheets change without a sign; pages change these for them.
    const { host } = this.#element.getRootNode();
    const observer = new MutationObserver(() => this.#readColors());
    for (const node of [host, this.#element, document.documentElement, document.body]) {
      if (node) observer.observe(node, { attributes: true, attributeFilter: ['style', 'class'] });
    }
    signal.addEventListener('abort', () => observer.disconnect());
    this.look();
  }

  stop() {
    this.#watching?.abort();
  }

  // As the `color-scheme` of CSS: 'light', 'dark', or both, of which the user's system takes one.
  setTheme(theme) {
    this.#theme = theme ?? bothThemes;
    if (this.#watching) this.look();
  }

  // Colours may be known now that were not before.
  look() {
    const themes = this.#theme.split(/\s+/);
    const dark = themes.length > 1 ? matchMedia(isDark).matches : themes[0] === 'dark';
    this.#target.appearance(dark, matchMedia(hasContrast).matches);
    this.#readColors();
  }

  #readColors() {
    const style = getComputedStyle(this.#element);
    const names = this.#target.names();
    let isOther = names.length > 0 && this.#readSizes(style);
    for (const name of names) {
      const text = style.getPropertyValue(prefix + name).trim();
      if ((this.#colors.get(name) ?? '') === text) continue;
      this.#colors.set(name, text);
      const packed = text ? packedOf(text) : null;
      if (text && packed === null) this.#target.warn(new Error(`${prefix}${name}: "${text}" is no colour`));
      this.#target.color(name, packed);
      isOther = true;
    }
    if (isOther) this.#target.done();
  }

  // Whether they are others.
  #readSizes(style) {
    const texts = sizes.map((name) => style.getPropertyValue(prefix + name).trim());
    if (this.#sizes === texts.join()) return false;
    this.#sizes = texts.join();
    const points = texts.map(pointsOf);
    texts.forEach((text, i) => {
      if (text && points[i] === null) this.#target.warn(new Error(`${prefix}${sizes[i]}: "${text}" is no length in px`));
    });
    this.#target.sizes(...points.map((size) => size ?? 0));
    return true;
  }
}
