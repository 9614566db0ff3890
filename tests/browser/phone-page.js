// What tests/browser/phone.mjs asks of pictures, in the page.

let decoded;

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
    const bitmap = await createImageBitmap(await (await fetch(`data:image/png;base64,${text}`)).blob());
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

  // How wide stripes are in the middle row of what the screen shows, its pixels.
  stripeWidth() {
    const shown = document.getElementById('canvas');
    const pixels = readable(shown.width, 1);
    pixels.drawImage(shown, 0, -Math.floor(shown.height / 2));
    const { data } = pixels.getImageData(0, 0, shown.width, 1);
    let edges = 0;
    for (let i = 4; i < data.length; i += 4) if (data[i] < 128 !== data[i - 4] < 128) ++edges;
    return shown.width / edges;
  },
};
