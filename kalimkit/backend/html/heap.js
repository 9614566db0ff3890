// The memory of a WebAssembly instance, as its imports read and write it. Growing the memory detaches
// every view of it, so a view is made anew when that has happened. Addresses may arrive as negative
// numbers.
export class Heap {
  #memory = null;
  #views = {};
  #decoder = new TextDecoder('utf-8', { ignoreBOM: true });
  #encoder = new TextEncoder();

  attach(memory) {
    this.#memory = memory;
  }

  get bytes() {
    return this.#view('bytes', Uint8Array);
  }

  get words() {
    return this.#view('words', Uint32Array);
  }

  get doubles() {
    return this.#view('doubles', Float64Array);
  }

  #view(name, Kind) {
    const { buffer } = this.#memory;
    if (this.#views[name]?.buffer !== buffer) this.#views[name] = new Kind(buffer);
    return this.#views[name];
  }

  // Bytes that are no UTF-8 become replacement characters.
  text(at, length) {
    const begin = at >>> 0;
    return length ? this.#decoder.decode(this.bytes.subarray(begin, begin + length)) : '';
  }

  // A text that ends with a zero byte.
  cString(at) {
    const begin = at >>> 0;
    return this.text(begin, this.bytes.indexOf(0, begin) - begin);
  }

  // Writes as much of the text as fits, in whole characters; returns how many bytes that took.
  writeText(text, at, room) {
    const begin = at >>> 0;
    return this.#encoder.encodeInto(text, this.bytes.subarray(begin, begin + room)).written;
  }

  encode(text) {
    return this.#encoder.encode(text);
  }
}
