// Loads a WebAssembly module that draws on the page: its imports, its memory, its start.

import { Drawing } from './drawing.js';
import { Heap } from './heap.js';

// There is no file of any number.
const badFile = 8;

// The C library's few calls of a system, where there is none. What is printed goes to the console.
function system(heap) {
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

// By address: all that is loaded from one place on a page is compiled once.
const modules = new Map();

async function fetchModule(url) {
  const response = await fetch(url);
  if (!response.ok) throw new Error(`${response.url}: ${response.status} ${response.statusText}`);
  // Servers that give the file another type are answered with a slower way.
  if (response.headers.get('Content-Type') === 'application/wasm') {
    return WebAssembly.compileStreaming(response);
  }
  return WebAssembly.compile(await response.arrayBuffer());
}

function moduleAt(url) {
  const { href } = new URL(url, document.baseURI);
  if (!modules.has(href)) {
    const module = fetchModule(href);
    modules.set(href, module);
    // The next one tries again.
    module.catch(() => modules.delete(href));
  }
  return modules.get(href);
}

async function load(wasm, imports) {
  if (wasm instanceof ArrayBuffer || ArrayBuffer.isView(wasm)) {
    return (await WebAssembly.instantiate(wasm, imports)).instance;
  }
  const module = wasm instanceof WebAssembly.Module ? wasm : await moduleAt(wasm);
  return WebAssembly.instantiate(module, imports);
}

// wasm: a URL, the bytes or a compiled module. makeImports({ heap, drawing }) may add functions to those
// of the drawing. Returns { exports, heap, drawing }.
export async function instantiate(wasm, makeImports = () => ({})) {
  const heap = new Heap();
  const drawing = new Drawing(heap);
  const instance = await load(wasm, {
    wasi_snapshot_preview1: system(heap),
    kalim: {
      ...drawing.imports(),
      raise(name, reason) {
        throw Object.assign(new Error(heap.cString(reason)), { name: heap.cString(name) });
      },
      ...makeImports({ heap, drawing }),
    },
  });
  const { exports } = instance;
  heap.attach(exports.memory);
  exports._initialize?.();
  return { exports, heap, drawing };
}
