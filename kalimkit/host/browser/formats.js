// What kind of file a page was given, and what lies in it.

const pngSignature = [0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a];
const keyword = 'kalimkit';
// No document is longer, bytes.
const longestText = 2 ** 30;
// By the bytes that a file begins with; null is any.
const mediaTypes = [
  ['image/png', pngSignature],
  ['image/jpeg', [0xff, 0xd8, 0xff]],
  ['image/webp', [0x52, 0x49, 0x46, 0x46, null, null, null, null, 0x57, 0x45, 0x42, 0x50]],
  ['image/gif', [0x47, 0x49, 0x46, 0x38]],
  ['image/bmp', [0x42, 0x4d]],
  ['image/avif', [null, null, null, null, 0x66, 0x74, 0x79, 0x70, 0x61, 0x76, 0x69, 0x66]],
];

export const documentType = 'application/vnd.kalimkit+json';

export const isFile = (given) =>
  typeof given?.arrayBuffer === 'function' && typeof given.slice === 'function';

const bytesOf = async (blob) => new Uint8Array(await blob.arrayBuffer());
const startsWith = (bytes, beginning) => beginning.every((byte, i) => byte === null || bytes[i] === byte);

// Of a picture's file: by its bytes, else as it says itself.
export async function mediaTypeOf(blob) {
  const head = await bytesOf(blob.slice(0, 16));
  const [type] = mediaTypes.find(([, beginning]) => startsWith(head, beginning)) ?? [];
  return type ?? (blob.type || 'application/octet-stream');
}

// Whether it is a document, and not a picture: the first character of JSON is a brace.
async function isDocument(blob) {
  const head = new TextDecoder().decode(await blob.slice(0, 256).arrayBuffer());
  return /^\s*\{/.test(head) || blob.type === documentType || /\.kalim$/i.test(blob.name ?? '');
}

async function inflate(bytes) {
  const parts = [];
  let length = 0;
  const reader = new Blob([bytes]).stream().pipeThrough(new DecompressionStream('deflate')).getReader();
  for (let part = await reader.read(); !part.done; part = await reader.read()) {
    parts.push(part.value);
    length += part.value.length;
    if (length > longestText) throw new RangeError('it is too long');
  }
  return bytesOf(new Blob(parts));
}

// Of an iTXt chunk of our keyword: behind it a zero, whether it is compressed, how, a language and the keyword
// in that language, each with a zero at its end, and the text.
function textOf(data) {
  const isCompressed = data[keyword.length + 1];
  const method = data[keyword.length + 2];
  const languageEnd = data.indexOf(0, keyword.length + 3);
  const begin = languageEnd < 0 ? 0 : data.indexOf(0, languageEnd + 1) + 1;
  if (begin === 0 || isCompressed > 1 || method !== 0) throw new TypeError('the chunk is damaged');
  return isCompressed ? inflate(data.subarray(begin)) : data.slice(begin);
}

const names = (data) => new TextDecoder('latin1').decode(data.subarray(0, keyword.length + 1)) === `${keyword}\0`;

// The chunk's data; null where there is none, or the file ends before it.
function chunkIn(bytes) {
  const view = new DataView(bytes.buffer, bytes.byteOffset);
  for (let at = pngSignature.length; at + 12 <= bytes.length;) {
    const length = view.getUint32(at);
    const type = String.fromCharCode(...bytes.subarray(at + 4, at + 8));
    const data = bytes.subarray(at + 8, at + 8 + length);
    if (type === 'iTXt' && names(data)) {
      if (data.length < length) throw new TypeError('the chunk is cut short');
      return data;
    }
    if (type === 'IEND') return null;
    at += 12 + length;
  }
  return null;
}

// The text of a document that is given, or that lies in a PNG; null for any other picture.
// { text, isInside }; the text is bytes, and a promise where it is inside, rejected where it is damaged.
export async function documentIn(blob) {
  if (await isDocument(blob)) {
    if (blob.size > longestText) throw new RangeError('a document of more than 1 GiB is not opened');
    return { text: await bytesOf(blob), isInside: false };
  }
  if (!startsWith(await bytesOf(blob.slice(0, 8)), pngSignature)) return null;
  const bytes = await bytesOf(blob);
  let text;
  try {
    const data = chunkIn(bytes);
    if (!data) return null;
    text = Promise.resolve(textOf(data));
  } catch (error) {
    text = Promise.reject(error);
  }
  text.catch(() => {});
  return { text, isInside: true };
}
