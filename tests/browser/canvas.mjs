// The page of kalimkit/host/browser, used as a person does to the exported file: by touch, keyboard, input
// method and its buttons.

import assert from 'node:assert/strict';
import { writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { after, afterEach, before, beforeEach, test } from 'node:test';

import { Page, browserName, hasFingers } from './page.mjs';
import { root } from './server.mjs';
import { until } from './webdriver.mjs';

// Pixels. Stripes, so that a mosaic shows and a zoom can be measured.
const picture = { width: 1200, height: 1600 };
const stripe = 20;

const isRed = ([r, g, b]) => r > 200 && g < 120 && b < 120;
const isGrey = (color) => color.slice(0, 3).every((level) => level > 80 && level < 175);
const isStripe = (color) => color.slice(0, 3).every((level) => level < 60 || level > 195);

const needsFingers = { skip: hasFingers ? false : 'this browser\'s driver has no fingers' };
const needsTurning = { skip: browserName === 'chromium' ? false : 'this browser cannot be turned' };

let page;
// From the picture's pixels to the page's.
let toPage;

before(async () => {
  page = await Page.open();
});
after(() => page.close());

beforeEach(async () => {
  await page.goto('/');
  await page.evaluate(() => import('/tests/looking.js'));
  await page.waitFor(() => window.kalimCanvas);
  const stripes = await page.evaluate((given) => window.looking.stripes(given), { ...picture, stripe });
  const file = join(page.folder, 'stripes.png');
  await writeFile(file, Buffer.from(stripes, 'base64'));
  await page.chooseFile('#file', file);
  await page.waitFor(() => !document.getElementById('export').disabled);
  const box = await page.evaluate(() => document.getElementById('canvas').getBoundingClientRect());
  const scale = Math.min(box.width / picture.width, box.height / picture.height);
  toPage = ([x, y]) => [
    box.x + box.width / 2 + (x - picture.width / 2) * scale,
    box.y + box.height / 2 + (y - picture.height / 2) * scale,
  ];
});
afterEach(async () => assert.deepEqual(await page.complaints(), []));

const toolCount = () => page.evaluate(() => window.kalimCanvas.toolCount);
const isEnabled = (id) => page.evaluate((which) => !document.getElementById(which).disabled, id);

async function choose(name) {
  const at = await page.evaluate((wanted) =>
    [...document.querySelectorAll('#tools button')].findIndex((each) => each.textContent === wanted),
  name);
  await page.click(`#tools button:nth-child(${at + 1})`);
}

// In pixels of the picture.
function draw([x, y], [endX, endY], steps = 12) {
  return page.touch(...Array.from({ length: steps + 1 }, (_, i) =>
    [toPage([x + ((endX - x) * i) / steps, y + ((endY - y) * i) / steps])]));
}

// Two fingers, the second a little later; paths(t) is where they are, t from 0 to 1.
function together(paths, steps = 20) {
  const places = Array.from({ length: steps + 1 }, (_, i) => paths(i / steps));
  return page.touch([places[0][0]], ...places, [places.at(-1)[0]]);
}

// The file that the page's button gives, decoded in the page for the questions below.
async function exportPicture() {
  await page.click('#export');
  const bytes = await page.download('stripes-annotated.png');
  const size = await page.evaluate((text) => window.looking.decode(text), bytes.toString('base64'));
  assert.deepEqual(size, picture);
}
const shownAt = (place) => page.evaluate((at) => window.looking.shownAt(at), place);
const colorAt = (place) => page.evaluate((at) => window.looking.colorAt(at), place);
const countRed = (x = 0, y = 0, width = picture.width, height = picture.height) =>
  page.evaluate((rect) => window.looking.countRed(rect), [x, y, width, height]);

async function assertColor(is, place, what) {
  const color = await colorAt(place);
  assert.ok(is(color), `${what}: ${color} at ${place}`);
}

test('each kind leaves its ink in the exported file, undo takes all away, redo brings it again', async () => {
  const kinds = [
    { kind: 'Box', from: [100, 200], to: [400, 400], ink: [250, 200], free: [250, 300] },
    { kind: 'Round', from: [500, 200], to: [800, 400], ink: [500, 300], free: [650, 300] },
    { kind: 'Oval', from: [100, 600], to: [400, 800], ink: [250, 800], free: [250, 700] },
    { kind: 'Line', from: [500, 600], to: [800, 800], ink: [650, 700], free: [550, 780] },
    { kind: 'Arrow', from: [100, 1000], to: [400, 1200], ink: [360, 1173], free: [350, 1030] },
    { kind: 'Pen', from: [500, 1000], to: [800, 1200], ink: [650, 1100], free: [550, 1180] },
  ];
  const assertAllThere = async () => {
    await exportPicture();
    for (const { kind, ink, free } of kinds) {
      await assertColor(isRed, ink, `${kind} is missing`);
      await assertColor(isStripe, free, `${kind} is where it must not be`);
    }
    await assertColor(isGrey, [605, 1412], 'the mosaic is missing');
  };
  for (const { kind, from, to, ink } of kinds) {
    await choose(kind);
    await draw(from, to);
    // The pen's ink fades in.
    await until(async () => isRed(await shownAt(toPage(ink))), `the ink of ${kind} on the screen`);
  }
  await choose('Mosaic');
  await draw([150, 1400], [1000, 1400], 40);
  assert.equal(await toolCount(), kinds.length + 1);
  await assertAllThere();
  for (let left = kinds.length; left >= 0; --left) {
    await page.click('#undo');
    assert.equal(await toolCount(), left);
  }
  assert.equal(await isEnabled('undo'), false);
  await exportPicture();
  assert.equal(await countRed(), 0);
  await assertColor(isStripe, [605, 1412], 'the mosaic is still there');
  for (let i = 0; i <= kinds.length; ++i) await page.click('#redo');
  await assertAllThere();
});

test('a pinch zooms and leaves no ink', needsFingers, async () => {
  const width = async () => (await page.evaluate(() => window.looking.stripesShown())).width;
  const before = await width();
  const [x, y] = toPage([600, 800]);
  await together((t) => [[x - 40 - 60 * t, y], [x + 40 + 60 * t, y]]);
  assert.equal(await toolCount(), 0);
  assert.equal(await isEnabled('undo'), false);
  const zoom = (await width()) / before;
  assert.ok(zoom > 1.8 && zoom < 2.6, `zoomed by ${zoom}`);
  await exportPicture();
  assert.equal(await countRed(), 0);
});

test('two fingers turn the selected box', needsFingers, async () => {
  await choose('Box');
  await draw([400, 700], [800, 900]);
  await page.touch([toPage([400, 800])]);
  assert.ok(await isEnabled('delete'));
  const [x, y] = toPage([600, 800]);
  await together((t) => {
    const [dx, dy] = [50 * Math.cos((t * Math.PI) / 2), 50 * Math.sin((t * Math.PI) / 2)];
    return [[x - dx, y - dy], [x + dx, y + dy]];
  });
  assert.equal(await toolCount(), 1);
  await exportPicture();
  await assertColor(isRed, [600, 1000], 'no side is below');
  await assertColor(isStripe, [800, 800], 'a side is still on the right');
});

test('an input method composes, keys edit, and the text is in the exported file', async () => {
  const field = () => page.evaluate(() => document.querySelector('textarea')?.value);
  await choose('Text');
  await page.touch([toPage([300, 500])]);
  assert.equal(await field(), '');
  await page.type('ab');
  await page.compose(['n', 'ni', 'nih', 'nihao'], '你好');
  await page.compose(['s', 'shi'], '世界');
  // Firefox takes a while to tell its page.
  await until(async () => (await field()) === 'ab你好世界', 'what was composed');
  await page.press('Backspace');
  await page.press('Control+ArrowLeft');
  await page.type('😀');
  const text = await field();
  assert.match(text, /^(ab😀你好世|😀ab你好世)$/u);
  // As an on-screen keyboard does that corrects a word.
  await page.evaluate((corrected) => {
    const area = document.querySelector('textarea');
    area.value = corrected;
    area.dispatchEvent(new InputEvent('input'));
  }, text.replace('ab', 'abc'));
  assert.equal(await field(), text.replace('ab', 'abc'));
  await page.press('Control+z');
  assert.equal(await field(), text);
  await page.evaluate(() => window.kalimCanvas.finishEditText());
  assert.equal(await field(), null);
  assert.equal(await toolCount(), 1);
  await exportPicture();
  const ink = await countRed();
  assert.ok(ink > 1000, `${ink} pixels of ink`);
});

test('the export has the pixels of the picture, or those of the screen', async () => {
  const sizeOf = (options) => page.evaluate(async (given) => {
    const blob = await window.kalimCanvas.exportImage(given);
    const { width, height } = await createImageBitmap(blob);
    return [blob.type, width, height];
  }, options);
  const [left, top] = toPage([0, 0]);
  const [right, bottom] = toPage([picture.width, picture.height]);
  const scale = await page.evaluate(() => devicePixelRatio);
  assert.deepEqual(await sizeOf({ scale: 'picture', type: 'image/jpeg' }), ['image/jpeg', 1200, 1600]);
  const [type, width, height] = await sizeOf({});
  assert.equal(type, 'image/png');
  assert.ok(Math.abs(width / scale - (right - left)) <= 1, `${width} pixels wide`);
  assert.ok(Math.abs(height / scale - (bottom - top)) <= 1, `${height} pixels high`);
});

test('a canvas at rest asks for no frames, and a turned page shows all of it', needsTurning, async () => {
  await page.resize(844, 390);
  // The picture's columns, and nothing of it at the left edge.
  await page.waitFor(() => {
    const canvas = document.getElementById('canvas');
    return canvas.width === 2532 && window.looking.stripesShown().isWhole;
  });
  // By then the picture has glided to its place.
  await page.evaluate(() => window.watched.frames(60));
  assert.equal(await page.evaluate(() => window.watched.frames(30)), 0);
  await page.resize(390, 844);
});

test('what the browser cannot read is refused and changes nothing', async () => {
  await draw([100, 200], [400, 400]);
  await page.chooseFile('#file', join(root, 'tests/browser/fonts.conf'));
  await page.waitFor(() => document.getElementById('hint').textContent.startsWith('fonts.conf: '));
  assert.equal(await toolCount(), 1);
});
