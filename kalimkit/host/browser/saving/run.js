// One saving by the module for it, in a worker or without one.

import { Heap } from '../../../backend/html/heap.js';
import { system } from '../../../backend/html/system.js';

// As exports.cpp numbers them.
const Place = { result: 0, source: 1 };
const Answer = { bytes: 0, error: 1, encodedAnew: 2 };

// request: module, compiled; file, the bytes that the result came from; result, { pixels, width, height }, and
// source, the same of the file at the result's scale, or null; placement, as the numbers of savePicture() have it;
// hidden, four numbers a rectangle; and format, quality and metadata as exports.cpp numbers them. Answers with
// { bytes, encodedAnew }; rejects with what is wrong.
export async function runSaving({ module, file, result, source, placement, hidden, format, quality, metadata }) {
  const heap = new Heap();
  const { exports } = await WebAssembly.instantiate(module, { wasi_snapshot_preview1: system(heap) });
  heap.attach(exports.memory);
  exports._initialize();
  const put = (bytes, at) => heap.bytes.set(bytes, at >>> 0);
  const putPicture = (place, { pixels, width, height }) => put(pixels, exports.picture(place, width, height));
  const take = (which) => {
    const at = exports.answer(which) >>> 0;
    return heap.bytes.slice(at, at + exports.answer_length(which));
  };
  const takeText = (which) => new TextDecoder().decode(take(which));
  put(file, exports.file(file.length));
  putPicture(Place.result, result);
  if (source) putPicture(Place.source, source);
  put(new Uint8Array(Int32Array.from(hidden).buffer), exports.hidden(hidden.length / 4));
  if (!exports.save(format, quality, metadata, ...placement)) throw new Error(takeText(Answer.error));
  return { bytes: take(Answer.bytes), encodedAnew: takeText(Answer.encodedAnew) };
}
