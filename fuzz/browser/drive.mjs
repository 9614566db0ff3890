// Calls what the page's modules export with arbitrary numbers, texts, pictures and files:
// node fuzz/browser/drive.mjs SECONDS. KALIM_SEED=N repeats the round N alone. A round is an editor with some
// hundred calls and one saving. What the modules raise by themselves ends a round; every other end is a finding, and
// so are calls of the page with what it does not have, a round that does not end and one that takes too much memory.

import { existsSync, readFileSync, readdirSync } from 'node:fs';
import { join } from 'node:path';
import { argv, env } from 'node:process';
import { fileURLToPath } from 'node:url';
import { Worker, isMainThread, parentPort, workerData } from 'node:worker_threads';

const root = fileURLToPath(new URL('../..', import.meta.url));
const packed = join(root, 'build/wasm/npm/kalimkit');
const patience = 30000;
const callsOfRound = 400;
const mostMemory = { editor: 512 * 2 ** 20, saving: 1.5 * 2 ** 30 };

// ---- arbitrary values

let state = 0;
// From 0 to 1, without 1.
function random() {
  state = (state + 0x6d2b79f5) | 0;
  let mixed = Math.imul(state ^ (state >>> 15), state | 1);
  mixed ^= mixed + Math.imul(mixed ^ (mixed >>> 7), mixed | 61);
  return ((mixed ^ (mixed >>> 14)) >>> 0) / 2 ** 32;
}
const below = (count) => Math.floor(random() * count);
const oneOf = (values) => values[below(values.length)];
const integer = () => oneOf([below(4), below(12), below(400), -1, -below(400), 2 ** 31 - 1, -(2 ** 31), below(2 ** 32) | 0]);
const number = () => (below(8) ? random() * oneOf([1, 20, 400]) :
  oneOf([0, -0, NaN, Infinity, -Infinity, 1e9, -1e9, 1e300, 1e-300, -random() * 400]));

const encoder = new TextEncoder();
const words = ['', 'a', '一', '👨‍👩‍👧', 'é', '\u0000', '\n', ' ', '\u202e', 'ctrl+', 'alt+', 'shift+', 'z', 'left', 'backspace',
  'enter', 'tab', 'escape', 'space', 'delete', 'p', '5', '[', '{"step":', '}', '[]', '"x"', '-1e308', 'en-GB', 'zh'];
const wordsText = () => encoder.encode(Array.from({ length: below(6) }, () => oneOf(words)).join(''));
const noise = () => Uint8Array.from({ length: below(64) }, () => below(256));
const longText = () => encoder.encode(oneOf(words).repeat(below(4000)));
const text = () => oneOf([wordsText, wordsText, wordsText, noise, longText])();

const corpusOf = (name) => {
  const folder = join(root, 'fuzz/corpus', name);
  return readdirSync(folder).sort().map((file) => readFileSync(join(folder, file)));
};
const corpus = { document: corpusOf('document'), picture: ['jpeg', 'png', 'webp', 'saving'].flatMap(corpusOf) };

// A file of the tree, or what some mistakes make of it.
function file(kind) {
  let bytes = Uint8Array.from(oneOf(corpus[kind]));
  for (let left = below(2) && below(8); left > 0 && bytes.length; --left) {
    const at = below(bytes.length);
    if (below(10) === 0) bytes = bytes.slice(0, at);
    else bytes[at] = below(2) ? below(256) : bytes[at] ^ (1 << below(8));
  }
  return bytes;
}

// ---- the page, as the editor's module calls it

class Finding extends Error {}

class Page {
  // Width and height by number, of pictures and surfaces.
  things = new Map();
  memory = null;
  raised = null;
  #last = 0;

  add(width, height) {
    this.things.set(++this.#last, [width, height]);
    return this.#last;
  }

  bytes(at, length) {
    const begin = at >>> 0;
    if (length < 0 || begin + length > this.memory.buffer.byteLength) throw new Finding(`${length} bytes at ${begin}`);
    return new Uint8Array(this.memory.buffer, begin, length);
  }

  text(at, length) {
    return new TextDecoder().decode(this.bytes(at, length));
  }

  #known(id) {
    if (!this.things.has(id)) throw new Finding(`the page has no picture ${id}`);
    return this.things.get(id);
  }

  // Fonts are half as wide as high, and there is room for what is not too large, most of the time.
  get imports() {
    const room = (width, height) => (width * height < 2 ** 24 && below(100) ? this.add(width, height) : 0);
    const write = (Kind, at, numbers) => {
      const bytes = new Uint8Array(Kind.from(numbers).buffer);
      this.bytes(at, bytes.length).set(bytes);
      return numbers.length;
    };
    const given = (out, most) => {
      const bytes = text();
      this.bytes(out, most).set(bytes.subarray(0, most));
      return bytes.length;
    };
    const known = {
      surface_make: room,
      surface_picture: (id) => room(...this.#known(id)),
      picture_make: (at, width, height) => (this.bytes(at, width * height * 4), room(width, height)),
      picture_width: (id) => this.things.get(id)?.[0] ?? 0,
      picture_height: (id) => this.things.get(id)?.[1] ?? 0,
      picture_read: (id, at) => {
        const [width, height] = this.#known(id);
        this.bytes(at, width * height * 4).fill(below(256));
      },
      release: (id) => (this.#known(id), this.things.delete(id)),
      draw: (surface, source) => (this.#known(surface), this.#known(source), 0),
      advances: (at, length, family, familyLength, size, style, out) =>
        write(Float64Array, out, [...this.text(at, length)].map(() => size / 2)),
      line_metrics: (family, length, size, style, out) => write(Float64Array, out, [size, size / 4, 0]),
      boundaries: (at, length, kind, out) => {
        const places = new Set([0]);
        let end = 0;
        for (const letter of this.text(at, length)) places.add(end += letter.length);
        return write(Uint32Array, out, [...places]);
      },
      wall_clock: () => 1e9,
      localized: (key, length, out, most) => (below(20) ? -1 : given(out, most)),
      clipboard_read: given,
      user_default: () => below(3) - 1,
      user_setting: (key, length, out, most) => (below(2) ? -1 : given(out, most)),
      may_delete: () => below(4) > 0,
      raise: (name, reason) => {
        this.raised = new Error(`${this.#cString(name)}: ${this.#cString(reason)}`);
        throw this.raised;
      },
    };
    return new Proxy(known, { get: (calls, name) => calls[name] ?? (() => 0) });
  }

  #cString(at) {
    const bytes = new Uint8Array(this.memory.buffer, at >>> 0);
    return new TextDecoder().decode(bytes.slice(0, bytes.indexOf(0)));
  }
}

// What a call takes: n a number, i an integer, b 0 or 1, p a picture, d the number of a document, t a text, j a
// document, f a picture's file: of these three the length, as they lie one behind the other in the buffer.
const calls = {
  picture_file: 'if', accessibility_update: '', accessibility_activate: 'i', read_document: 'j',
  document_media_type: 'd', document_file: 'd', document_fits: 'dii', drop_document: 'd', open_document: 'dpbbt',
  offer_document: 'dp', tell_work: 't', go_on: 'pbbt', ask_to_reopen: '', begin_document: 'b', end_document: 'ttt',
  hash: 't', drop_answer: '', resize: 'nnn', safe_area: 'nnnn', reduce_motion: 'b', keyboard: 'n', advance: 'T', redraw: '',
  next_due: '', fingers: 'iF', pan: 'iinn', zoom: 'nnnnn', scroll: 'nnnn', press_key: 'tb', release_key: 't', open: 'pbbt', offer: 'p',
  refuse: 't', dismiss: '', click_pick_image: '', picked: 'p', export_picture: 'i', end_export: '', save_to_album: 't',
  copy_failed: '', choose_pen: 'i', choose_color: 'i', choose_line_width: 'n', set_title: 'bt', ask_to_close: '', undo: '',
  redo: '', set_layout: 'i', set_pens: 't', set_colors: 'i', set_widths: 'i', wants_rest: '', press_menu: 'nn', hover: 'nn', hover_left: '', hold_keys: 'bbbb', appearance: 'bb', palette_names: '', palette_color: 'tbi',
  palette_changed: '', properties: '', set_property: 'ttbn', delete_selected: '', insert_text: 't', replace_text: 'iit', select_text: 'ii', compose_text: 'tii', state: '', withdraw_questions: '',
};
// Without these hardly anything happens.
const usual = ['fingers', 'fingers', 'advance', 'press_key', 'insert_text', 'open', 'choose_pen', 'export_picture'];

// What tools/split-module has split: the rest is there from the beginning.
function driveEditor([module, rest], called) {
  const page = new Page();
  const wasi = new Proxy({}, { get: () => () => 8 });
  const split = WebAssembly.Module.imports(module).filter((entry) => entry.module.startsWith('kalimkit-'));
  const tooEarly = () => { throw new Finding('the rest of the module was called before it was there'); };
  const placeholders = Object.fromEntries(split.map(({ name }) => [name, tooEarly]));
  const { exports } = new WebAssembly.Instance(module,
    { kalim: page.imports, wasi_snapshot_preview1: wasi, [split[0]?.module]: placeholders });
  page.memory = exports.memory;
  let time = 0;
  const later = () => (time += random() * oneOf([0.02, 0.3, 5]));
  const finger = () => [later(), below(3), random() * 400, below(20) ? random() * 850 : number()];
  const make = (buffer) => ({
    n: number, i: integer, b: () => below(2), T: later, d: () => below(8),
    p: () => (below(10) ? page.add(1 + below(oneOf([9, 300])), 1 + below(300)) : -below(2)),
    ...Object.fromEntries([['t', text], ['j', () => file('document')], ['f', () => file('picture')]].map(([kind, one]) =>
      [kind, () => { const bytes = one(); buffer.push(bytes); return below(60) ? bytes.length : integer(); }])),
    F: () => {
      const numbers = Float64Array.from(Array.from({ length: 1 + below(4) }, finger).flat());
      buffer.push(new Uint8Array(numbers.buffer));
      return numbers.length / 4;
    },
  });
  const call = (name, ...values) => {
    called(`${name}(${values})`);
    return exports[name](...values);
  };
  try {
    exports._initialize();
    if (rest) new WebAssembly.Instance(rest, { [split[0].module]: exports });
    call('create', ...oneOf([[390, 844], [1100, 700]]), 1 + below(3));
    call('rest_arrived');
    call('open', page.add(120, 90), 1, 0, 0);
    call('advance', time += 2);
    for (let left = callsOfRound; left > 0; --left) {
      const name = below(2) ? oneOf(usual) : oneOf(Object.keys(calls));
      const buffer = [];
      const kinds = make(buffer);
      const values = name === 'fingers' ? [below(20) ? below(4) : integer(), kinds.F()] :
        [...calls[name]].map((kind) => kinds[kind]());
      const whole = Buffer.concat(buffer);
      const at = exports.buffer(whole.length);
      page.bytes(at, whole.length).set(whole);
      call(name, ...values);
      page.bytes(exports.answer(), exports.answer_length());
    }
    call('destroy');
  } catch (error) {
    if (error !== page.raised) throw error;
  }
  return [exports.memory.buffer.byteLength, page.raised];
}

function driveSaving(module, called) {
  const wasi = new Proxy({}, { get: () => () => 8 });
  const { exports } = new WebAssembly.Instance(module, { wasi_snapshot_preview1: wasi });
  exports._initialize();
  const room = (at, length, fill) => fill(new Uint8Array(exports.memory.buffer, at >>> 0, length));
  const given = file('picture');
  room(exports.file(given.length), given.length, (bytes) => bytes.set(given));
  const sizes = [0, 1].slice(0, 1 + below(2)).map((place) => {
    const [width, height] = oneOf([[16, 16], [64, 48], [1 + below(80), 1 + below(80)]]);
    room(exports.picture(place, width, height), width * height * 4, (bytes) => bytes.fill(below(256)));
    return [width, height];
  });
  const rects = Int32Array.from({ length: 4 * below(4) }, integer);
  room(exports.hidden(rects.length / 4), rects.byteLength, (bytes) => bytes.set(new Uint8Array(rects.buffer)));
  const placement = below(2) ? [0, 0, ...sizes[0], 0, 0, below(4)] : Array.from({ length: 7 }, integer);
  const values = [below(10) ? below(3) : integer(), below(3) ? 0 : integer(), below(10) ? below(3) : integer(), ...placement];
  called(`save(${values}) of ${given.length} bytes, ${sizes}`);
  const isSaved = exports.save(...values);
  for (const which of [0, 1, 2]) room(exports.answer(which), exports.answer_length(which), () => {});
  if (!isSaved && !exports.answer_length(1)) throw new Finding('a saving failed without a reason');
  return [exports.memory.buffer.byteLength, null];
}

// ---- rounds

async function drive({ seconds, first, isAlone, ticks }) {
  const at = (name) => join(packed, 'host/browser', name);
  const load = async (name) => WebAssembly.compile(readFileSync(at(name)));
  const rest = existsSync(at('kalimkit-desk.wasm')) ? await load('kalimkit-desk.wasm') : null;
  const parts = [['editor', driveEditor, [await load('kalimkit.wasm'), rest]]];
  // Builds without the libraries' sources go without it.
  if (existsSync(at('kalimkit-codec.wasm'))) parts.push(['saving', driveSaving, await load('kalimkit-codec.wasm')]);
  const end = Date.now() + seconds * 1000;
  const raised = new Map();
  let seed = first;
  for (; seed === first || (!isAlone && Date.now() < end); ++seed) {
    for (const [name, work, module] of parts) {
      state = seed;
      const trace = [];
      Atomics.store(ticks, 0, seed);
      try {
        const [memory, error] = work(module, (line) => { trace.push(line.slice(0, 200)); Atomics.add(ticks, 1, 1); });
        if (memory > mostMemory[name]) throw new Finding(`${memory} bytes of memory`);
        if (error) raised.set(error.message, seed);
      } catch (error) {
        const calls = isAlone ? trace : trace.slice(-5);
        parentPort.postMessage({ finding: `${name}, KALIM_SEED=${seed}: ${error.stack}\nafter\n${calls.join('\n')}` });
        return;
      }
    }
  }
  const told = [...raised].map(([message, of]) => `raised in round ${of}: ${message}\n`).join('');
  parentPort.postMessage({ told: `${told}${seed - first} rounds of ${parts.map(([name]) => name)} from ${first} on, nothing found` });
}

if (isMainThread) {
  const ticks = new Int32Array(new SharedArrayBuffer(8));
  const first = Number(env.KALIM_SEED ?? Date.now() % 2 ** 31);
  const data = { seconds: Number(argv[2] ?? 30), first, isAlone: 'KALIM_SEED' in env, ticks };
  const finish = ({ finding, told }) => {
    console.log(finding ? `Found: ${finding}` : told);
    process.exit(finding ? 1 : 0);
  };
  new Worker(new URL(import.meta.url), { workerData: data }).on('message', finish).on('error', (error) => finish({ finding: error.stack }));
  let before = '';
  setInterval(() => {
    if (before === String(ticks)) finish({ finding: `KALIM_SEED=${ticks[0]} does not end` });
    before = String(ticks);
  }, patience);
} else {
  await drive(workerData);
}
