// Two pictures held against each other tile by tile, as tests/support/PictureComparison.h does, so that
// a small missing thing counts in a large picture. Two backends place the edges of glyphs and of a
// photo's details a little apart: a pixel differs by what it lies outside the range of the other
// picture's pixels around it.

// How far apart an edge may be, pixels; how far a tile's channel may differ in the mean, levels; the
// share of its pixels that may differ strongly.
export const strictLimits = { distance: 1, mean: 6, strongShare: 0.02 };
// Backends make bold glyphs of regular ones in different ways: up to a point apart, and what is narrow
// in a glyph may close in one.
export function textLimits(scale) {
  return { distance: Math.ceil(scale), mean: 12, strongShare: 0.08 };
}

const tileSide = 16;
const strongDifference = 48;
const tilesListed = 5;

// Premultiplied, as what is transparent has no colour.
function pixelsOf(canvas) {
  const { width, height } = canvas;
  const { data } = canvas.getContext('2d').getImageData(0, 0, width, height);
  for (let i = 0; i < data.length; i += 4) {
    for (let channel = 0; channel < 3; ++channel) data[i + channel] *= data[i + 3] / 255;
  }
  return { width, height, data };
}

// How far one value of a picture lies outside the range of the other's at and around the place.
function distanceAt(pixels, other, x, y, channel, around) {
  const { width, height, data } = other;
  let low = 255;
  let high = 0;
  for (let oy = Math.max(y - around, 0); oy <= Math.min(y + around, height - 1); ++oy) {
    for (let ox = Math.max(x - around, 0); ox <= Math.min(x + around, width - 1); ++ox) {
      const value = data[4 * (oy * width + ox) + channel];
      if (value < low) low = value;
      if (value > high) high = value;
    }
  }
  const value = pixels.data[4 * (y * width + x) + channel];
  return Math.max(low - value, value - high, 0);
}

function tileAt(a, b, left, top, around) {
  const right = Math.min(left + tileSide, a.width);
  const bottom = Math.min(top + tileSide, a.height);
  const sums = [0, 0, 0, 0];
  let strong = 0;
  for (let y = top; y < bottom; ++y) {
    for (let x = left; x < right; ++x) {
      let largest = 0;
      for (let channel = 0; channel < 4; ++channel) {
        const at = 4 * (y * a.width + x) + channel;
        // Most are, and are within any range then.
        if (a.data[at] === b.data[at]) continue;
        const found = Math.max(distanceAt(a, b, x, y, channel, around),
          distanceAt(b, a, x, y, channel, around));
        sums[channel] += found;
        if (found > largest) largest = found;
      }
      if (largest > strongDifference) ++strong;
    }
  }
  const count = (right - left) * (bottom - top);
  return { left, top, mean: Math.max(...sums) / count, strongShare: strong / count };
}

// Canvases. Returns { message, tiles }: what differs in words, empty when nothing does.
export function comparePictures(expected, actual, limits = strictLimits) {
  const sizes = [expected, actual].map(({ width, height }) => `${width}x${height}`);
  if (sizes[0] !== sizes[1]) return { message: `expected ${sizes[0]}, got ${sizes[1]}`, tiles: [] };
  const [a, b] = [pixelsOf(expected), pixelsOf(actual)];
  const differs = (tile) => tile.mean > limits.mean || tile.strongShare > limits.strongShare;
  const tiles = [];
  for (let y = 0; y < a.height; y += tileSide) {
    for (let x = 0; x < a.width; x += tileSide) {
      // Most tiles need no second look.
      if (!differs(tileAt(a, b, x, y, 0))) continue;
      const tile = tileAt(a, b, x, y, limits.distance);
      if (differs(tile)) tiles.push(tile);
    }
  }
  const lines = tiles.slice(0, tilesListed).map((tile) =>
    `  at (${tile.left},${tile.top}): mean difference ${tile.mean.toFixed(1)}, ` +
    `${(tile.strongShare * 100).toFixed(0)} % of pixels strongly`);
  const message = tiles.length ? [`${tiles.length} tile(s) differ:`, ...lines].join('\n') : '';
  return { message, tiles };
}

// Expected, actual, and their difference with the tiles that count framed.
export function sideBySide(expected, actual, tiles) {
  const width = Math.max(expected.width, actual.width);
  const picture = new OffscreenCanvas(3 * width, Math.max(expected.height, actual.height));
  const context = picture.getContext('2d');
  context.fillStyle = '#888';
  context.fillRect(0, 0, picture.width, picture.height);
  context.drawImage(expected, 0, 0);
  context.drawImage(actual, width, 0);
  context.drawImage(expected, 2 * width, 0);
  context.globalCompositeOperation = 'difference';
  context.drawImage(actual, 2 * width, 0);
  context.globalCompositeOperation = 'source-over';
  context.strokeStyle = 'red';
  for (const { left, top } of tiles) {
    context.strokeRect(2 * width + left, top, tileSide, tileSide);
  }
  return picture;
}
