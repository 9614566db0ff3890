// The pictures that an editor takes in and gives out.

import { askForFile, decode, download, encode, tooLarge } from './pictures.js';

export class Exchange {
  #element;
  #target;
  // How many pictures the page has asked for.
  #asked = 0;
  // What was offered, by the bitmaps made of it.
  #offered = new WeakMap();
  #endPicking = () => {};

  // target: module(), call(name, ...values), and dispatch(type, detail), which tells the page.
  constructor(element, target) {
    this.#element = element;
    this.#target = target;
  }

  // Calls show(id) with the module's number of the picture. Answers whether it did: not when another has
  // been asked for meanwhile. Rejects when the picture cannot be read.
  async take(picture, show) {
    const order = ++this.#asked;
    return this.#take(order, await decode(picture), show);
  }

  // The same of a picture, or a promise of one, that the user may refuse.
  async offer(picture, show) {
    const order = ++this.#asked;
    const given = await picture;
    const bitmap = await decode(given);
    this.#offered.set(bitmap, given);
    return this.#take(order, bitmap, show);
  }

  // What was offered and has this number; undefined for any other picture.
  offeredAs(id) {
    return this.#offered.get(this.#target.module().drawing.sourceOf(id));
  }

  #take(order, bitmap, show) {
    if (order !== this.#asked) {
      bitmap.close();
      return false;
    }
    show(this.#target.module().drawing.addPicture(bitmap));
    return true;
  }

  // What has been asked for is not wanted any more.
  forget() {
    ++this.#asked;
  }

  stop() {
    this.forget();
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

  async confirm(id, { type, quality }) {
    try {
      this.#target.dispatch('confirm', { blob: await this.encoded(id, type, quality) });
    } catch (error) {
      this.#target.dispatch('error', { error });
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
      const add = (bitmap) => {
        this.#offered.set(bitmap, file);
        return module.drawing.addPicture(bitmap);
      };
      const id = file ? await decode(file).then(add, () => 0) : -1;
      if (module.isAlive && end === this.#endPicking) this.#target.call('picked', id);
    });
    this.#endPicking = end;
  }
}
