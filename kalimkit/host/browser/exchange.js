// The pictures that an editor takes in and gives out.

import { askForFile, decode, download, encode, tooLarge } from './pictures.js';

export class Exchange {
  #element;
  #target;
  // How many pictures the page has asked for.
  #asked = 0;
  // By the bitmaps made of it: what was given, and whether the user had to take it.
  #given = new WeakMap();
  // The offer that the user has not answered: { id, answer(isTaken) }.
  #pending = null;
  #isSending = false;
  #endPicking = () => {};

  // target: module(), call(name, ...values), dispatch(type, detail), which tells the page, hold(isHeld)
  // while a picture comes in or goes out, sending() and sent(isDone) around what is sent, needsRoom(),
  // whether a picture is to be sent at its own size.
  constructor(element, target) {
    this.#element = element;
    this.#target = target;
  }

  // Calls show(id) with the module's number of the picture, or of a promise of one. Answers whether it
  // did: not when another has been asked for meanwhile. Rejects when the picture cannot be read or sent.
  async take(picture, needsRoom, show) {
    this.forget();
    const bitmap = await this.#come(picture, needsRoom, false);
    if (bitmap) show(this.#target.module().drawing.addPicture(bitmap));
    return bitmap !== null;
  }

  // The same of a picture that the user may refuse; answers when the user has.
  async offer(picture) {
    ++this.#asked;
    const bitmap = await this.#come(picture, this.#target.needsRoom(), true);
    if (!bitmap) return false;
    const id = this.#target.module().drawing.addPicture(bitmap);
    // The question that is up is about this one from now on.
    if (this.#pending) this.#answer(false);
    return new Promise((answer) => {
      this.#pending = { id, answer };
      this.#target.call('offer', id);
    });
  }

  // Whether the user has answered.
  look({ picture, isAsking }) {
    if (!this.#pending || (picture !== this.#pending.id && isAsking)) return;
    this.#answer(picture === this.#pending.id);
  }

  // What was given as the picture of this number, with its size; undefined for any other picture.
  givenAs(id) {
    return this.#given.get(this.#target.module().drawing.sourceOf(id));
  }

  // Null when another one has been asked for meanwhile.
  async #come(picture, needsRoom, isOffered) {
    const order = this.#asked;
    let isHeld = false;
    const hold = (isNow) => {
      if (isHeld !== isNow) this.#target.hold(isNow);
      isHeld = isNow;
    };
    // The user goes on working until an offer has come, which may take for ever.
    hold(!isOffered);
    try {
      const given = await picture;
      hold(true);
      const bitmap = await decode(given);
      if (order !== this.#asked) {
        bitmap.close();
        return null;
      }
      return this.#admit(bitmap, given, needsRoom, isOffered);
    } catch (error) {
      if (order !== this.#asked) return null;
      throw error;
    } finally {
      hold(false);
    }
  }

  #admit(bitmap, picture, needsRoom, isOffered) {
    const { width, height } = bitmap;
    if (needsRoom && !this.#target.module().drawing.hasRoom(width, height)) {
      bitmap.close();
      throw tooLarge({ width, height });
    }
    this.#given.set(bitmap, { picture, width, height, isOffered });
    return bitmap;
  }

  #answer(isTaken) {
    const { answer } = this.#pending;
    this.#pending = null;
    answer(isTaken);
  }

  // What has been asked for is not wanted any more.
  forget() {
    ++this.#asked;
    if (!this.#pending) return;
    this.#answer(false);
    if (this.#target.module().isAlive) this.#target.call('withdraw_questions');
  }

  stop() {
    ++this.#asked;
    if (this.#pending) this.#answer(false);
    this.#endPicking();
    this.#endPicking = () => {};
  }

  // Null for no picture; rejects when there was no room for one.
  async encoded(id, type, quality) {
    const { drawing } = this.#target.module();
    if (id) return encode(drawing.sourceOf(id), type, quality);
    const refused = drawing.takeRefused();
    if (refused) throw tooLarge(refused);
    return null;
  }

  // Only one picture is sent at a time.
  async confirm(id, { type, quality }) {
    if (this.#isSending) return;
    this.#isSending = true;
    this.#target.hold(true);
    this.#target.sending();
    try {
      const blob = await this.encoded(id, type, quality);
      this.#target.sent(blob !== null);
      this.#target.dispatch('confirm', { blob });
    } catch (error) {
      this.#target.sent(false);
      this.#target.dispatch('error', { error });
    } finally {
      this.#isSending = false;
      this.#target.hold(false);
    }
  }

  copy(id) {
    const blob = this.encoded(id, 'image/png');
    blob.catch(() => {});
    queueMicrotask(async () => {
      try {
        await navigator.clipboard.write([new ClipboardItem({ 'image/png': blob })]);
      } catch {
        if (this.#target.module().isAlive) this.#target.call('copy_failed');
      }
    });
  }

  async save(id) {
    try {
      download(await this.encoded(id, 'image/png'), 'picture.png');
    } catch (error) {
      this.#target.dispatch('error', { error });
    }
  }

  pick() {
    this.#endPicking();
    const end = askForFile(this.#element, async (file) => {
      const module = this.#target.module();
      const id = file ? await this.#picked(file) : -1;
      if (module.isAlive && end === this.#endPicking) this.#target.call('picked', id);
    });
    this.#endPicking = end;
  }

  // 0 for what cannot be read or sent.
  async #picked(file) {
    try {
      const bitmap = this.#admit(await decode(file), file, this.#target.needsRoom(), true);
      return this.#target.module().drawing.addPicture(bitmap);
    } catch {
      return 0;
    }
  }
}
