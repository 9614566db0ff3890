// What browsers do not tell of a text: which way its letters run (UAX 9) and where its lines may be broken
// (UAX 14). It is fetched when the first text asks for it, with the libraries that know.

import makeBidi from './libraries/bidi.js';
import { LineBreaker } from './libraries/line-breaks.js';

// It is written without blanks, and only a dictionary knows its words.
const thai = /\p{Script=Thai}/u;
const bases = ['auto', 'ltr', 'rtl'];
// Of characters that are of no direction of their own and go with the paragraph at the end of a line.
const blankTypes = new Set(['WS', 'BN', 'LRE', 'RLE', 'LRO', 'RLO', 'PDF', 'LRI', 'RLI', 'FSI', 'PDI']);
const lineRules = { lineBreak: 'strict', wordBreak: 'normal' };

const bidi = makeBidi();
const thaiWords = new Intl.Segmenter('th', { granularity: 'word' });
// Whether a character is blank, by its code point.
const blanks = new Map();

function isBlank(point) {
  if (!blanks.has(point)) blanks.set(point, blankTypes.has(bidi.getBidiCharTypeName(String.fromCodePoint(point))));
  return blanks.get(point);
}

// Null where all runs from left to right; else the level of the paragraph, and of each unit of UTF-16 its level and
// whether it is blank. base is 0 for that of the first letter, 1 from left to right, 2 from right to left.
export function directionsOf(text, base) {
  const { levels, paragraphs } = bidi.getEmbeddingLevels(text, bases[base]);
  const level = paragraphs[0]?.level ?? (base === 2 ? 1 : 0);
  if (level === 0 && levels.every((one) => one === 0)) return null;
  return {
    level,
    levelAt: (i) => levels[i],
    isBlankAt: (i) => isBlank(text.codePointAt(i)),
  };
}

// Calls add(place) with each place within the text at which a line may end, in units of UTF-16.
export function addLineBreaks(text, add) {
  const breaker = LineBreaker(text, lineRules);
  let point = 0;
  let place = 0;
  for (let next = breaker.next(); !next.done; next = breaker.next()) {
    for (; point < next.value.end; ++point) place += text.codePointAt(place) > 0xffff ? 2 : 1;
    add(place);
  }
  if (!thai.test(text)) return;
  for (const { index } of thaiWords.segment(text)) {
    if (index > 0 && thai.test(text[index - 1]) && thai.test(text[index])) add(index);
  }
}
