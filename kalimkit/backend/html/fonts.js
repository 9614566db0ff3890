// Fonts that a page hands over. Each instance of the library has its own, and what it sets texts in has names that
// no style sheet knows.

const kinds = new Set([0x00010000, 0x74727565, 0x4f54544f]);
const collection = 0x74746366;
// WOFF, of either version.
const packed = new Set([0x774f4646, 0x774f4632]);
const usualWeight = 400;
const boldWeight = 700;
const typographicMetrics = 0x80;
const italicBit = 1;
const familyNames = [16, 1];
const english = 0x409;

const colored = ['COLR', 'CBDT', 'sbix', 'SVG '];
const picture = /^\p{Emoji_Presentation}$/u;
const firstPicture = 0x2000;
const behindPictures = 0x20000;

let count = 0;
let allButPictures = null;

// Signs that are pictures by themselves are drawn in colours even where a font has them in black.
function rangeWithoutPictures() {
  if (allButPictures) return allButPictures;
  const ranges = [];
  let begin = 0;
  for (let code = firstPicture; code < behindPictures; ++code) {
    if (!picture.test(String.fromCodePoint(code))) continue;
    if (code > begin) ranges.push([begin, code - 1]);
    begin = code + 1;
  }
  ranges.push([begin, 0x10ffff]);
  allButPictures = ranges.map((range) => `U+${range.map((code) => code.toString(16)).join('-')}`).join();
  return allButPictures;
}

const tagOf = (view, at) => String.fromCharCode(...new Uint8Array(view.buffer, view.byteOffset + at, 4));

function tablesOf(view, begin) {
  const tables = new Map();
  for (let i = 0; i < view.getUint16(begin + 4); ++i) {
    const at = begin + 12 + i * 16;
    tables.set(tagOf(view, at), [view.getUint32(at + 8), view.getUint32(at + 12), at]);
  }
  return tables;
}

// A font of a collection as a file of its own, as browsers take no others.
function faceOf(view, begin) {
  const tables = [...tablesOf(view, begin).values()];
  const head = 12 + tables.length * 16;
  const padded = (length) => (length + 3) & ~3;
  const bytes = new Uint8Array(tables.reduce((sum, [, length]) => sum + padded(length), head));
  bytes.set(new Uint8Array(view.buffer, view.byteOffset + begin, head));
  const directory = new DataView(bytes.buffer);
  let end = head;
  for (const [offset, length, at] of tables) {
    bytes.set(new Uint8Array(view.buffer, view.byteOffset + offset, length), end);
    directory.setUint32(at - begin + 8, end);
    end += padded(length);
  }
  return bytes;
}

function facesOf(bytes) {
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
  const kind = view.getUint32(0);
  if (kinds.has(kind)) return [bytes];
  if (kind !== collection) throw new TypeError('only TrueType and OpenType are read');
  return Array.from({ length: view.getUint32(8) }, (_, i) => faceOf(view, view.getUint32(12 + i * 4)));
}

function familyOf(view, at) {
  const names = [];
  for (let i = 0; i < view.getUint16(at + 2); ++i) {
    const entry = at + 6 + i * 12;
    const [platform, , language, name, length, offset] = [0, 2, 4, 6, 8, 10].map((field) => view.getUint16(entry + field));
    if (!familyNames.includes(name) || (platform !== 3 && platform !== 1)) continue;
    const begin = view.byteOffset + at + view.getUint16(at + 4) + offset;
    const decoder = new TextDecoder(platform === 3 ? 'utf-16be' : 'macintosh');
    const rank = familyNames.indexOf(name) * 4 + (platform === 3 ? 0 : 2) + (language === english || language === 0 ? 0 : 1);
    names.push([rank, decoder.decode(new Uint8Array(view.buffer, begin, length))]);
  }
  return names.sort(([a], [b]) => a - b)[0]?.[1];
}

// The lightest and the boldest weight of a font that has all between them; null where it has one alone.
function weightsOf(view, at) {
  const axes = at + view.getUint16(at + 4);
  for (let i = 0; i < view.getUint16(at + 8); ++i) {
    const axis = axes + i * view.getUint16(at + 10);
    if (tagOf(view, axis) === 'wght') return [view.getInt32(axis + 4) / 65536, view.getInt32(axis + 12) / 65536];
  }
  return null;
}

// What its tables say; lengths are parts of the font's size.
function readFace(bytes) {
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
  const tables = tablesOf(view, 0);
  const [name, head, hhea, os2, fvar] = ['name', 'head', 'hhea', 'OS/2', 'fvar'].map((tag) => tables.get(tag)?.[0]);
  const family = familyOf(view, name);
  const unit = view.getUint16(head + 18);
  const [place, from] = os2 && view.getUint16(os2 + 62) & typographicMetrics ? [os2, 68] : [hhea, 4];
  const [ascent, descent, leading] = [0, 2, 4].map((field) => view.getInt16(place + from + field) / unit);
  return {
    family,
    isColored: colored.some((tag) => tables.has(tag)),
    weights: (fvar && weightsOf(view, fvar)) ?? Array(2).fill(os2 ? view.getUint16(os2 + 4) : usualWeight),
    isItalic: Boolean(os2 && view.getUint16(os2 + 62) & italicBit),
    metrics: [ascent, -descent, leading].map((length) => Math.max(length, 0)),
  };
}

export class Fonts {
  #faces = [];
  #families = [];
  #number = ++count;
  #isDropped = false;

  // The names of families that texts are set in, before those of the system: of one if it was added, else itself, and
  // of all in their order.
  namesFor(family) {
    const own = this.#faces.find((face) => face.family === family)?.name ?? family;
    return [...new Set([...(own ? [own] : []), ...this.#faces.map((face) => face.name)])];
  }

  // Ascent, descent and gap of a font's lines, parts of its size; null where it is none that was added.
  metricsOf(family, isBold, isItalic) {
    const wanted = family || this.#faces[0]?.family;
    const weight = isBold ? boldWeight : usualWeight;
    const distance = ({ weights: [least, most], isItalic: isSlanted }) =>
      Math.max(least - weight, weight - most, 0) + (isSlanted === isItalic ? 0 : 2000);
    const faces = this.#faces.filter((face) => face.family === wanted);
    return faces.sort((a, b) => distance(a) - distance(b))[0]?.metrics ?? null;
  }

  // Takes the bytes of a file; the family's name. Rejects with what is wrong with it.
  async add(bytes) {
    let faces;
    if (bytes.byteLength > 3 && packed.has(new DataView(bytes.buffer, bytes.byteOffset).getUint32(0))) {
      throw new TypeError('this is a WOFF file; only TrueType and OpenType are read');
    }
    try {
      faces = facesOf(bytes).map((one) => ({ bytes: one, ...readFace(one) }));
    } catch (error) {
      throw new TypeError('this is no font that can be read and drawn at every size', { cause: error });
    }
    for (const face of faces) {
      face.name = this.#nameOf(face.family);
      face.loaded = new FontFace(face.name, face.bytes, {
        weight: [...new Set(face.weights)].join(' '),
        style: face.isItalic ? 'italic' : 'normal',
        unicodeRange: face.isColored ? 'U+0-10FFFF' : rangeWithoutPictures(),
      });
    }
    await Promise.all(faces.map(({ loaded }) => loaded.load()));
    if (this.#isDropped) return faces[0].family;
    for (const { loaded, family, name, weights, isItalic, metrics } of faces) {
      document.fonts.add(loaded);
      this.#faces.push({ loaded, family, name, weights, isItalic, metrics });
    }
    return faces[0].family;
  }

  #nameOf(family) {
    if (!this.#families.includes(family)) this.#families.push(family);
    return `kalim-${this.#number}-${this.#families.indexOf(family)}`;
  }

  // Gives them back.
  drop() {
    for (const { loaded } of this.#faces) document.fonts.delete(loaded);
    this.#faces = [];
    this.#isDropped = true;
  }
}
