// The pictures that an editor takes in and gives out.

import { checkFit, readGiven } from './documents.js';
import { isFile, mediaTypeOf } from './formats.js';
import { askForFile, decode, download, encode, endings, tooLarge } from './pictures.js';

export class Exchange {
  #element;
  #target;
  // How many pictures the page has asked for.
  #asked = 0;
  // By the bitmaps made of it: what was given, and whether the user had to take it.
  #given = new WeakMap();
  // The offer that the user has not answered: { id, answer(isTaken) }.
  #pending = null;
  // The picture about which the user is asked whether to go on with what was drawn on it; null for none.
  #asking = null;
  #isSending = false;
  // How the picture that the module told of last came about: the numbers of exported() in BrowserImports.h.
  #exported = [];
  #endPicking = () => {};

  // target: module(), call(name, ...values), dispatch(type, detail), which tells the page, hold(isHeld)
  // while a picture comes in or goes out, sending() and sent(isDone) around what is sent, needsRoom(),
  // whether a picture is to be sent at its own size, inside(), what becomes of a document in a picture, and
  // save(source, origin, sending), see Saver.
  constructor(element, target) {
    this.#element = element;
    this.#target = target;
  }

  // Calls show(id, document) with the module's numbers of the picture, or of a promise of one, and of what was
  // drawn on it, 0 for nothing. Answers whether it did: not when another has been asked for meanwhile. Rejects
  // when the picture cannot be read or sent. `inside` is as that of readGiven().
  async take(picture, needsRoom, inside, show) {
    this.forget();
    const read = (given) => readGiven(this.#target.module(), given, inside);
    const come = await this.#come(picture, needsRoom, read, false);
    if (!come) return false;
    show(this.#add(come), come.document);
    this.#ask(come);
    return true;
  }

  // The same with the picture of a work of before, { file, name, mediaType }; show(id).
  async takeBack({ file, name, mediaType }, needsRoom, show) {
    this.forget();
    const given = new File([file], name, { type: mediaType || file.type });
    const read = () => ({ picture: file, mediaType, document: 0, isAsking: false, isBegun: true });
    const come = await this.#come(given, needsRoom, read, false);
    if (come) show(this.#add(come));
    return come !== null;
  }

  // The same as take() of a picture that the user may refuse; answers when the user has.
  async offer(picture) {
    ++this.#asked;
    const read = (given) => readGiven(this.#target.module(), given, this.#target.inside());
    const come = await this.#come(picture, this.#target.needsRoom(), read, true);
    if (!come) return false;
    const id = this.#add(come);
    // The question that is up is about this one from now on.
    if (this.#pending) this.#answer(false);
    const isTaken = await new Promise((answer) => {
      this.#pending = { id, answer };
      if (come.document) this.#target.call('offer_document', come.document, id);
      else this.#target.call('offer', id);
    });
    if (isTaken && this.#target.module().isAlive) this.#ask(come);
    return isTaken;
  }

  // The picture about which the question was.
  takeAsked() {
    const asked = this.#asking;
    this.#asking = null;
    return asked;
  }

  #ask({ given, isAsking }) {
    this.#asking = isAsking ? given : null;
    if (isAsking) this.#target.call('ask_to_reopen');
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

  // The same with what drawImage takes of it, { given, source }.
  given(id) {
    const source = this.#target.module().drawing.sourceOf(id);
    return { given: this.#given.get(source) ?? {}, source };
  }

  // Null when another one has been asked for meanwhile.
  async #come(picture, needsRoom, read, isOffered) {
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
      const come = await this.#decoded(given, await read(given), needsRoom, isOffered);
      if (order === this.#asked) return come;
      this.#drop(come);
      return null;
    } catch (error) {
      if (order !== this.#asked) return null;
      throw error;
    } finally {
      hold(false);
    }
  }

  // Gives the module a picture, and tells it how the file of a JPEG holds the pixels together: before anything is
  // hidden there.
  #add({ bitmap, jpeg }) {
    const module = this.#target.module();
    const id = module.drawing.addPicture(bitmap);
    if (jpeg) module.call('picture_file', id, module.putBytes(jpeg));
    return id;
  }

  // { given, bitmap, document, isAsking, jpeg }: the bytes of a JPEG, null of any other picture.
  async #decoded(given, read, needsRoom, isOffered) {
    const module = this.#target.module();
    const come = { given, bitmap: null, document: read.document, isAsking: read.isAsking, jpeg: null };
    try {
      const typed = isFile(read.picture) ? mediaTypeOf(read.picture) : '';
      const [bitmap, fileType] = await Promise.all([decode(read.picture), typed]);
      come.bitmap = bitmap;
      if (fileType === 'image/jpeg') come.jpeg = new Uint8Array(await read.picture.arrayBuffer());
      checkFit(module, given, read, come.bitmap);
      this.#admit(come.bitmap, given, { ...read, fileType }, needsRoom, isOffered);
      return come;
    } catch (error) {
      this.#drop(come);
      throw error;
    }
  }

  #drop({ bitmap, document }) {
    bitmap?.close();
    const module = this.#target.module();
    if (document && module.isAlive) module.call('drop_document', document);
  }

  #admit(bitmap, picture, read, needsRoom, isOffered) {
    const { width, height } = bitmap;
    if (needsRoom && !this.#target.module().drawing.hasRoom(width, height)) throw tooLarge({ width, height });
    const file = isFile(read.picture) ? read.picture : null;
    const { mediaType, fileType, isBegun = false } = read;
    this.#given.set(bitmap, { picture, width, height, isOffered, file, mediaType, fileType, isBegun });
  }

  #answer(isTaken) {
    const { answer } = this.#pending;
    this.#pending = null;
    answer(isTaken);
  }

  // What has been asked for is not wanted any more.
  forget() {
    ++this.#asked;
    if (!this.#pending && !this.#asking) return;
    if (this.#pending) this.#answer(false);
    this.#asking = null;
    if (this.#target.module().isAlive) this.#target.call('withdraw_questions');
  }

  stop() {
    ++this.#asked;
    if (this.#pending) this.#answer(false);
    this.#endPicking();
    this.#endPicking = () => {};
  }

  note(exported) {
    this.#exported = exported;
  }

  // Of a picture that the module has just told of, see Saver; null for one that is of no file.
  #originOf(id) {
    const [picture, source, x, y, turns, ...rects] = this.#exported;
    if (picture !== id) return null;
    const { given, source: original } = this.given(source);
    if (!given.file) return null;
    const part = rects.slice(0, 4);
    const isAtItsScale = part[2] > 0 && part[3] > 0;
    return {
      file: given.file,
      type: given.fileType,
      source: isAtItsScale ? original : null,
      placement: [...part, x, y, turns],
      hidden: rects.slice(4),
    };
  }

  // sending: { type, quality, metadata }, as options of the editor. Null for no picture; rejects when there was no
  // room for one.
  async encoded(id, sending) {
    const { drawing } = this.#target.module();
    if (id) return this.#target.save(drawing.sourceOf(id), this.#originOf(id), sending);
    const refused = drawing.takeRefused();
    if (refused) throw tooLarge(refused);
    return null;
  }

  // Only one picture is sent at a time.
  async confirm(id, sending) {
    if (this.#isSending) return;
    this.#isSending = true;
    this.#target.hold(true);
    this.#target.sending();
    try {
      const blob = await this.encoded(id, sending);
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
    const { drawing } = this.#target.module();
    const blob = id ? encode(drawing.sourceOf(id), 'image/png') : this.encoded(id);
    blob.catch(() => {});
    queueMicrotask(async () => {
      try {
        await navigator.clipboard.write([new ClipboardItem({ 'image/png': blob })]);
      } catch {
        if (this.#target.module().isAlive) this.#target.call('copy_failed');
      }
    });
  }

  async save(id, sending) {
    try {
      const blob = await this.encoded(id, sending);
      download(blob, `picture.${endings[blob.type] ?? 'png'}`);
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
      const read = await readGiven(this.#target.module(), file, 'flat');
      const come = await this.#decoded(file, read, this.#target.needsRoom(), true);
      if (!come.document) return this.#add(come);
      // A document goes the way of those that the page offers.
      this.#drop(come);
      this.offer(file).catch((error) => this.#target.dispatch('error', { error }));
      return -1;
    } catch {
      return 0;
    }
  }
}
