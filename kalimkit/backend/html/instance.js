// Loads a WebAssembly module that draws on the page: its imports, its memory, its start.

import { Drawing } from './drawing.js';
import { Heap } from './heap.js';
import { system } from './system.js';

// By address: all that is loaded from one place on a page is compiled once.
const modules = new Map();

async function fetchModule(url) {
  const response = await fetch(url).catch((error) => {
    throw new Error(`${url}: ${error.message}`, { cause: error });
  });
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

// Of a module that tools/split-module has split, what its rest is to be instantiated with; null for a whole one.
function splitName(module) {
  return WebAssembly.Module.imports(module).find((entry) => entry.module.startsWith('kalimkit-'))?.module ?? null;
}

// Stands for what is in the rest until that is there.
function placeholders(module) {
  const tooEarly = () => {
    throw new Error('The rest of the module was called before it was there');
  };
  const names = WebAssembly.Module.imports(module).filter((entry) => entry.module.startsWith('kalimkit-'));
  return Object.fromEntries(names.map(({ name }) => [name, tooEarly]));
}

// wasm as that of compiled(). makeImports({ heap, drawing }) may add functions to those
// of the drawing. Returns { exports, heap, drawing, join }: join is null unless the module was split; join(wasm)
// instantiates the rest of it.
export async function instantiate(wasm, makeImports = () => ({})) {
  const heap = new Heap();
  const drawing = new Drawing(heap);
  const module = await compiled(wasm);
  const name = splitName(module);
  const instance = await WebAssembly.instantiate(module, {
    ...(name ? { [name]: placeholders(module) } : {}),
    wasi_snapshot_preview1: system(heap),
    Math,
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
  return { exports, heap, drawing, join: name && ((rest) => joinRest(rest, name, exports)) };
}

async function joinRest(wasm, name, exports) {
  const module = await compiled(wasm);
  if (splitName(module) !== name) throw new Error('The two parts of the module are not of one version');
  await WebAssembly.instantiate(module, { [name]: exports });
}
