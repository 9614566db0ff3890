// Loads a WebAssembly module that draws on the page: its imports, its memory, its start.

import { Drawing } from './drawing.js';
import { Heap } from './heap.js';
import { system } from './system.js';

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

// What an instance is made of: of a URL, the bytes or a compiled module.
export async function compiled(wasm) {
  if (wasm instanceof WebAssembly.Module) return wasm;
  if (wasm instanceof ArrayBuffer || ArrayBuffer.isView(wasm)) return WebAssembly.compile(wasm);
  return moduleAt(wasm);
}

// wasm as that of compiled(). makeImports({ heap, drawing }) may add functions to those
// of the drawing. Returns { exports, heap, drawing }.
export async function instantiate(wasm, makeImports = () => ({})) {
  const heap = new Heap();
  const drawing = new Drawing(heap);
  const instance = await WebAssembly.instantiate(await compiled(wasm), {
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
