// Plays scenarios on this page's canvases, and holds pictures against each other. Driven from outside
// through window.scenarios.

import { instantiate } from '/kalimkit/backend/html/instance.js';
import { comparePictures, sideBySide, strictLimits, textLimits } from './pictures.js';

const module = WebAssembly.compileStreaming(fetch('/modules/scenario-player.wasm'));
const played = new Map();

function canvasOf(source, width = source.width, height = source.height) {
  const canvas = new OffscreenCanvas(width, height);
  canvas.getContext('2d', { willReadFrequently: true }).drawImage(source, 0, 0);
  return canvas;
}

async function loadPicture(url) {
  const response = await fetch(url);
  if (!response.ok) throw new Error(`${url}: ${response.status}`);
  return canvasOf(await createImageBitmap(await response.blob()));
}

async function dataUrl(canvas) {
  const reader = new FileReader();
  reader.readAsDataURL(await canvas.convertToBlob({ type: 'image/png' }));
  await new Promise((done) => (reader.onload = done));
  return reader.result;
}

window.scenarios = {
  // lines: of the scenario; picture: the name of the first picture, or nothing; pictures: the URL of
  // each that it names; editor: nothing for the bare canvas, else { nativeHeight, entrance: its five
  // numbers, userDefaults: by their keys }; fonts: URLs. Returns { prints, exported: names, problem }.
  async play({ width, height, scale, forgiving, picture, pictures, editor, fonts, lines }) {
    const files = new Map();
    for (const [name, url] of Object.entries(pictures)) {
      // What cannot be read is the scenario's own affair.
      const file = await loadPicture(url).catch(() => null);
      if (file) files.set(name, file);
    }
    const prints = [];
    played.clear();
    const { exports, heap, drawing } = await instantiate(await module, ({ heap, drawing }) => ({
      scenario_load(name, length) {
        const file = files.get(heap.text(name, length));
        return file ? drawing.addPicture(canvasOf(file)) : 0;
      },
      scenario_save(name, length, id) {
        played.set(heap.text(name, length), canvasOf(drawing.sourceOf(id)));
      },
      scenario_print: (line, length) => prints.push(heap.text(line, length)),
    }));
    for (const url of fonts) await drawing.addFont(new Uint8Array(await (await fetch(url)).arrayBuffer()));
    await drawing.completeTexts();
    const put = (text) => {
      const room = heap.encode(text).length;
      return heap.writeText(text, exports.buffer(room), room);
    };
    const found = (length) => (length ? heap.text(exports.problem(), length) : null);
    if (forgiving) exports.use_forgiving();
    if (editor) {
      exports.use_editor(editor.nativeHeight ?? 0);
      exports.use_layout(put(editor.layout ?? 'phone'));
      if (editor.entrance) exports.use_entrance(...editor.entrance);
      for (const [key, value] of Object.entries(editor.userDefaults)) exports.use_default(put(key), value);
    }
    let problem = found(exports.start(width, height, scale, put(picture)));
    for (let i = 0; i < lines.length && !problem; ++i) {
      problem = found(exports.play(put(lines[i])));
      if (problem) problem = `line ${i + 1}: ${problem}`;
    }
    exports.finish();
    drawing.end();
    return { prints, exported: [...played.keys()], problem };
  },

  // Holds an exported picture of the last play against the one at a URL; see comparePictures. Returns
  // the message, and the two beside each other as a PNG's data URL.
  async compare({ name, url, scale, hasText }) {
    const expected = await loadPicture(url);
    const actual = played.get(name);
    const { message, tiles } = comparePictures(expected, actual,
      hasText ? textLimits(scale) : strictLimits);
    return { message, picture: await dataUrl(sideBySide(expected, actual, tiles)) };
  },

  // Whether a comparison sees a dot of so many pixels that is missing, and overlooks one that has moved.
  canCompare(side) {
    const [whole, moved, without] = [8, 9, null].map((at) => {
      const canvas = new OffscreenCanvas(64, 64);
      const context = canvas.getContext('2d');
      context.fillStyle = '#f33';
      if (at !== null) context.fillRect(at, at, side, side);
      return canvas;
    });
    const differ = (a, b) => comparePictures(a, b).message !== '';
    return {
      missing: differ(whole, without),
      added: differ(without, whole),
      moved: differ(whole, moved),
    };
  },
};
