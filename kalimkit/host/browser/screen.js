// The canvas that shows the editor: its size in the page, its pixels, and what covers it.

import { contentBox } from './box.js';

const sides = ['top', 'left', 'bottom', 'right'];

// How far a screen's corners, camera and gestures reach into the window, pixels of the page by side. What an
// element is told of it is a property of its own that the browser computes.
function safeAreaOf(element) {
  const style = getComputedStyle(element);
  return sides.map((side) => parseFloat(style.getPropertyValue(`--kalim-safe-${side}`)) || 0);
}

export class Screen {
  #element;
  #target;
  #context;
  #size = { width: 0, height: 0, scale: 0 };
  // The insets are points by side.
  #insets = [0, 0, 0, 0];
  // Pixels of the screen, as the browser has told; null where it does not.
  #told = null;
  #listening;
  #observer;
  #pageObserver = new ResizeObserver(() => this.#resized());

  // target: resized(), keyboardMoved(), and restored() when everything has to be drawn again.
  constructor(element, target) {
    this.#element = element;
    this.#target = target;
    this.#context = element.getContext('2d');
    if (!this.#context) throw new TypeError('The canvas has a context that is not 2d');
    for (const side of sides) {
      element.style.setProperty(`--kalim-safe-${side}`, `env(safe-area-inset-${side}, 0px)`);
    }
    this.#measure();
    this.#measureInsets();
  }

  // A size is points, and there are so many pixels for each.
  get size() {
    return this.#size;
  }

  // Of the size, what is to be left free at the top, left, bottom and right, points.
  get insets() {
    return this.#insets;
  }

  // Until stop(), after which it may be called again.
  watch() {
    this.#listening = new AbortController();
    const { signal } = this.#listening;
    this.#observer = new ResizeObserver(([entry]) => {
      const [box] = entry.devicePixelContentBoxSize ?? [];
      this.#told = box ? { width: box.inlineSize, height: box.blockSize } : null;
      this.#resized();
    });
    try {
      this.#observer.observe(this.#element, { box: 'device-pixel-content-box' });
    } catch {
      // Safari has no such box.
      this.#observer.observe(this.#element);
    }
    const watchScale = () => {
      this.#resized();
      matchMedia(`(resolution: ${devicePixelRatio}dppx)`)
        .addEventListener('change', watchScale, { once: true, signal });
    };
    watchScale();
    // The insets are of the window, so they also change with the place in it: what pushes the element
    // through the page scrolls something, or makes the page longer or shorter.
    this.#pageObserver.observe(document.documentElement);
    for (const type of ['resize', 'scroll']) {
      window.addEventListener(type, () => this.#resized(), { signal, passive: true, capture: true });
    }
    for (const type of ['resize', 'scroll']) {
      window.visualViewport?.addEventListener(type, () => this.#target.keyboardMoved(), { signal });
    }
    this.#element.addEventListener('contextrestored', () => this.#target.restored(), { signal });
    document.fonts?.addEventListener('loadingdone', () => this.#target.restored(), { signal });
  }

  stop() {
    this.#listening?.abort();
    this.#observer?.disconnect();
    this.#pageObserver.disconnect();
  }

  // Brings a rectangle of a surface, pixels, to the screen.
  present(source, x, y, width, height) {
    this.#context.clearRect(x, y, width, height);
    this.#context.drawImage(source, x, y, width, height, x, y, width, height);
  }

  // Points that the on-screen keyboard hides; null while the page is zoomed in, which hides some, too.
  get hiddenHeight() {
    const { offsetTop, height, scale } = window.visualViewport;
    if (Math.abs(scale - 1) > 0.01) return null;
    const { top, shownHeight } = contentBox(this.#element);
    const hidden = top + shownHeight - (offsetTop + height);
    return Math.min(Math.max(hidden, 0), this.#size.height);
  }

  // Whether it has changed. What is not displayed keeps the size that it had; the window's is the best
  // guess before it has one.
  #measure() {
    let { width, height } = contentBox(this.#element);
    const before = this.#size;
    const isHidden = !(width > 0 && height > 0);
    if (isHidden && before.width) return false;
    if (isHidden) [width, height] = [innerWidth || 1, innerHeight || 1];
    // By the page's own `zoom`, too, where the browser tells it.
    const scale = (devicePixelRatio || 1) * (this.#element.currentCSSZoom || 1);
    // What was told may be of another moment.
    const pixels = (length, told) =>
      Math.max(Math.abs(told - length * scale) <= 1 ? told : Math.round(length * scale), 1);
    const across = pixels(width, this.#told?.width);
    const down = pixels(height, this.#told?.height);
    this.#size = { width: across / scale, height: down / scale, scale };
    if (this.#size.width === before.width && this.#size.height === before.height &&
        scale === before.scale) return false;
    this.#element.width = across;
    this.#element.height = down;
    return true;
  }

  // Whether they have changed.
  #measureInsets() {
    const before = this.#insets;
    const box = this.#element.getBoundingClientRect();
    const free = [box.top, box.left, innerHeight - box.bottom, innerWidth - box.right];
    const isShown = box.width > 0 && box.height > 0;
    this.#insets = safeAreaOf(this.#element).map((inset, i) =>
      (isShown ? Math.min(Math.max(inset - free[i], 0), inset) : before[i]));
    return this.#insets.some((inset, i) => Math.abs(inset - before[i]) > 0.5);
  }

  #resized() {
    const isResized = this.#measure();
    if (this.#measureInsets() || isResized) this.#target.resized();
  }
}
