// The canvas on a <canvas> element of a page: see KalimCanvas.

import { instantiate } from '../../backend/html/instance.js';
import { Pointers } from './pointers.js';
import { Typing } from './typing.js';

export const Tool = {
  rectangle: 0,
  roundedRectangle: 1,
  ellipse: 2,
  text: 3,
  freehand: 4,
  mosaic: 5,
  line: 6,
  arrow: 7,
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

function colorText(packed) {
  return `#${(packed >>> 0).toString(16).padStart(8, '0').toUpperCase()}`;
}

export class KalimCanvas {
  #element;
  #delegate;
  #strings;
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
  #frame = 0;
  #timer = 0;
  #clipboard = '';
  #listening = new AbortController();
  #observer;

  // element: a <canvas> that the page has given a size by its style; it may change. Options:
  //   wasm      where the module is, or the module itself; beside this script by default
  //   delegate  an object with any of didDrawStarted(), seletedToolsStateChanged(hasSelection),
  //             currentSelectedToolsPropertyChangedColorLineWidth(type, color, lineWidth),
  //             canUndoStateChangedCanRedo(canUndo, canRedo) and alert(title, message)
  //   strings   the texts that the canvas shows, by the texts that it shows without them
  static async create(element, options = {}) {
    const canvas = new KalimCanvas(element, options);
    await canvas.#load(options.wasm ?? new URL('./kalimkit.wasm', import.meta.url));
    return canvas;
  }

  constructor(element, { delegate = {}, strings = {} }) {
    this.#element = element;
    this.#delegate = delegate;
    this.#strings = strings;
    this.#screen = element.getContext('2d');
  }

  // Gives everything back; the canvas is not used any more.
  destroy() {
    ++this.#asked;
    this.#listening.abort();
    this.#observer.disconnect();
    this.#pointers.stop();
    this.#typing.leave();
    cancelAnimationFrame(this.#frame);
    clearTimeout(this.#timer);
    this.#exports.destroy();
    this.#exports = null;
  }

  // ---- the picture

  // A picture file, or anything else that createImageBitmap takes. Forgets all that was drawn. Rejects
  // when the browser cannot read it, and nothing is lost then. Answers whether the picture is shown:
  // not when another has been asked for meanwhile.
  async open(picture) {
    const order = ++this.#asked;
    const bitmap = await createImageBitmap(picture, {
      imageOrientation: 'from-image',
      colorSpaceConversion: 'default',
    });
    if (order !== this.#asked) {
      bitmap.close();
      return false;
    }
    this.#call('set_picture', this.#drawing.addPicture(bitmap), 1);
    return true;
  }

  // Picture and drawings as a Blob, at the screen's pixels per point or, with scale 'picture', one
  // pixel for each of the picture; 'view' is what the canvas shows. Null when there is nothing.
  async exportImage({ scale = 'screen', type = 'image/png', quality = 0.92 } = {}) {
    if (!(scale in exportScales)) throw new TypeError(`"${scale}" is no scale of an export`);
    const picture = this.#call('export_picture', exportScales[scale]);
    if (!picture) return null;
    let source = this.#drawing.sourceOf(picture);
    if (!source.toBlob) {
      const copy = document.createElement('canvas');
      copy.width = source.width;
      copy.height = source.height;
      copy.getContext('2d').drawImage(source, 0, 0);
      source = copy;
    }
    // The browser copies what it is to encode at once.
    const encoded = new Promise((resolve) => source.toBlob(resolve, type, quality));
    this.#exports.end_export();
    return encoded;
  }

  exportImageAtPictureScale(options) {
    return this.exportImage({ ...options, scale: 'picture' });
  }

  // ---- what new tools are, and what the selection becomes

  beginDrawingForType(type, drawType = 0) {
    this.#call('begin_drawing_for_type', type, drawType);
  }

  setDrawColor(color, isTranslucent = false) {
    this.#call('set_draw_color', packedColor(color), isTranslucent);
  }

  // Points.
  setDrawLineWidth(width) {
    this.#call('set_draw_line_width', width);
  }

  // ---- the drawing

  // Both answer whether anything happened.
  undo() {
    return this.#call('undo') !== 0;
  }

  redo() {
    return this.#call('redo') !== 0;
  }

  deleteSelectedTools() {
    this.#call('delete_selected_tools');
  }

  selectNone() {
    this.#call('select_none');
  }

  finishEditText() {
    this.#call('finish_edit_text');
  }

  // Not undoable.
  clearTools() {
    this.#call('clear_tools');
  }

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
      press: (key) => this.#call('press_key', this.#put(key)) !== 0,
    });
    await this.#instantiate(wasm);
    this.#measure();
    const { width, height, scale } = this.#size;
    this.#call('create', width, height, scale);
    this.#pointers = new Pointers(this.#element, (...event) => this.#touched(...event));
    this.#watch();
  }

  async #instantiate(wasm) {
    const { exports, heap, drawing } = await instantiate(wasm, (made) => this.#imports(made));
    this.#exports = exports;
    this.#heap = heap;
    this.#drawing = drawing;
  }

  #imports({ heap, drawing }) {
    // An error of the page must not cut off the module's work, which could not go on after it.
    const tell = (message, ...values) => {
      try {
        this.#delegate[message]?.(...values);
      } catch (error) {
        reportError(error);
      }
    };
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
        const text = this.#strings[heap.text(key, length)];
        return text === undefined ? -1 : writeWhole(text, out, room);
      },
      clipboard_read: (out, room) => writeWhole(this.#clipboard, out, room),
      clipboard_write: (at, length) => {
        this.#clipboard = heap.text(at, length);
        // Browsers may refuse; the text is still there for this canvas.
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
      on_started: () => tell('didDrawStarted'),
      on_selection: (has) => tell('seletedToolsStateChanged', has !== 0),
      on_selected: (type, hasColor, color, width) =>
        tell('currentSelectedToolsPropertyChangedColorLineWidth', type,
          hasColor ? colorText(color) : null, width),
      on_history: (canUndo, canRedo) =>
        tell('canUndoStateChangedCanRedo', canUndo !== 0, canRedo !== 0),
      on_alert: (title, titleLength, message, messageLength) =>
        tell('alert', heap.text(title, titleLength), heap.text(message, messageLength)),
    };
  }

  #call(name, ...values) {
    const result = this.#exports[name](...values);
    this.#schedule();
    return result;
  }

  // Puts a text where the module looks for it; the number of its bytes.
  #put(text) {
    const bytes = this.#heap.encode(text);
    const at = this.#exports.buffer(bytes.length);
    this.#heap.bytes.set(bytes, at);
    return bytes.length;
  }

  // ---- touches

  #touched(phase, fingers, time) {
    this.#exports.advance(this.#clock(time));
    const at = this.#exports.buffer(fingers.length * 24) / 8;
    const { width, height } = this.#size;
    fingers.forEach(({ id, x, y }, i) => {
      this.#heap.doubles.set([id, x * width, y * height], at + 3 * i);
    });
    this.#call('fingers', phase, fingers.length);
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
