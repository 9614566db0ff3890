// What the page supplies to the module beside the editor's own affairs: texts, flags and the clipboard.

import { Pen, needsKit } from './choices.js';
import { setSetting, setting, textSetting } from './settings.js';

// The clipboard's text, as far as a page may know it: what this editor has put there, or what its user
// has pasted last.
export class Clipboard {
  #text = '';
  // Of a copy by the browser's own command, while it is under way.
  #data = null;

  get text() {
    return this.#text;
  }

  // The user pastes it.
  take(text) {
    this.#text = text;
  }

  // What the work writes goes into the data of that command.
  copyInto(data, work) {
    this.#data = data;
    work();
    this.#data = null;
  }

  write(text) {
    this.#text = text;
    if (this.#data) {
      this.#data.setData('text/plain', text);
    } else {
      // Browsers may refuse; the text is still there for this editor.
      navigator.clipboard?.writeText(text).catch(() => {});
    }
  }
}

// The pen that people had in hand last, which needs the kit: one begins with the usual pen where that is not there.
export const lastPen = () => textSetting('tool.last');
const isUsable = (key, isWhole) => key !== 'tool.last' || isWhole() || !needsKit(Pen[lastPen()]);

// Imports of the module; text(key, count) is the page's text for one, undefined for none; isWhole() tells whether the
// kit is there; say(text) has an assistive technology say something.
export function environment(heap, text, clipboard, isWhole, say) {
  const writeWhole = (text, out, room) => {
    const bytes = heap.encode(text);
    heap.bytes.set(bytes.subarray(0, room), out >>> 0);
    return bytes.length;
  };
  return {
    wall_clock: () => Date.now() / 1000,
    localized: (key, length, count, out, room) => {
      const found = text(heap.text(key, length), Number.isNaN(count) ? undefined : count);
      return found === undefined ? -1 : writeWhole(found, out, room);
    },
    clipboard_read: (out, room) => writeWhole(clipboard.text, out, room),
    clipboard_write: (at, length) => clipboard.write(heap.text(at, length)),
    user_default: (key, length) => {
      const value = setting(heap.text(key, length));
      return value === undefined ? -1 : Number(value);
    },
    user_setting: (key, length, out, room) => {
      const name = heap.text(key, length);
      const text = isUsable(name, isWhole) ? textSetting(name) : undefined;
      return text === undefined ? -1 : writeWhole(text, out, room);
    },
    announce: (at, length) => say(heap.text(at, length)),
    set_user_setting: (key, length, at, textLength) => setSetting(heap.text(key, length), heap.text(at, textLength)),
    set_user_default: (key, length, value) => setSetting(heap.text(key, length), value !== 0),
  };
}

// Tells, now and after each change, whether the user wants as little motion as may be.
export function watchMotion(signal, tell) {
  const query = matchMedia('(prefers-reduced-motion: reduce)');
  query.addEventListener('change', () => tell(query.matches), { signal });
  tell(query.matches);
}
