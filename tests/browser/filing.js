// Documents for tests/browser/documents.mjs, in the page: the last one is kept.

let kept;
const first = () => document.getElementById('first');
const bytesOf = async (blob) => new Uint8Array(await blob.arrayBuffer());
const text = (words) => new TextEncoder().encode(words);
const decoded = (base64) => Uint8Array.from(atob(base64), (character) => character.charCodeAt(0));
const areEqual = (some, others) => some.length === others.length && some.every((byte, i) => byte === others[i]);

async function deflate(bytes) {
  return bytesOf(await new Response(new Blob([bytes]).stream().pipeThrough(new CompressionStream('deflate'))).blob());
}

async function pixelsOf(blob) {
  const bitmap = await createImageBitmap(blob);
  const context = new OffscreenCanvas(bitmap.width, bitmap.height).getContext('2d');
  context.drawImage(bitmap, 0, 0);
  return context.getImageData(0, 0, bitmap.width, bitmap.height).data;
}

// The browser does not look at the sum of a chunk that it does not know.
function chunk(type, data, length = data.length) {
  const head = new Uint8Array(8);
  new DataView(head.buffer).setUint32(0, length);
  head.set(text(type), 4);
  return [head, data, new Uint8Array(4)];
}

window.filing = {
  async keep(options) {
    kept = await first().getDocument(options);
    const { format, picture, tools, sealed } = JSON.parse(await kept.text());
    const original = await bytesOf(await (await fetch('/photos/coffee.png')).blob());
    return {
      type: kept.type,
      format,
      mediaType: picture.mediaType,
      tools: tools.map((tool) => tool.class),
      isSealed: sealed ?? false,
      hasFile: areEqual(decoded(picture.data), original),
    };
  },

  open: () => first().open(new File([kept], 'w.kalim')),

  // Whether what is open now is saved as it was.
  async isSame() {
    return areEqual(await bytesOf(await first().getDocument()), await bytesOf(kept));
  },

  // Whether the kept document looks as what is open now.
  async looksSame() {
    const before = await pixelsOf(await first().exportImage());
    await this.open();
    return areEqual(await pixelsOf(await first().exportImage()), before);
  },

  // How the kept document is refused with another value at a path, or without its second half.
  async failure(path, value) {
    const words = await kept.text();
    const document = JSON.parse(words);
    const keys = path?.split('.') ?? [];
    const last = keys.pop();
    if (path) keys.reduce((part, key) => part[key], document)[last] = value;
    const given = path ? JSON.stringify(document) : words.slice(0, words.length / 2);
    return first().open(new File([given], 'w.kalim')).then(() => 'opened', ({ message }) => message);
  },

  async pngWith(packing) {
    const png = await bytesOf(await (await fetch('/photos/coffee.png')).blob());
    const document = await bytesOf(kept);
    const isDeflated = packing === 'deflated';
    const head = [...text('kalimkit'), 0, Number(isDeflated), packing === 'damaged' ? 7 : 0, 0, 0];
    const data = await bytesOf(new Blob([new Uint8Array(head), isDeflated ? await deflate(document) : document]));
    // Behind the header.
    return new File([png.slice(0, 33), ...chunk('iTXt', data), png.slice(33)], 'p.png', { type: 'image/png' });
  },
};
