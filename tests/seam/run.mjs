// Runs a WebAssembly command with what the core imports: node run.mjs PROGRAM.wasm
import { readFile } from 'node:fs/promises';
import { argv, exit } from 'node:process';
import { WASI } from 'node:wasi';

const wasi = new WASI({ version: 'preview1', returnOnExit: true });
let memory;

// Both arguments are C strings.
function kalim_raise(name, reason) {
  const text = (at) => {
    const bytes = new Uint8Array(memory.buffer, at);
    return new TextDecoder().decode(bytes.slice(0, bytes.indexOf(0)));
  };
  throw new Error(`${text(name)}: ${text(reason)}`);
}

const module = await WebAssembly.compile(await readFile(argv[2]));
const instance = await WebAssembly.instantiate(module, {
  wasi_snapshot_preview1: wasi.wasiImport,
  env: { kalim_raise },
});
memory = instance.exports.memory;
exit(wasi.start(instance));
