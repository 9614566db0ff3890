// Text measures of the browser: what the device answers about fonts and the division of texts.

const systemFamilies = 'system-ui, -apple-system, "PingFang SC", "Microsoft YaHei", sans-serif';
const widthsKept = 4000;
// Words longer than this are measured in pieces, so that the cost stays proportional to the text.
const longestPiece = 64;

const isSpace = /^\s+$/u;
const han = /^\p{Script=Han}+$/u;
// Letters that a letter before them may be joined to, which then has another shape; and what joins as
// they do and has the same width everywhere.
const joined = /^(?![\u0621\u0674\u08ad])(?=\p{L})[\p{Script=Arabic}\p{Script=Syriac}]/u;
const joiner = '\u0640';

// As the library reads what directions() writes.
const blank = 128;

// Unicode keeps these places for scripts that run from right to left; what says so of other text is among them. A
// text with nothing of it runs from left to right.
const mayTurn = /[\u0590-\u08ff\u200f\u202a-\u202e\u2066-\u2069\ufb1d-\ufdff\ufe70-\ufefe\u{10800}-\u{10fff}\u{1e800}-\u{1efff}]/u;
// Not only words, and signs of punctuation between a word and a blank.
const notPlain = /[^A-Za-z0-9\p{Unified_Ideograph} ,.:;!?]|(?<![A-Za-z0-9])[,.:;!?]|[,.:;!?](?! |$)/u;
// Where lines of plain texts may be broken; of others this is a guess until more is known.
const simpleBreaks = /(?<= )(?! )|(?<=\p{Unified_Ideograph})(?=[\p{L}\p{N}])|(?<=[\p{L}\p{N}])(?=\p{Unified_Ideograph})/gu;
// Of these each is a grapheme, the letters of Hebrew and Arabic among them.
const areSingle = /^[ -~\p{Ll}\p{Lu}\p{P}\p{Unified_Ideograph}\u05d0-\u05ea\u0621-\u064a\u0671-\u06d3]*$/u;
// Units of the texts about which something is kept.
const mostKept = 1_000_000;

const boundaryKinds = ['grapheme', 'word', 'line'];

// A context with what every text that is drawn or measured has in common: advances that are the same
// at every scale, left to right.
export function prepareText(context) {
  context.textRendering = 'geometricPrecision';
  context.direction = 'ltr';
  return context;
}

// names: of families, before those of the system.
export function fontString(names, size, isBold, isItalic) {
  // What would end a name is written by its number.
  const escaped = (name) => name.replace(/["\\\p{Cc}]/gu, (sign) => `\\${sign.codePointAt(0).toString(16)} `);
  const named = names.map((name) => `"${escaped(name)}", `).join('');
  return `${isItalic ? 'italic ' : ''}${isBold ? 'bold ' : ''}${size}px ${named}${systemFamilies}`;
}

// Whether advances are whole pixels, as where a browser hints the system's fonts.
export function roundsAdvances(context) {
  const widthAt = (size) => {
    context.font = fontString([], size, false, false);
    return context.measureText('illicit').width / size;
  };
  return Math.abs(widthAt(15) - widthAt(300)) > 0.02;
}

// What has been worked out of texts, until it is too much to keep.
class Kept {
  #answers = new Map();
  #length = 0;

  get(question, text, answer) {
    const key = `${question}\n${text}`;
    let kept = this.#answers.get(key);
    if (kept === undefined) {
      this.#length += text.length;
      if (this.#length > mostKept) this.clear();
      kept = answer();
      this.#answers.set(key, kept);
    }
    return kept;
  }

  clear() {
    this.#answers.clear();
    this.#length = 0;
  }
}

// All on a page share it: null until it has come, and what it comes with.
let unicode = null;
let coming = null;

// Has what is known of texts come. The next one to ask tries again where it cannot be had.
export function completeTexts() {
  coming ??= import('./unicode.js').then((module) => {
    unicode = module;
  }, (error) => {
    coming = null;
    throw error;
  });
  return coming;
}

export class TextMeasures {
  #context;
  #kept = new Kept();
  #widths = new Map();
  #metrics = new Map();
  #font = '';
  #segmenters;
  // Whether a text was laid out by a guess.
  #isWaiting = false;
  #known;

  // known(error) hears that texts which were asked about before have other answers now, or why they will not.
  constructor(context, known) {
    this.#context = prepareText(context);
    this.#known = known;
    this.#segmenters = {
      grapheme: new Intl.Segmenter(undefined, { granularity: 'grapheme' }),
      word: new Intl.Segmenter(undefined, { granularity: 'word' }),
    };
  }

  // There are other fonts, or more is known of texts.
  forget() {
    this.#kept.clear();
    this.#widths.clear();
    this.#metrics.clear();
    this.#font = '';
  }

  graphemes(text) {
    return this.#kept.get('', text, () => (areSingle.test(text) ? [...text] :
      Array.from(this.#segmenters.grapheme.segment(text), ({ segment }) => segment)));
  }

  // Yields points, one number for each grapheme.
  advances(text, font) {
    return this.#kept.get(font, text, () => this.#advances(text, font));
  }

  #advances(text, font) {
    this.#setFont(font);
    const advances = [];
    let piece = [];
    for (const grapheme of this.graphemes(text)) {
      piece.push(grapheme);
      if (piece.length < longestPiece && !isSpace.test(grapheme)) continue;
      this.#addPiece(piece, advances);
      piece = [];
    }
    this.#addPiece(piece, advances);
    return advances;
  }

  // Most pieces are as wide as their graphemes by themselves; in others some are kerned or joined,
  // and there an advance is what a grapheme adds to those before it, all of them in the shapes that
  // they have in the whole.
  #addPiece(graphemes, advances) {
    const alone = graphemes.map((grapheme) => this.#width(grapheme));
    const sum = alone.reduce((total, width) => total + width, 0);
    const whole = graphemes.length < 2 ? sum : this.#measure(graphemes.join(''));
    if (Math.abs(whole - sum) < 1e-3) {
      advances.push(...alone);
      return;
    }
    let prefix = '';
    let before = 0;
    graphemes.forEach((grapheme, i) => {
      prefix += grapheme;
      const next = graphemes[i + 1];
      const width = next && joined.test(next) ?
        this.#measure(prefix + joiner) - this.#width(joiner) : this.#measure(prefix);
      const after = Math.min(Math.max(width, before), whole);
      advances.push(after - before);
      before = after;
    });
  }

  // Ascent, descent and the gap between lines; browsers count that gap to neither and do not tell it.
  lineMetrics(font) {
    let metrics = this.#metrics.get(font);
    if (!metrics) {
      this.#setFont(font);
      const measured = this.#context.measureText('x');
      metrics = [measured.fontBoundingBoxAscent, measured.fontBoundingBoxDescent, 0];
      this.#metrics.set(font, metrics);
    }
    return metrics;
  }

  // Places in the text, in units of UTF-16, at which it may be divided; 0 and the end among them.
  boundaries(text, kind) {
    return this.#kept.get(boundaryKinds[kind], text, () => this.#boundaries(text, boundaryKinds[kind]));
  }

  #boundaries(text, kind) {
    const places = [0];
    if (kind === 'grapheme') {
      let place = 0;
      for (const { length } of this.graphemes(text)) places.push(place += length);
      return places;
    }
    if (kind === 'line') {
      const add = (place) => places.push(place);
      if (notPlain.test(text) && this.#isKnown()) unicode.addLineBreaks(text, add);
      else for (const { index } of text.matchAll(simpleBreaks)) add(index);
    } else {
      for (const { begin, end } of this.#words(text)) places.push(begin, end);
    }
    places.push(text.length);
    return places.sort((a, b) => a - b).filter((place, i) => place !== places[i - 1]);
  }

  // The level of the paragraph, and for each grapheme its level, and 128 where it is blank; nothing but that of a
  // paragraph that runs from left to right wholly. base is 0 for that of the first letter, 1 from left to right, 2 from
  // right to left.
  directions(text, base) {
    if (base !== 2 && !mayTurn.test(text)) return [0];
    if (!this.#isKnown()) return base === 2 ? [1, ...this.graphemes(text).map(() => 2)] : [0];
    const found = unicode.directionsOf(text, base);
    if (!found) return [0];
    const { level, levelAt, isBlankAt } = found;
    const places = this.boundaries(text, boundaryKinds.indexOf('grapheme')).slice(0, -1);
    return [level, ...places.map((place) => levelAt(place) | (isBlankAt(place) ? blank : 0))];
  }

  #isKnown() {
    if (unicode || this.#isWaiting) return unicode !== null;
    this.#isWaiting = true;
    completeTexts().then(() => this.#known(), (error) => this.#known(error));
    return false;
  }

  // Hanzi side by side are one word: where browsers divide them differs with their dictionaries.
  #words(text) {
    const words = [];
    for (const { index, segment, isWordLike } of this.#segmenters.word.segment(text)) {
      if (!isWordLike) continue;
      const last = words.at(-1);
      const isHan = han.test(segment);
      if (isHan && last?.isHan && last.end === index) last.end += segment.length;
      else words.push({ begin: index, end: index + segment.length, isHan });
    }
    return words;
  }

  #setFont(font) {
    if (font === this.#font) return;
    this.#font = font;
    this.#context.font = font;
  }

  #measure(text) {
    return this.#context.measureText(text).width;
  }

  #width(grapheme) {
    const key = `${this.#font}\n${grapheme}`;
    let width = this.#widths.get(key);
    if (width === undefined) {
      if (this.#widths.size >= widthsKept) this.#widths.clear();
      width = this.#measure(grapheme);
      this.#widths.set(key, width);
    }
    return width;
  }
}
