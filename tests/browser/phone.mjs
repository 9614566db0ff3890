// The page as a phone's user has it, to the exported file: real fingers, an input method, the buttons.

import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { after, afterEach, before, beforeEach, test } from 'node:test';

import { complaintsOf, open } from './browser.mjs';
import { Fingers } from './fingers.mjs';

const phone = {
  viewport: { width: 390, height: 844 },
  deviceScaleFactor: 3,
  hasTouch: true,
  isMobile: true,
};
// Pixels. Stripes, so that a mosaic shows and a zoom can be measured.
const picture = { width: 1200, height: 1600 };
const stripe = 20;

const isRed = ([r, g, b]) => r > 200 && g < 120 && b < 120;
const isGrey = (color) => color.slice(0, 3).every((level) => level > 80 && level < 175);
const isStripe = (color) => color.slice(0, 3).every((level) => level < 60 || level > 195);

let opened;
let context;
let page;
let fingers;
let complaints;
// From the picture's pixels to the page's.
let toPage;

before(async () => {
  opened = await open();
});
after(() => opened.close());

beforeEach(async () => {
  context = await opened.browser.newContext(phone);
  page = await context.newPage();
  complaints = complaintsOf(page);
  await page.goto(opened.url);
  await page.waitForFunction(() => window.kalimCanvas);
  await page.addScriptTag({ url: '/tests/phone-page.js', type: 'module' });
  await page.waitForFunction(() => window.looking);
  fingers = await Fingers.on(page);
  const file = await page.evaluate((given) => window.looking.stripes(given),
    { ...picture, stripe });
  await page.setInputFiles('#file', {
    name: 'stripes.png',
    mimeType: 'image/png',
    buffer: Buffer.from(file, 'base64'),
  });
  await page.waitForSelector('#export:enabled');
  const box = await page.locator('#canvas').boundingBox();
  const scale = Math.min(box.width / picture.width, box.height / picture.height);
  toPage = ([x, y]) => [
    box.x + box.width / 2 + (x - picture.width / 2) * scale,
    box.y + box.height / 2 + (y - picture.height / 2) * scale,
  ];
});
afterEach(async () => {
  await context.close();
  assert.deepEqual(complaints, []);
});

// Buttons are clicked: a tap so soon after a stroke is taken for one that stops a fling.
const choose = (name) => page.getByRole('radio', { name, exact: true }).click();
const toolCount = () => page.evaluate(() => window.kalimCanvas.toolCount);

// In pixels of the picture.
function draw([x, y], [endX, endY], steps = 12) {
  return fingers.drag(Array.from({ length: steps + 1 }, (_, i) =>
    toPage([x + ((endX - x) * i) / steps, y + ((endY - y) * i) / steps])));
}

// The file that the page's button gives, decoded in the page for the questions below.
async function exportPicture() {
  const [download] = await Promise.all([page.waitForEvent('download'), page.click('#export')]);
  assert.equal(download.suggestedFilename(), 'stripes-annotated.png');
  const bytes = await readFile(await download.path());
  const size = await page.evaluate((text) => window.looking.decode(text), bytes.toString('base64'));
  assert.deepEqual(size, picture);
}
const colorAt = (place) => page.evaluate((at) => window.looking.colorAt(at), place);
const countRed = (x = 0, y = 0, width = picture.width, height = picture.height) =>
  page.evaluate((rect) => window.looking.countRed(rect), [x, y, width, height]);

async function assertColor(is, place, what) {
  const color = await colorAt(place);
  assert.ok(is(color), `${what}: ${color} at ${place}`);
}

test('each kind leaves its ink in the exported file, and undo takes all away', async () => {
  const kinds = [
    { kind: 'Box', from: [100, 200], to: [400, 400], ink: [250, 200], free: [250, 300] },
    { kind: 'Round', from: [500, 200], to: [800, 400], ink: [500, 300], free: [650, 300] },
    { kind: 'Oval', from: [100, 600], to: [400, 800], ink: [250, 800], free: [250, 700] },
    { kind: 'Line', from: [500, 600], to: [800, 800], ink: [650, 700], free: [550, 780] },
    { kind: 'Arrow', from: [100, 1000], to: [400, 1200], ink: [360, 1173], free: [350, 1030] },
    { kind: 'Pen', from: [500, 1000], to: [800, 1200], ink: [650, 1100], free: [550, 1180] },
  ];
  for (const { kind, from, to } of kinds) {
    await choose(kind);
    await draw(from, to);
  }
  await choose('Mosaic');
  await draw([150, 1400], [1000, 1400], 40);
  assert.equal(await toolCount(), kinds.length + 1);
  await exportPicture();
  for (const { kind, ink, free } of kinds) {
    await assertColor(isRed, ink, `${kind} is missing`);
    await assertColor(isStripe, free, `${kind} is where it must not be`);
  }
  await assertColor(isGrey, [605, 1400], 'the mosaic is missing');
  for (let left = kinds.length; left >= 0; --left) {
    await page.click('#undo');
    assert.equal(await toolCount(), left);
  }
  await exportPicture();
  assert.equal(await countRed(), 0);
  await assertColor(isStripe, [605, 1400], 'the mosaic is still there');
});

test('a pinch zooms and leaves no ink', async () => {
  const width = () => page.evaluate(() => window.looking.stripeWidth());
  const before = await width();
  const [x, y] = toPage([600, 800]);
  await fingers.together((t) => [[x - 40 - 60 * t, y], [x + 40 + 60 * t, y]]);
  assert.equal(await toolCount(), 0);
  assert.ok(await page.locator('#undo').isDisabled());
  const zoom = (await width()) / before;
  assert.ok(zoom > 1.8 && zoom < 2.6, `zoomed by ${zoom}`);
  await exportPicture();
  assert.equal(await countRed(), 0);
});

test('two fingers turn the selected box', async () => {
  await choose('Box');
  await draw([400, 700], [800, 900]);
  await fingers.tap(toPage([400, 800]));
  await page.waitForSelector('#delete:enabled');
  const [x, y] = toPage([600, 800]);
  await fingers.together((t) => {
    const [dx, dy] = [50 * Math.cos((t * Math.PI) / 2), 50 * Math.sin((t * Math.PI) / 2)];
    return [[x - dx, y - dy], [x + dx, y + dy]];
  });
  assert.equal(await toolCount(), 1);
  await exportPicture();
  await assertColor(isRed, [600, 1000], 'no side is below');
  await assertColor(isStripe, [800, 800], 'a side is still on the right');
});

test('Chinese is composed into a text', async () => {
  await choose('Text');
  await fingers.tap(toPage([300, 500]));
  await page.waitForSelector('textarea');
  await fingers.compose(['n', 'ni', 'nih', 'nihao'], '你好');
  await fingers.compose(['s', 'shi'], '世界');
  assert.equal(await page.locator('textarea').inputValue(), '你好世界');
  await page.evaluate(() => window.kalimCanvas.finishEditText());
  assert.equal(await toolCount(), 1);
  await exportPicture();
  const ink = await countRed();
  assert.ok(ink > 1000, `${ink} pixels of ink`);
});
