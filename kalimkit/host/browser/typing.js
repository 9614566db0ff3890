// What the user types into the canvas's texts. Keyboards and input methods write only into elements
// of the page, so a <textarea> that is not seen stands at the caret and mirrors the focused text: what
// becomes different in it is what has been typed.

import { nameOf } from './keys.js';

const graphemes = new Intl.Segmenter(undefined, { granularity: 'grapheme' });
const endsInHalf = /[\ud800-\udbff]$/;

// The part of `before` that `after` has replaced, in whole graphemes. What is typed ends at the caret,
// which tells one of several equal neighbours from the others.
export function difference(before, after, caret = after.length) {
  const shorter = Math.min(before.length, after.length);
  let same = 0;
  while (same < Math.min(shorter, after.length - caret) &&
         before.at(-1 - same) === after.at(-1 - same)) ++same;
  let begin = 0;
  while (begin < shorter - same && before[begin] === after[begin]) ++begin;
  const segments = graphemes.segment(before);
  const edge = (at) => segments.containing(at)?.index ?? at;
  const last = segments.containing(before.length - same);
  const isInside = last && last.index < before.length - same;
  const end = isInside ? last.index + last.segment.length : before.length - same;
  begin = edge(begin);
  return { begin, end, text: after.slice(begin, after.length - (before.length - end)) };
}

// Where a composed text stands in `after`, which was `before` when the composition began, and how much of
// that it has replaced: most often what was selected, else whatever fits. Null when nothing does.
export function composedRange(before, after, composed, selectionStart) {
  const lost = before.length + composed.length - after.length;
  if (lost < 0) return null;
  const fits = (begin) => begin + lost <= before.length && after.startsWith(composed, begin) &&
    before.slice(0, begin) === after.slice(0, begin) &&
    before.slice(begin + lost) === after.slice(begin + composed.length);
  if (fits(selectionStart)) return { begin: selectionStart, end: selectionStart + lost };
  for (let begin = 0; begin + lost <= before.length; ++begin) {
    if (fits(begin)) return { begin, end: begin + lost };
  }
  return null;
}

export class Typing {
  #area = document.createElement('textarea');
  #canvas;
  #target;
  #text = '';
  // While something is composed: what the text was before, where it was selected, what is composed, and
  // whether the library has been told what that replaces.
  #composition = null;
  // The area changes by what is done here.
  #isOwnWork = false;
  // What is to be selected in the end, or nothing yet, while the library is told what has been typed.
  #awaited = null;

  // target: insert(text), replace(kept, lost, text) for a text behind what is kept in the place of
  // what is lost, select(kept, lost), compose(text), press(key, isRepeated), which answers whether the
  // key did something, copy(key, clipboardData), and hasKeyboard(), whether one is on the screen.
  // Listens to the canvas until the signal comes.
  constructor(canvas, signal, target) {
    this.#canvas = canvas;
    this.#target = target;
    const area = this.#area;
    for (const name of ['autocapitalize', 'autocomplete', 'autocorrect']) area.setAttribute(name, 'off');
    area.spellcheck = false;
    area.tabIndex = -1;
    area.setAttribute('aria-label', 'Text');
    // Browsers zoom in on fields whose type is smaller.
    area.style.cssText =
      'position:fixed;width:1px;height:1em;padding:0;border:0;margin:0;outline:0;resize:none;' +
      'overflow:hidden;opacity:0;pointer-events:none;white-space:pre;font-size:16px';
    const on = (type, work) => area.addEventListener(type, (event) => {
      if (!this.#isOwnWork) work(event);
    });
    on('keydown', (event) => this.#pressed(event));
    on('input', () => this.#changed());
    on('paste', (event) => this.#pasted(event));
    for (const [type, key] of [['copy', 'ctrl+c'], ['cut', 'ctrl+x']]) {
      on(type, (event) => {
        event.preventDefault();
        this.#target.copy(key, event.clipboardData);
      });
    }
    on('compositionstart', () => {
      this.#composition = { before: area.value, start: area.selectionStart, text: '', isPlaced: false };
    });
    on('compositionupdate', ({ data }) => {
      if (this.#composition) this.#composition.text = data;
    });
    on('compositionend', (event) => this.#composed(event));
    canvas.addEventListener('pointerdown', () => {
      if (!this.#hasFocus) canvas.focus({ preventScroll: true });
    }, { signal });
    canvas.addEventListener('pointerup',
      ({ pointerType }) => this.#refocus(pointerType === 'touch'), { signal });
  }

  get isActive() {
    return this.#area.isConnected;
  }

  // The focused text with its selection, in units of UTF-16, whether the library takes a part of it for
  // composed, and the caret in points, from the canvas's corner. Only a text that is new takes the
  // focus: the user may have given it to another element meanwhile.
  focus({ text, begin, end, isComposing, x, y, height }) {
    const area = this.#area;
    const isNew = !area.isConnected;
    this.#text = text;
    area.style.lineHeight = `${height}px`;
    if (isNew) this.#canvas.after(area);
    this.#place(x, y);
    if (isNew) area.focus({ preventScroll: true });
    // A touch beside the text has ended it there, and the input method has to hear of it.
    if (this.#composition?.isPlaced && !isComposing && !this.#composition.isTold) this.#endComposition();
    if (!this.#composition) this.#mirror(begin, end);
  }

  // In what is transformed, fixed places are not the window's.
  #place(x, y) {
    const { style } = this.#area;
    const box = this.#canvas.getBoundingClientRect();
    [style.left, style.top] = ['0px', '0px'];
    const { left, top } = this.#area.getBoundingClientRect();
    style.left = `${box.left + x - left}px`;
    style.top = `${box.top + y - top}px`;
  }

  // What another element of the page has taken, or an on-screen keyboard that was put away, comes back by a
  // touch.
  #refocus(withKeyboard) {
    const area = this.#area;
    if (!this.isActive || this.#composition) return;
    if (withKeyboard && this.#hasFocus && !this.#target.hasKeyboard()) this.#do(() => area.blur());
    if (!this.#hasFocus) this.#do(() => area.focus({ preventScroll: true }));
  }

  // The canvas gets the keys back.
  leave() {
    this.#composition = null;
    const hadFocus = this.#hasFocus;
    this.#do(() => this.#area.remove());
    if (hadFocus) this.#canvas.focus({ preventScroll: true });
  }

  get #hasFocus() {
    return this.isActive && this.#area.getRootNode().activeElement === this.#area;
  }

  #do(work) {
    this.#isOwnWork = true;
    work();
    this.#isOwnWork = false;
  }

  // On the way the library selects what is replaced: to show that in a long text would take as long as laying it
  // out, and the end is most often what the area shows already.
  #replace(...change) {
    this.#awaited = [];
    this.#target.replace(...change);
    const selection = this.#awaited;
    this.#awaited = null;
    if (selection.length) this.#mirror(...selection);
  }

  #mirror(begin, end) {
    if (this.#awaited) {
      this.#awaited = [begin, end];
      return;
    }
    if (this.#area.value !== this.#text) this.#area.value = this.#text;
    this.#area.setSelectionRange(begin, end);
  }

  #endComposition() {
    this.#composition = null;
    this.#do(() => {
      this.#area.blur();
      this.#area.focus({ preventScroll: true });
    });
  }

  #pressed(event) {
    // What types arrives as input, and copying as an event of its own; one that is held with ctrl types
    // nothing.
    const name = event.key.length > 1 || event.ctrlKey || event.metaKey ? nameOf(event) : null;
    if (!name || name === 'ctrl+c' || name === 'ctrl+x') return;
    if (this.#target.press(name, event.repeat)) event.preventDefault();
  }

  #changed() {
    if (this.#composition) return this.#compose();
    const before = this.#text;
    const { value, selectionEnd } = this.#area;
    const { begin, end, text } = difference(before, value, selectionEnd);
    if (begin === end && !text) return;
    // Firefox may deliver the halves of a character one by one.
    if (endsInHalf.test(text)) return;
    this.#replace(before.slice(0, begin), before.slice(begin, end), text);
  }

  #compose() {
    const composition = this.#composition;
    const { before, start, text } = composition;
    if (!composition.isPlaced) {
      const range = composedRange(before, this.#area.value, text, start);
      if (!range) return;
      composition.isPlaced = true;
      const [kept, lost] = [before.slice(0, range.begin), before.slice(range.begin, range.end)];
      this.#tell(() => this.#target.select(kept, lost));
    }
    this.#tell(() => this.#target.compose(text));
  }

  // What the library answers meanwhile is no news of the user's.
  #tell(work) {
    const composition = this.#composition;
    composition.isTold = true;
    work();
    composition.isTold = false;
  }

  #pasted(event) {
    event.preventDefault();
    const text = event.clipboardData.getData('text/plain');
    if (text) this.#target.insert(text);
  }

  #composed({ data }) {
    const composition = this.#composition;
    // WebKitGTK ends what has not begun when an input method gives a text at once.
    if (!composition) return;
    this.#composition = null;
    if (!composition.isPlaced) return this.#changed();
    if (data) this.#target.insert(data);
    else this.#target.compose('');
  }
}
