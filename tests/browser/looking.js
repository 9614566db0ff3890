// What tests/browser/editor.mjs asks of pictures, in the page.

let decoded;
const shownCanvas = () => document.querySelector('kalim-editor').shadowRoot.querySelector('canvas');

function readable(width, height) {
  return new OffscreenCanvas(width, height).getContext('2d', { willReadFrequently: true });
}

window.looking = {
  // A PNG in base64: columns of black and white.
  async stripes({ width, height, stripe }) {
    const pixels = readable(width, height);
    pixels.fillStyle = '#fff';
    pixels.fillRect(0, 0, width, height);
    pixels.fillStyle = '#000';
    for (let x = 0; x < width; x += stripe) pixels.fillRect(x, 0, stripe / 2, height);
    const bytes = new Uint8Array(await (await pixels.canvas.convertToBlob()).arrayBuffer());
    return btoa(bytes.reduce((text, byte) => text + String.fromCharCode(byte), ''));
  },

  // Keeps the picture of a PNG in base64 for the next two; returns its size.
  async decode(text) {
    const bytes = Uint8Array.from(atob(text), (character) => character.charCodeAt(0));
    const bitmap = await createImageBitmap(new Blob([bytes]));
    decoded = readable(bitmap.width, bitmap.height);
    decoded.drawImage(bitmap, 0, 0);
    return { width: bitmap.width, height: bitmap.height };
  },

  colorAt([x, y]) {
    return [...decoded.getImageData(x, y, 1, 1).data];
  },

  countRed([x, y, width, height]) {
    const { data } = decoded.getImageData(x, y, width, height);
    let count = 0;
    for (let i = 0; i < data.length; i += 4) {
      if (data[i] > 200 && data[i + 1] < 120 && data[i + 2] < 120) ++count;
    }
    return count;
  },

  // Of the screen, at a place in pixels of the page.
  shownAt([x, y]) {
    const shown = shownCanvas();
    const { left, top } = shown.getBoundingClientRect();
    const pixels = readable(1, 1);
    const [px, py] = [x - left, y - top].map((side) => Math.floor(side * devicePixelRatio));
    pixels.drawImage(shown, -px, -py);
    return [...pixels.getImageData(0, 0, 1, 1).data];
  },

  // Of the middle row of what the screen shows, in its pixels: how wide the stripes are, and whether all
  // of them are there.
  stripesShown() {
    const shown = shownCanvas();
    const pixels = readable(shown.width, 1);
    pixels.drawImage(shown, 0, -Math.floor(shown.height / 2));
    const { data } = pixels.getImageData(0, 0, shown.width, 1);
    const edges = [];
    for (let x = 1; x < shown.width; ++x) {
      if (data[4 * x] < 128 !== data[4 * x - 4] < 128) edges.push(x);
    }
    const [first, last] = [edges[0], edges.at(-1)];
    return {
      width: (last - first) / (edges.length - 1),
      isWhole: edges.length > 100 && first > 1 && last < shown.width - 1,
    };
  },
};
