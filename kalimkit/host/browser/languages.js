// What the editor says, by languages. The texts of one are a file of their own, which is fetched when they are first
// wanted; in Chinese they are the keys.

// Named one by one, so that bundlers find them.
const files = {
  ar: () => new URL('../../resources/texts/ar.json', import.meta.url),
  de: () => new URL('../../resources/texts/de.json', import.meta.url),
  en: () => new URL('../../resources/texts/en.json', import.meta.url),
  es: () => new URL('../../resources/texts/es.json', import.meta.url),
  fr: () => new URL('../../resources/texts/fr.json', import.meta.url),
  he: () => new URL('../../resources/texts/he.json', import.meta.url),
  ja: () => new URL('../../resources/texts/ja.json', import.meta.url),
  ko: () => new URL('../../resources/texts/ko.json', import.meta.url),
  pt: () => new URL('../../resources/texts/pt.json', import.meta.url),
  ru: () => new URL('../../resources/texts/ru.json', import.meta.url),
};
const chinese = 'zh';
const english = 'en';

// Texts of hosts, and promises of those that were fetched, by languages.
const added = new Map();
const fetched = new Map();

const plain = (language) => language.toLowerCase().replaceAll('_', '-').replace(/^iw(?=-|$)/, 'he');
const isKnown = (language) => language === chinese || language in files || added.has(language);
const argumentsOf = (text) => [...text.matchAll(/\{(\w*)\}/g)].map(([, name]) => name).sort().join();

function formOf(entry, language, count) {
  if (typeof entry !== 'object' || entry === null) return entry;
  const category = count === undefined ? 'other' : new Intl.PluralRules(language).select(count);
  return entry[category] ?? entry.other;
}

// What there is for a language: its own texts, those of the language that it is a kind of, and English ones.
class Texts {
  #tables;

  // tables: [language, texts], the first of which has a text tells it, by the plurals of that language.
  constructor(language, tables) {
    this.language = language;
    this.#tables = tables;
  }

  // Undefined where there is none, as in Chinese.
  find(key, count) {
    const [language, texts] = this.#tables.find(([, each]) => Object.hasOwn(each, key)) ?? [];
    return texts && String(formOf(texts[key], language, count));
  }

  // The text, or else the key.
  say(key) {
    return this.find(key) ?? key;
  }
}

// Adds a language of a host's, or texts in the place of those there are: by the Chinese ones, each a text or its forms
// by the categories of plurals. Throws for what is none.
export function addTexts(language, texts) {
  for (const [key, entry] of Object.entries(texts)) {
    const text = formOf(entry);
    if (typeof text !== 'string') throw new TypeError(`${language}: "${key}" is no text, and has no form "other"`);
    if (argumentsOf(text) !== argumentsOf(key)) {
      throw new TypeError(`${language}: "${key}" does not put in {${argumentsOf(key)}} but {${argumentsOf(text)}}`);
    }
  }
  added.set(plain(language), { ...added.get(plain(language)), ...texts });
}

function fetchTexts(language) {
  if (!fetched.has(language)) {
    const texts = fetch(files[language]()).then((response) => {
      if (!response.ok) throw new Error(`${response.url}: ${response.status} ${response.statusText}`);
      return response.json();
    });
    fetched.set(language, texts);
    // The next one tries again.
    texts.catch(() => fetched.delete(language));
  }
  return fetched.get(language);
}

// "pt-BR" and "pt" of "pt-BR".
function kindsOf(language) {
  const parts = plain(language).split('-');
  return parts.map((_, i) => parts.slice(0, parts.length - i).join('-'));
}

// Those of a language such as "pt-BR", or of the one next to it that there are texts in, English ones at last. Where a
// file cannot be had, failed(error) is told, and the texts are those that are left.
export async function textsFor(language, failed = () => {}) {
  const kinds = kindsOf(language).filter(isKnown);
  const chosen = kinds[0] ?? english;
  const isWhole = kinds.some((kind) => kind === chinese || kind in files);
  const names = isWhole ? kinds : [...kinds, english];
  const tables = await Promise.all(names.map(async (name) => {
    const given = name in files ? await fetchTexts(name).catch(failed) : {};
    return [name, { ...given, ...added.get(name) }];
  }));
  return new Texts(chosen, tables);
}
