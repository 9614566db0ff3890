// A pen over the page, as a tablet's: it presses and leans, and tells more places than the page has frames.

import assert from 'node:assert/strict';
import { afterEach, beforeEach, test } from 'node:test';

import { page, rest } from './embedding.mjs';

// Within the picture.
const [left, right, row] = [310, 870, 400];
// Points in a millisecond.
const speed = 2;
const inkWidth = 20;

async function drawnStroke() {
  const text = await page.evaluate(async () => (await window.first.getDocument()).text());
  return JSON.parse(text).tools.at(-1);
}

beforeEach(async () => {
  await page.widen(1100, 720, 1, {});
  await page.evaluate(async (width) => {
    Object.assign(window.first.style, { width: '100vw', height: '100vh' });
    // White, so that ink is told from its ground wherever it fades in.
    const paper = new OffscreenCanvas(600, 400);
    const context = paper.getContext('2d');
    context.fillStyle = '#FFFFFF';
    context.fillRect(0, 0, 600, 400);
    await window.first.open(await paper.convertToBlob());
    window.first.setTool('freehand');
    window.first.setColor('#00FF00');
    window.first.setLineWidth(width);
  }, inkWidth);
  await rest();
});
afterEach(() => page.resize(390, 844));

test('a stroke is as wide as the pen is pressed', async () => {
  const steps = Array.from({ length: 41 }, (_, i) =>
    ({ x: left + i * 10, y: row, force: 0.1 + (i / 40) * 0.9, tiltX: 20, tiltY: 0, at: i * 8 }));
  await page.pen(steps);
  await rest();
  const { linePoints, linePressures } = await drawnStroke();
  assert.equal(linePressures[0].length, linePoints[0].length);
  const [first, last] = [linePressures[0][0], linePressures[0].at(-1)];
  assert.ok(Math.abs(first[0] - 0.1) < 0.02 && last[0] > 0.95, `pressed ${first[0]} to ${last[0]}`);
  assert.equal(first[1], 20);
  const width = (x) => page.evaluate((column) => {
    const shown = window.first.shadowRoot.querySelector('canvas').getContext('2d');
    const { data } = shown.getImageData(column * devicePixelRatio, 0, 1, shown.canvas.height);
    let count = 0;
    for (let i = 0; i < data.length; i += 4) if (data[i] < 60 && data[i + 1] > 200 && data[i + 2] < 60) ++count;
    return count;
  }, x);
  const [thin, thick] = [await width(left + 20), await width(left + 380)];
  assert.ok(thin > 0 && thick > 2 * thin, `${thin} and ${thick} pixels wide`);
});

test('what a frame gathers is all drawn', async () => {
  const steps = Array.from({ length: 80 }, (_, i) =>
    ({ x: left + i * 7, y: row + (i % 2) * 60, force: 0.5, at: 40 + i }));
  await page.evaluate(() => addEventListener('pointerdown', () => {
    const end = performance.now() + 150;
    while (performance.now() < end);
  }, { once: true, capture: true }));
  await page.pen(steps);
  await rest();
  const { linePoints: [line] } = await drawnStroke();
  const turns = line.filter((point, i) => i > 0 && i < line.length - 1 &&
    (point[1] - line[i - 1][1]) * (line[i + 1][1] - point[1]) < 0);
  assert.ok(turns.length >= 70, `${turns.length} of 78 corners`);
});

test('the ink ends within a frame\'s way of the pen', async (t) => {
  await page.evaluate(() => {
    const shown = window.first.shadowRoot.querySelector('canvas').getContext('2d');
    let [pointer, before] = [null, 0];
    const queue = new MessageChannel();
    window.penFrames = [];
    // The first as soon as it is known, where the browser tells it, the others once a frame.
    for (const type of ['pointerrawupdate', 'pointerdown', 'pointermove', 'pointerup']) {
      addEventListener(type, ({ clientX, buttons }) => { pointer = buttons ? clientX : null; }, true);
    }
    window.penRow = 0;
    const look = (time) => {
      const [at, took] = [pointer, time - before];
      before = time;
      requestAnimationFrame(look);
      // As the frame is shown: once all have drawn for it.
      queue.port1.onmessage = () => {
        const { data } = shown.getImageData(0, window.penRow * devicePixelRatio, shown.canvas.width, 1);
        // Nothing else there is green.
        let ink = 910 * devicePixelRatio;
        while (ink > 0 && data[ink * 4 - 3] < data[ink * 4 - 4] + 40) --ink;
        // It may have gone on meanwhile.
        if (at !== null && pointer !== null && ink > 0)
          window.penFrames.push({ shown: at, pointer, ink: ink / devicePixelRatio, took });
      };
      queue.port2.postMessage(0);
    };
    requestAnimationFrame(look);
  });
  // A busy machine shows few frames of a stroke, or none.
  let frames = [];
  for (let stroke = 0; frames.length < 12 && stroke < 18; ++stroke) {
    const y = row - 180 + 23 * stroke;
    await page.evaluate((of) => { window.penRow = of; }, y);
    await page.pen(Array.from({ length: 113 }, (_, i) =>
      ({ x: left + i * 5, y, force: 1, at: (i * 5) / speed })));
    frames = await page.evaluate(() => window.penFrames);
  }
  if (frames.length < 3) return t.skip(`a machine that shows ${frames.length} frames of all strokes cannot tell`);
  // The ink reaches beyond the place that it was drawn to by half of its width. What was foreseen may lie before
  // the pen, as far as it may lie behind.
  const ways = frames.map(({ shown, pointer, ink, took }) =>
    ({ behind: shown - ink + inkWidth / 2, ahead: ink - inkWidth / 2 - pointer, frame: speed * took }));
  const most = (of) => Math.max(...ways.map((way) => way[of] / way.frame)).toFixed(2);
  t.diagnostic(`${frames.length} frames, at most ${most('behind')} of a frame's way behind, ${most('ahead')} ahead`);
  for (const { behind, ahead, frame } of ways) {
    assert.ok(behind <= frame + 1, `${behind} points behind, a frame is ${frame}`);
    assert.ok(ahead <= frame + 1, `${ahead} points ahead, a frame is ${frame}`);
  }
  // What was foreseen is gone with the pen.
  await rest();
  const { linePoints } = await drawnStroke();
  const line = linePoints.at(-1);
  const length = line.at(-1)[0] - line[0][0];
  assert.ok(line.every(([x]) => x <= line.at(-1)[0] + 0.01), 'nothing goes beyond where the pen lifted');
  assert.ok(length > 0);
});
