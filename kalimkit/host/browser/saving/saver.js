// Saves pictures as their files were, by a module that is fetched for the first one.

import { compiled } from '../../../backend/html/instance.js';
import { makePicture, readPicture } from '../../../backend/html/pixels.js';
import { encode, tooLarge } from '../pictures.js';
import { runSaving } from './run.js';

// Numbered by their places, as FileFormat and Metadata are.
const formats = ['image/jpeg', 'image/png', 'image/webp'];
const metadataModes = ['safe', 'keep', 'none'];
// Of what has no quality of its own, from 0 to 1.
const usualQuality = 0.92;

const destroyed = () => new DOMException('The editor has been destroyed', 'AbortError');

function pixelsOf(source) {
  const { width, height } = source;
  const pixels = new Uint8Array(width * height * 4);
  readPicture(source, width, height, pixels, 0);
  return { pixels, width, height };
}

// What exports.cpp takes: 0 for the file's own, else from 1 to 100.
const qualityOf = (quality) => Math.min(Math.max(Math.round(quality * 100), 1), 100);

// A worker, once it is there; null where the page has none.
function startWorker() {
  return new Promise((resolve) => {
    let worker;
    try {
      worker = new Worker(new URL('./worker.js', import.meta.url), { type: 'module' });
    } catch {
      resolve(null);
      return;
    }
    worker.onmessage = () => resolve(worker);
    // The page's policy forbids it, or the browser knows no modules there.
    worker.onerror = (event) => {
      event.preventDefault();
      worker.terminate();
      resolve(null);
    };
  });
}

export class Saver {
  #codec;
  #warn;
  #isStopped = false;
  // Of the savings under way, what ends them.
  #ends = new Set();

  // codec: where the module is, or the module itself. What goes on without it, warn(error) hears of.
  constructor(codec, warn) {
    this.#codec = codec;
    this.#warn = warn;
  }

  // A Blob of what drawImage takes; both sources are read before this returns. origin says what it came from:
  // { file, type, source, placement, hidden }, a Blob, its media type and what drawImage takes of it, or null where
  // the result is not at its scale; null where it came from no file. type may be 'auto', which is the file's own,
  // quality null, which is that of a file of the same type.
  async save(source, origin, { type, quality, metadata }) {
    const isKnown = formats.includes(origin?.type);
    const wanted = type === 'auto' ? (isKnown && origin.type) || 'image/png' : type;
    if (!isKnown || !formats.includes(wanted)) return encode(source, wanted, quality ?? usualQuality);
    const isOwn = wanted === origin.type && quality === null;
    const request = {
      result: pixelsOf(source),
      source: origin.source && pixelsOf(origin.source),
      placement: origin.placement,
      hidden: origin.hidden,
      format: formats.indexOf(wanted),
      quality: isOwn ? 0 : qualityOf(quality ?? usualQuality),
      metadata: Math.max(metadataModes.indexOf(metadata), 0),
    };
    try {
      const { bytes } = await this.#run(request, origin.file);
      return new Blob([bytes], { type: wanted });
    } catch (error) {
      if (error.name === 'AbortError') throw error;
      this.#warn(new Error(`The picture was encoded anew, without its file's data: ${error.message}`, { cause: error }));
      return this.#encodeAnew(request.result, wanted, quality ?? usualQuality);
    }
  }

  // Nobody waits any more.
  stop() {
    this.#isStopped = true;
    for (const end of [...this.#ends]) end();
  }

  // Needs the result's pixels no longer unless it rejects, and leaves them there then as far as it can.
  async #run(request, blob) {
    const [module, bytes] = await Promise.all([compiled(this.#codec), blob.arrayBuffer()]);
    const whole = { ...request, module, file: new Uint8Array(bytes) };
    const worker = await startWorker();
    if (!this.#isStopped) return worker ? this.#runBeside(worker, whole, request) : runSaving(whole);
    worker?.terminate();
    throw destroyed();
  }

  async #runBeside(worker, whole, request) {
    let end;
    const saving = new Promise((resolve, reject) => {
      end = () => reject(destroyed());
      this.#ends.add(end);
      worker.onmessage = ({ data: { saved, error, result } }) => {
        if (saved) return resolve(saved);
        request.result = result;
        reject(new Error(error));
      };
      worker.onerror = ({ message }) => reject(new Error(message));
      const parts = [whole.file, whole.result.pixels, whole.source?.pixels].filter(Boolean);
      worker.postMessage(whole, parts.map(({ buffer }) => buffer));
    });
    return saving.finally(() => {
      this.#ends.delete(end);
      worker.terminate();
    });
  }

  #encodeAnew({ pixels, width, height }, type, quality) {
    const canvas = pixels.length ? makePicture(pixels, 0, width, height) : null;
    if (!canvas) throw tooLarge({ width, height });
    return encode(canvas, type, quality);
  }
}
