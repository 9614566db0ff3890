// The editor on a <canvas> element of a page: see KalimEditor.

import { instantiate } from '../../backend/html/instance.js';
import { nameOf } from './keys.js';
import { Pointers } from './pointers.js';
import { setSetting, setting } from './settings.js';
import { Typing } from './typing.js';

export const Pen = {
  mosaic: 0,
  text: 1,
  freehand: 2,
  rectangle: 3,
  line: 4,
  ellipse: 5,
  arrow: 6,
};

const exportScales = { screen: 0, picture: 1, view: 2 };
// What is due sooner than this, in seconds, waits for the next frame.
const nearFrame = 0.02;
// Ticks of the library's clock and frames of the screen drift apart; one that is nearly due is done.
const frameTolerance = 0.005;

// "#RRGGBB" or "#RRGGBBAA" as a number; throws for any other text.
function packedColor(color) {
  if (!/^#([0-9a-f]{6}|[0-9a-f]{8})$/i.test(color)) {
    throw new TypeError(`"${color}" is no colour such as #FF3B30 or #FF3B3080`);
  }
  return parseInt(color.slice(1).padEnd(8, 'f'), 16) >>> 0;
}

// A picture file, or anything else that createImageBitmap takes, upright and in sRGB.
function decode(picture) {
  return createImageBitmap(picture, {
    imageOrientation: 'from-image',
    colorSpaceConversion: 'default',
  });
}

// What drawImage takes, as a Blob. It is read before this returns.
function encode(source, type, quality) {
  let canvas = source;
  if (!canvas.toBlob) {
    canvas = document.createElement('canvas');
    canvas.width = source.width;
    canvas.height = source.height;
    canvas.getContext('2d').drawImage(source, 0, 0);
  }
  return new Promise((resolve) => canvas.toBlob(resolve, type, quality));
}

// Tells its listeners
//   confirm  the user sent the picture: detail.blob is it with all that was drawn, null for nothing
//   close    the user closed the editor; nothing is to be kept
//   change   canUndo, canRedo or toolCount has become another
// The editor stays until the page calls dismiss() or destroy().
export class KalimEditor extends EventTarget {
  #element;
  #options;
  #exports;
  #heap;
  #drawing;
  #screen;
  #pointers;
  #typing;
  #start = performance.now();
  #size = { width: 0, height: 0, scale: 0 };
  // How many pictures the page has asked for.
  #asked = 0;
  // Values by the module's operations that take them: what waits for the editor to appear.
  #choices = new Map();
  #history = 0;
  #frame = 0;
  #timer = 0;
  #clipboard = '';
  #picker;
  #listening = new AbortController();
  #observer;

  // element: a <canvas> that the page has given a size by its style; it may change. Options:
  //   wasm      where the module is, or the module itself; beside this script by default
  //   language  of the texts, such as 'en-GB'; the browser's by default. All but Chinese are English
  //   strings   other texts, by the Chinese ones
  //   type, quality           of the picture that is sent, as of HTMLCanvasElement.toBlob
  //   exportsAtPictureScale   false for a picture that is as large as it is on the screen
  static async create(element, options = {}) {
    const editor = new KalimEditor(element, options);
    await editor.#load(options.wasm ?? new URL('./kalimkit.wasm', import.meta.url));
    return editor;
  }

  constructor(element, options) {
    super();
    this.#element = element;
    this.#options = {
      language: navigator.language,
      strings: {},
      type: 'image/png',
      quality: 0.92,
      exportsAtPictureScale: true,
      ...options,
    };
    this.#screen = element.getContext('2d');
  }

  // Gives everything back; the editor is not used any more.
  destroy() {
    ++this.#asked;
    this.#listening.abort();
    this.#observer.disconnect();
    this.#pointers.stop();
    this.#exports.destroy();
    this.#typing.leave();
    this.#picker?.remove();
    cancelAnimationFrame(this.#frame);
    clearTimeout(this.#timer);
    this.#exports = null;
  }

  // ---- the picture

  // Opens a new editor of a picture: a file, or anything else that createImageBitmap takes. Rejects
  // when the browser cannot read it, and nothing is lost then. Answers whether the picture is shown:
  // not when another has been asked for meanwhile.
  async open(picture) {
    return this.#take(picture, (id) => this.#call('open', id, this.#options.exportsAtPictureScale));
  }

  // Shows it in the editor that is open, which asks the user first when something was drawn, and
  // says when the browser cannot read it.
  async offer(picture) {
    try {
      await this.#take(picture, (id) => this.#call('offer', id));
    } catch {
      if (this.#exports) this.#call('offer', 0);
    }
  }

  // Takes the editor away; the canvas is empty until the next open().
  dismiss() {
    ++this.#asked;
    this.#call('dismiss');
  }

  // Of the picture that is sent from now on.
  setSending(type, quality) {
    this.#options = { ...this.#options, type, quality };
  }

  // Of fingers whose end nobody will hear of, as the canvas is moved in the page.
  cancelTouches() {
    this.#pointers.cancel();
  }

  get isOpen() {
    return this.#exports.is_open() !== 0;
  }

  // Has the user choose another picture by a file input; in answer to what the user did.
  clickPickImage() {
    this.#call('click_pick_image');
  }

  // Picture and drawings as a Blob, at the screen's pixels per point or, with scale 'picture', one
  // pixel for each of the picture; 'view' is what the canvas shows. Null when there is nothing.
  async exportImage({ scale = 'screen', type = 'image/png', quality = 0.92 } = {}) {
    if (!(scale in exportScales)) throw new TypeError(`"${scale}" is no scale of an export`);
    const picture = this.#call('export_picture', exportScales[scale]);
    if (!picture) return null;
    const encoded = encode(this.#drawing.sourceOf(picture), type, quality);
    this.#exports.end_export();
    return encoded;
  }

  exportImageAtPictureScale(options) {
    return this.exportImage({ ...options, scale: 'picture' });
  }

  // ---- instead of the user; what is chosen while no editor has appeared waits for the next one

  choosePen(pen) {
    this.#choose('choose_pen', pen);
  }

  chooseColor(color) {
    this.#choose('choose_color', packedColor(color));
  }

  // Points.
  chooseLineWidth(width) {
    this.#choose('choose_line_width', width);
  }

  // Of the close button, or of the one that sends.
  setTopNavigationItemTitle(isCloseButton, title) {
    this.#call('set_title', isCloseButton, this.#put(title));
  }

  // As the close button does: asks first when something was drawn.
  askToClose() {
    this.#call('ask_to_close');
  }

  // Both answer whether anything happened.
  undo() {
    return this.#call('undo') !== 0;
  }

  redo() {
    return this.#call('redo') !== 0;
  }

  get canUndo() {
    return (this.#exports.history() & 1) !== 0;
  }

  get canRedo() {
    return (this.#exports.history() & 2) !== 0;
  }

  // How many things are drawn.
  get toolCount() {
    return this.#exports.tool_count();
  }

  // ---- the module

  async #load(wasm) {
    this.#typing = new Typing(this.#element, {
      insert: (text) => this.#call('insert_text', this.#put(text)),
      replace: (kept, lost, text) => {
        const begin = this.#heap.encode(kept).length;
        const end = begin + this.#heap.encode(lost).length;
        this.#call('replace_text', begin, end, this.#put(text));
      },
      compose: (text) => {
        const length = this.#put(text);
        this.#call('compose_text', length, length, length);
      },
      press: (key, isRepeated) => this.#press(key, isRepeated),
    });
    await this.#instantiate(wasm);
    this.#measure();
    const { width, height, scale } = this.#size;
    this.#call('create', width, height, scale, this.#put(this.#options.language));
    this.#pointers = new Pointers(this.#element, {
      fingers: (...event) => this.#touched(...event),
      pan: (phase, button, place, time) =>
        this.#callAt(time, 'pan', phase, button, ...this.#pointOf(place)) !== 0,
      zoom: (place, factor, time) => this.#callAt(time, 'zoom', ...this.#pointOf(place), factor),
    });
    this.#watch();
    this.#watchKeys();
  }

  async #instantiate(wasm) {
    const { exports, heap, drawing } = await instantiate(wasm, (made) => this.#imports(made));
    this.#exports = exports;
    this.#heap = heap;
    this.#drawing = drawing;
  }

  #imports({ heap, drawing }) {
    const writeWhole = (text, out, room) => {
      const bytes = heap.encode(text);
      heap.bytes.set(bytes.subarray(0, room), out);
      return bytes.length;
    };
    return {
      present: (surface, x, y, width, height) => {
        this.#screen.clearRect(x, y, width, height);
        this.#screen.drawImage(drawing.sourceOf(surface), x, y, width, height, x, y, width, height);
      },
      wall_clock: () => Date.now() / 1000,
      localized: (key, length, out, room) => {
        const text = this.#options.strings[heap.text(key, length)];
        return text === undefined ? -1 : writeWhole(text, out, room);
      },
      clipboard_read: (out, room) => writeWhole(this.#clipboard, out, room),
      clipboard_write: (at, length) => {
        this.#clipboard = heap.text(at, length);
        // Browsers may refuse; the text is still there for this editor.
        navigator.clipboard?.writeText(this.#clipboard).catch(() => {});
      },
      text_focused: (at, length, begin, end, isComposing, x, y, height) =>
        this.#typing.focus({
          text: heap.text(at, length),
          begin: heap.text(at, begin).length,
          end: heap.text(at, end).length,
          x,
          y,
          height,
        }),
      text_left: () => this.#typing.leave(),
      user_default: (key, length) => {
        const value = setting(heap.text(key, length));
        return value === undefined ? -1 : Number(value);
      },
      set_user_default: (key, length, value) => setSetting(heap.text(key, length), value !== 0),
      pick_image: () => this.#pick(),
      on_confirm: (picture) => this.#confirmed(picture),
      on_close: () => this.#tell(new Event('close')),
      copy_picture: (picture) => this.#copy(picture),
    };
  }

  // Listeners may take the editor away, which its own work does not expect.
  #tell(event) {
    queueMicrotask(() => this.dispatchEvent(event));
  }

  // Null without a picture.
  #encoded(picture, type, quality) {
    return picture ? encode(this.#drawing.sourceOf(picture), type, quality) : Promise.resolve(null);
  }

  async #confirmed(picture) {
    const { type, quality } = this.#options;
    const blob = await this.#encoded(picture, type, quality);
    this.dispatchEvent(new CustomEvent('confirm', { detail: { blob } }));
  }

  #copy(picture) {
    const blob = this.#encoded(picture, 'image/png');
    queueMicrotask(async () => {
      try {
        await navigator.clipboard.write([new ClipboardItem({ 'image/png': blob })]);
      } catch {
        if (this.#exports) this.#call('copy_failed');
      }
    });
  }

  async #take(picture, show) {
    const order = ++this.#asked;
    const bitmap = await decode(picture);
    if (order !== this.#asked) {
      bitmap.close();
      return false;
    }
    show(this.#drawing.addPicture(bitmap));
    return true;
  }

  // Safari opens only what is in the page.
  #pick() {
    this.#picker?.remove();
    const picker = document.createElement('input');
    this.#picker = picker;
    picker.type = 'file';
    picker.accept = 'image/*';
    picker.hidden = true;
    this.#element.after(picker);
    const answer = (id) => {
      picker.remove();
      if (this.#exports && picker === this.#picker) this.#call('picked', id);
    };
    picker.addEventListener('cancel', () => answer(-1));
    picker.addEventListener('change', () =>
      decode(picker.files[0]).then((bitmap) => answer(this.#drawing.addPicture(bitmap)), () => answer(0)));
    picker.click();
  }

  #call(name, ...values) {
    const result = this.#exports[name](...values);
    this.#makeChoices();
    this.#watchHistory();
    this.#schedule();
    return result;
  }

  #choose(name, value) {
    this.#choices.set(name, value);
    this.#makeChoices();
    this.#schedule();
  }

  #makeChoices() {
    if (!this.#choices.size || !this.#exports.has_appeared()) return;
    const choices = [...this.#choices];
    this.#choices.clear();
    for (const [name, value] of choices) this.#exports[name](value);
  }

  #watchHistory() {
    const history = this.#exports.history();
    if (history === this.#history) return;
    this.#history = history;
    this.#tell(new Event('change'));
  }

  // For what happened at that moment, milliseconds.
  #callAt(time, name, ...values) {
    this.#exports.advance(this.#clock(time));
    return this.#call(name, ...values);
  }

  // Puts a text where the module looks for it; the number of its bytes.
  #put(text) {
    const bytes = this.#heap.encode(text);
    const at = this.#exports.buffer(bytes.length);
    this.#heap.bytes.set(bytes, at);
    return bytes.length;
  }

  // ---- touches

  #pointOf({ x, y }) {
    return [x * this.#size.width, y * this.#size.height];
  }

  #touched(phase, fingers, time) {
    this.#exports.advance(this.#clock(time));
    const at = this.#exports.buffer(fingers.length * 24) / 8;
    fingers.forEach((finger, i) =>
      this.#heap.doubles.set([finger.id, ...this.#pointOf(finger)], at + 3 * i));
    this.#call('fingers', phase, fingers.length);
  }

  // ---- keys while no text has the focus

  #press(key, isRepeated) {
    return this.#call('press_key', this.#put(key), isRepeated) !== 0;
  }

  #watchKeys() {
    const element = this.#element;
    const { signal } = this.#listening;
    const on = (type, listener) => element.addEventListener(type, listener, { signal });
    const release = (key) => this.#exports.release_key(this.#put(key));
    if (element.tabIndex < 0) element.tabIndex = 0;
    on('pointerdown', () => {
      if (!this.#typing.isActive) element.focus({ preventScroll: true });
    });
    on('keydown', (event) => {
      const name = nameOf(event);
      if (name && this.#press(name, event.repeat)) event.preventDefault();
    });
    on('keyup', (event) => {
      const name = nameOf(event);
      if (name) release(name);
    });
    // Of what is released elsewhere nobody hears.
    on('blur', () => release('space'));
    on('paste', (event) => {
      const file = [...event.clipboardData.files].find(({ type }) => type.startsWith('image/'));
      if (!file) return;
      event.preventDefault();
      this.offer(file);
    });
  }

  // ---- time

  #clock(milliseconds) {
    return (milliseconds - this.#start) / 1000;
  }

  // Frames are asked for only while something moves or waits to be shown.
  #schedule() {
    clearTimeout(this.#timer);
    this.#timer = 0;
    const due = this.#exports.next_due();
    if (due < 0 || this.#frame) return;
    const delay = due - this.#clock(performance.now());
    if (delay < nearFrame) {
      this.#frame = requestAnimationFrame((time) => {
        this.#frame = 0;
        this.#call('advance', this.#clock(time) + frameTolerance);
      });
    } else {
      this.#timer = setTimeout(() => this.#call('advance', this.#clock(performance.now())),
        delay * 1000);
    }
  }

  // ---- size and keyboard

  // Whether it has changed.
  #measure() {
    const { clientWidth, clientHeight } = this.#element;
    const width = Math.max(clientWidth, 1);
    const height = Math.max(clientHeight, 1);
    const scale = devicePixelRatio || 1;
    const before = this.#size;
    if (width === before.width && height === before.height && scale === before.scale) return false;
    this.#size = { width, height, scale };
    // A product of decimal fractions may be a little more than it should.
    this.#element.width = Math.ceil(width * scale - 1e-6);
    this.#element.height = Math.ceil(height * scale - 1e-6);
    return true;
  }

  #resized() {
    const { width, height, scale } = this.#measure() ? this.#size : {};
    if (width) this.#call('resize', width, height, scale);
  }

  #watch() {
    const { signal } = this.#listening;
    this.#observer = new ResizeObserver(() => this.#resized());
    this.#observer.observe(this.#element);
    const watchScale = () => {
      this.#resized();
      matchMedia(`(resolution: ${devicePixelRatio}dppx)`)
        .addEventListener('change', watchScale, { once: true, signal });
    };
    watchScale();
    for (const type of ['resize', 'scroll']) {
      window.visualViewport?.addEventListener(type, () => this.#keyboardMoved(), { signal });
    }
  }

  // The keyboard is what hides the canvas's lower part while a text is edited; a page that is zoomed
  // in hides it, too.
  #keyboardMoved() {
    const { offsetTop, height, scale } = window.visualViewport;
    if (!this.#typing.isActive || Math.abs(scale - 1) > 0.01) return;
    const hidden = this.#element.getBoundingClientRect().bottom - (offsetTop + height);
    this.#call('keyboard', Math.min(Math.max(hidden, 0), this.#size.height));
  }
}
