// The library's module as the editor calls it.

import { compiled, instantiate } from '../../backend/html/instance.js';

// A module that has thrown is in no state to be called again: nothing that it had begun was ended. It
// is destroyed only when its outermost call has returned.
export class Module {
  heap;
  drawing;
  #exports = null;
  #depth = 0;
  #failure = null;
  #isLeaving = false;
  #failed;
  // Null once everything is there.
  #join;
  #rest;
  #joining = null;

  // wasm and makeImports as those of instantiate(); rest.wasm is where the desk and the kit are, of a module without
  // them, and rest.arrived() hears that they are there; failed(error) hears of the first thing thrown.
  static async load(wasm, rest, makeImports, failed) {
    const module = new Module();
    const { exports, heap, drawing, join } = await instantiate(wasm, makeImports);
    module.#exports = exports;
    module.#join = join;
    module.#rest = rest;
    module.#failed = failed;
    module.heap = heap;
    module.drawing = drawing;
    return module;
  }

  // Whether it can be called.
  get isAlive() {
    return !this.#failure && !this.#isLeaving;
  }

  // ---- the desk and the kit, of which nothing may be used before they are there
  get isWhole() {
    return !this.#join;
  }

  // Has them on their way, which takes no time when they are wanted soon.
  fetchRest() {
    if (this.#join) compiled(this.#rest.wasm).catch(() => {});
  }

  // Rejects where they cannot be had; the next call tries again.
  async complete() {
    if (!this.#join) return;
    this.#joining ??= this.#join(this.#rest.wasm).finally(() => {
      this.#joining = null;
    });
    await this.#joining;
    if (!this.#join) return;
    this.#join = null;
    if (this.isAlive) this.#rest.arrived();
  }

  // The same with what is known of texts, which also go without it: for what was drawn before.
  async completeForDrawings() {
    const known = this.drawing.completeTexts().catch(() => {});
    await this.complete();
    await known;
  }

  call(name, ...values) {
    if (this.#failure) {
      throw new Error(`The editor has stopped: ${this.#failure.message}`, { cause: this.#failure });
    }
    if (this.#isLeaving) throw new Error('The editor has been destroyed');
    return this.#run(name, values);
  }

  // Puts a text where the module looks for it; the number of its bytes.
  put(text) {
    const bytes = this.heap.encode(text);
    this.heap.bytes.set(bytes, this.call('buffer', bytes.length) >>> 0);
    return bytes.length;
  }

  // All one behind the other; how many they are.
  putBytes(...parts) {
    const length = parts.reduce((sum, part) => sum + part.length, 0);
    let at = this.call('buffer', length) >>> 0;
    for (const part of parts) {
      this.heap.bytes.set(part, at);
      at += part.length;
    }
    return length;
  }

  // What the last call had to say beside its answer.
  takeBytes() {
    const at = this.call('answer') >>> 0;
    const bytes = this.heap.bytes.slice(at, at + this.call('answer_length'));
    this.call('drop_answer');
    return bytes;
  }

  takeText() {
    return new TextDecoder().decode(this.takeBytes());
  }

  putNumbers(numbers) {
    this.heap.doubles.set(numbers, this.call('buffer', numbers.length * 8) >>> 3);
  }

  destroy() {
    if (this.#isLeaving) return;
    this.#isLeaving = true;
    if (this.#depth === 0) this.#leave();
  }

  #run(name, values) {
    ++this.#depth;
    try {
      return this.#exports[name](...values);
    } catch (error) {
      if (!this.#failure) {
        this.#failure = error;
        this.#failed(error);
      }
      throw error;
    } finally {
      if (--this.#depth === 0 && this.#isLeaving) this.#leave();
    }
  }

  #leave() {
    const exports = this.#exports;
    this.#exports = null;
    if (exports && !this.#failure) exports.destroy();
    this.drawing.end();
  }
}
