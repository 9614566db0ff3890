// Documents that an editor opens and saves; the module reads and writes their texts.

import { documentIn, documentType, isFile, mediaTypeOf } from './formats.js';
import { encode, tooLarge } from './pictures.js';

// Of a picture that is given away without what the user has hidden.
const sealedQuality = 0.95;

// Of the picture's file in the text that the module writes: browsers put large files into texts faster, and
// without the memory that a module never gives back. Its base64 has no padding.
const standIn = '[the file of the picture]..';

// In two, or one where it is not there; the picture comes before all that could read the same.
function cutAt(text, place) {
  const at = text.indexOf(place);
  return at < 0 ? [text] : [text.slice(0, at), text.slice(at + place.length)];
}

function base64(blob) {
  return new Promise((resolve, reject) => {
    const reader = new FileReader();
    reader.onload = () => resolve(reader.result.slice(reader.result.indexOf(',') + 1));
    reader.onerror = () => reject(reader.error);
    reader.readAsDataURL(blob);
  });
}

// The SHA-256, as hexadecimal digits.
async function hashOf(module, blob) {
  const bytes = new Uint8Array(await blob.arrayBuffer());
  // Only pages of https: have it.
  if (globalThis.crypto?.subtle) {
    const hash = new Uint8Array(await crypto.subtle.digest('SHA-256', bytes));
    return [...hash].map((byte) => byte.toString(16).padStart(2, '0')).join('');
  }
  module.call('hash', module.putBytes(bytes));
  return module.takeText();
}

const named = (given, error) => (given.name ? new Error(`${given.name}: ${error.message}`, { cause: error }) : error);

// Answers with what is to be decoded of what a page was given, { picture, mediaType, document, isAsking }: the
// document's number, 0 for none, and whether a document lies in the picture about which the user has
// to be asked. `inside` says what becomes of such a one: 'reopen' or 'flat'; otherwise the user is asked.
export async function readGiven(module, given, inside) {
  const plain = { picture: given, mediaType: '', document: 0, isAsking: false };
  if (!isFile(given)) return plain;
  try {
    const found = await documentIn(given);
    if (!found || (found.isInside && inside === 'flat')) return plain;
    if (found.isInside && inside !== 'reopen') {
      // What is damaged is no question.
      const isWhole = await found.text.then(() => true, () => false);
      return { ...plain, isAsking: isWhole };
    }
    return await readDocument(module, await found.text);
  } catch (error) {
    throw named(given, error);
  }
}

async function readDocument(module, text) {
  await module.completeForDrawings();
  const number = module.call('read_document', module.putBytes(text));
  if (!number) throw new TypeError(module.takeText());
  module.call('document_media_type', number);
  const mediaType = module.takeText();
  module.call('document_file', number);
  return { picture: new Blob([module.takeBytes()], { type: mediaType }), mediaType, document: number, isAsking: false };
}

// Throws unless the picture is the one that the document says.
export function checkFit(module, given, { document }, { width, height }) {
  if (!document || module.call('document_fits', document, width, height)) return;
  throw named(given, new TypeError(module.takeText()));
}

// The file of a picture, as it was given or, for what is no file, made: { blob, mediaType }.
export async function pictureFile({ file, mediaType }, source) {
  if (file) return { blob: file, mediaType: mediaType || await mediaTypeOf(file) };
  return { blob: await encode(source, 'image/png'), mediaType: 'image/png' };
}

export class Documents {
  #target;
  // The saving under way: the module notes one at a time.
  #saving = Promise.resolve();

  // target: module(), call(name, ...values), given(), what was given as the picture that is open, saved(step)
  // with the number of the step up to which the canvas was saved, step(), that number now, and
  // encoded(id, { type, quality }), a Blob of a picture that is given away.
  constructor(target) {
    this.#target = target;
  }

  // Answers with a Blob; null without a picture.
  save(isSealed) {
    const saving = this.#saving.then(() => this.#save(isSealed));
    this.#saving = saving.catch(() => {});
    return saving;
  }

  async #save(isSealed) {
    const module = this.#target.module();
    await module.complete();
    module.drawing.takeRefused();
    const picture = this.#target.call('begin_document', isSealed);
    if (picture < 0) {
      const refused = module.drawing.takeRefused();
      if (refused) throw tooLarge(refused);
      return null;
    }
    const step = this.#target.step();
    const { blob, mediaType } = await this.#file(picture);
    const parts = [mediaType, await hashOf(module, blob), standIn].map((text) => new TextEncoder().encode(text));
    module.putBytes(...parts);
    module.call('end_document', ...parts.map(({ length }) => length));
    const [head, tail] = cutAt(module.takeText(), btoa(standIn));
    const text = tail === undefined ? [head] : [head, await base64(blob), tail];
    if (!isSealed) this.#target.saved(step);
    return new Blob(text, { type: documentType });
  }

  // With a number, of that picture, which is to be given away.
  async #file(picture) {
    const { given, source } = this.#target.given();
    if (!picture) return pictureFile(given, source);
    const { fileType } = given;
    const mediaType = given.file && fileType !== 'image/png' ? 'image/jpeg' : 'image/png';
    const quality = fileType === 'image/jpeg' ? null : sealedQuality;
    const blob = await this.#target.encoded(picture, { type: mediaType, quality });
    return { blob, mediaType };
  }
}
