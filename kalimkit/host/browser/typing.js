// What the user types into the canvas's texts. Keyboards and input methods write only into elements
// of the page, so a <textarea> that is not seen stands at the caret and mirrors the focused text: what
// becomes different in it is what has been typed.

import { nameOf } from './keys.js';

const splitsPair = (text, at) => /^[\ud800-\udbff][\udc00-\udfff]$/.test(text.slice(at - 1, at + 1));

const endsInHalf = /[\ud800-\udbff]$/;

// The part of `before` that `after` has replaced, in whole characters.
export function difference(before, after) {
  const shorter = Math.min(before.length, after.length);
  let begin = 0;
  while (begin < shorter && before[begin] === after[begin]) ++begin;
  if (splitsPair(before, begin) || splitsPair(after, begin)) --begin;
  let same = 0;
  while (same < shorter - begin && before.at(-1 - same) === after.at(-1 - same)) ++same;
  if (splitsPair(before, before.length - same)) --same;
  return { begin, end: before.length - same, text: after.slice(begin, after.length - same) };
}

export class Typing {
  #area = document.createElement('textarea');
  #canvas;
  #target;
  #text = '';
  #isComposing = false;

  // target: insert(text), replace(kept, lost, text) for a text behind what is kept in the place of
  // what is lost, compose(text), press(key, isRepeated), which answers whether the key did something.
  constructor(canvas, target) {
    this.#canvas = canvas;
    this.#target = target;
    const area = this.#area;
    for (const name of ['autocapitalize', 'autocomplete', 'autocorrect']) area.setAttribute(name, 'off');
    area.spellcheck = false;
    area.tabIndex = -1;
    area.setAttribute('aria-label', 'Text');
    // Browsers zoom in on fields with smaller type.
    area.style.cssText =
      'position:fixed;width:1px;height:1em;padding:0;border:0;margin:0;outline:0;resize:none;' +
      'overflow:hidden;opacity:0;pointer-events:none;white-space:pre;font-size:16px';
    area.addEventListener('keydown', (event) => this.#pressed(event));
    area.addEventListener('input', () => this.#changed());
    area.addEventListener('paste', (event) => this.#pasted(event));
    area.addEventListener('compositionstart', () => {
      this.#isComposing = true;
    });
    area.addEventListener('compositionupdate', (event) => target.compose(event.data));
    area.addEventListener('compositionend', (event) => this.#composed(event));
  }

  get isActive() {
    return this.#area.isConnected;
  }

  // The focused text with its selection, in units of UTF-16, and the caret in pixels of the page's
  // own, from the canvas's corner.
  focus({ text, begin, end, x, y, height }) {
    const area = this.#area;
    const box = this.#canvas.getBoundingClientRect();
    area.style.left = `${box.left + x}px`;
    area.style.top = `${box.top + y}px`;
    area.style.lineHeight = `${height}px`;
    if (!area.isConnected) this.#canvas.after(area);
    if (area.getRootNode().activeElement !== area) area.focus({ preventScroll: true });
    this.#text = text;
    if (!this.#isComposing) this.#mirror(begin, end);
  }

  // The canvas gets the keys back.
  leave() {
    this.#isComposing = false;
    const hadFocus = this.#area.getRootNode().activeElement === this.#area;
    this.#area.remove();
    if (hadFocus) this.#canvas.focus({ preventScroll: true });
  }

  #mirror(begin, end) {
    if (this.#area.value !== this.#text) this.#area.value = this.#text;
    this.#area.setSelectionRange(begin, end);
  }

  #pressed(event) {
    // What types arrives as input; one that is held with ctrl types nothing.
    const name = event.key.length > 1 || event.ctrlKey || event.metaKey ? nameOf(event) : null;
    if (name && this.#target.press(name, event.repeat)) event.preventDefault();
  }

  #changed() {
    if (this.#isComposing) return;
    const before = this.#text;
    const { begin, end, text } = difference(before, this.#area.value);
    if (begin === end && !text) return;
    // Firefox may deliver the halves of a character one by one.
    if (endsInHalf.test(text)) return;
    this.#target.replace(before.slice(0, begin), before.slice(begin, end), text);
  }

  #pasted(event) {
    event.preventDefault();
    const text = event.clipboardData.getData('text/plain');
    if (text) this.#target.insert(text);
  }

  #composed(event) {
    // WebKitGTK ends what has not begun when an input method gives a text at once.
    if (!this.#isComposing) return;
    this.#isComposing = false;
    if (event.data) {
      this.#target.insert(event.data);
    } else {
      this.#target.compose('');
    }
  }
}
