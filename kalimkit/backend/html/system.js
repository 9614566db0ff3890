// The C library's few calls of a system, where there is none. What is printed goes to the console.

// There is no file of any number.
const badFile = 8;

export function system(heap) {
  const known = {
    environ_sizes_get(count, size) {
      heap.words[count >>> 2] = 0;
      heap.words[size >>> 2] = 0;
      return 0;
    },
    environ_get: () => 0,
    clock_time_get(clock, precision, out) {
      const nanoseconds = BigInt(Math.round(Date.now() * 1e6));
      new DataView(heap.bytes.buffer).setBigUint64(out >>> 0, nanoseconds, true);
      return 0;
    },
    fd_write(file, parts, count, written) {
      let text = '';
      let length = 0;
      for (let i = 0; i < count; ++i) {
        const [at, size] = heap.words.subarray((parts >>> 2) + 2 * i);
        text += heap.text(at, size);
        length += size;
      }
      console.error(text);
      heap.words[written >>> 2] = length;
      return 0;
    },
    proc_exit(status) {
      throw new Error(`The program has ended with status ${status}`);
    },
  };
  return new Proxy(known, { get: (calls, name) => calls[name] ?? (() => badFile) });
}
