// Text measures of the browser: what the device answers about fonts and the division of texts.

const systemFamilies = 'system-ui, -apple-system, "PingFang SC", "Microsoft YaHei", sans-serif';
const widthsKept = 4000;
// Words longer than this are measured in pieces, so that the cost stays proportional to the text.
const longestPiece = 64;

const isSpace = /^\s+$/u;
const ideographic = /^[\p{Script=Han}\p{Script=Hiragana}\p{Script=Katakana}\p{Script=Hangul}\u3000-\u303f\uff00-\uffef]/u;
const han = /^\p{Script=Han}+$/u;
const neverBefore = /^[!%),.:;?\]}¢°·’”†‡›℃∶、。〃〆〕〗〞﹚﹜！＂％＇），．：；？］｀｜｝～\u3005\u300b\u300d\u300f\u3011\u3015\u3017\u30fc\u3041\u3043\u3045\u3047\u3049\u3063\u3083\u3085\u3087\u308e\u30a1\u30a3\u30a5\u30a7\u30a9\u30c3\u30e3\u30e5\u30e7\u30ee\u30fb…—]/u;
const neverAfter = /^[$(£¥‘“〈《「『【〔〖〝﹗﹙﹛＄（．［｛￡￥[{]/u;
const joins = /^[\u00a0\u2060\u202f\ufeff]/u;
const letter = /^[\p{L}\p{N}]/u;
// Letters that a letter before them may be joined to, which then has another shape; and what joins as
// they do and has the same width everywhere.
const joined = /^(?![\u0621\u0674\u08ad])(?=\p{L})[\p{Script=Arabic}\p{Script=Syriac}]/u;
const joiner = '\u0640';

const boundaryKinds = ['grapheme', 'word', 'line'];

// A context with what every text that is drawn or measured has in common: advances that are the same
// at every scale, left to right.
export function prepareText(context) {
  context.textRendering = 'geometricPrecision';
  context.direction = 'ltr';
  return context;
}

export function fontString(family, size, isBold, isItalic) {
  // What would end the name is written by its number.
  const escaped = family.replace(/["\\\p{Cc}]/gu, (sign) => `\\${sign.codePointAt(0).toString(16)} `);
  const named = family ? `"${escaped}", ` : '';
  return `${isItalic ? 'italic ' : ''}${isBold ? 'bold ' : ''}${size}px ${named}${systemFamilies}`;
}

// Whether advances are whole pixels, as where a browser hints the system's fonts.
export function roundsAdvances(context) {
  const widthAt = (size) => {
    context.font = fontString('', size, false, false);
    return context.measureText('illicit').width / size;
  };
  return Math.abs(widthAt(15) - widthAt(300)) > 0.02;
}

// Whether a line may end between two neighbouring graphemes.
function mayBreak(before, after) {
  if (before === '\n') return true;
  if (joins.test(before) || joins.test(after) || isSpace.test(after)) return false;
  if (isSpace.test(before)) return true;
  if (neverBefore.test(after) || neverAfter.test(before)) return false;
  if (ideographic.test(before) || ideographic.test(after)) return true;
  return before === '-' && letter.test(after);
}

export class TextMeasures {
  #context;
  #widths = new Map();
  #metrics = new Map();
  #font = '';
  #segmenters;

  constructor(context) {
    this.#context = prepareText(context);
    this.#segmenters = {
      grapheme: new Intl.Segmenter(undefined, { granularity: 'grapheme' }),
      word: new Intl.Segmenter(undefined, { granularity: 'word' }),
    };
  }

  // Fonts have changed.
  forget() {
    this.#widths.clear();
    this.#metrics.clear();
    this.#font = '';
  }

  graphemes(text) {
    return Array.from(this.#segmenters.grapheme.segment(text), ({ segment }) => segment);
  }

  // Yields points, one number for each grapheme.
  advances(text, font) {
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
    const places = new Set([0]);
    switch (boundaryKinds[kind]) {
      case 'grapheme':
        for (const { index } of this.#segmenters.grapheme.segment(text)) places.add(index);
        break;
      case 'word':
        for (const { begin, end } of this.#words(text)) places.add(begin).add(end);
        break;
      case 'line': {
        let at = 0;
        let before = '';
        for (const grapheme of this.graphemes(text)) {
          if (before && mayBreak(before, grapheme)) places.add(at);
          at += grapheme.length;
          before = grapheme;
        }
        break;
      }
    }
    return [...places.add(text.length)];
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
