// Documents that <kalim-editor> saves and opens.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { drag, page, rest, take, toolCount } from './embedding.mjs';
import { until } from './webdriver.mjs';

const draw = () => drag([150, 150], [180, 180], [250, 220]);
const failure = (...call) => page.evaluate((...values) => window.filing.failure(...values), ...call);
const questions = () => page.evaluate(async () => {
  await new Promise((done) => setTimeout(done, 400));
  return window.first.shadowRoot.querySelectorAll('#mirror [role=dialog]').length;
});

// Opens the kept document in a PNG.
const openInside = (inside, kind) => page.evaluate(async (choice, packing) => {
  window.asked = window.first.open(await window.filing.pngWith(packing), choice ? { inside: choice } : {})
    .catch((error) => error.message);
  const answer = await window.asked;
  await window.watched.frames(40);
  return answer;
}, inside, kind);

async function keep(options = {}) {
  await page.evaluate(() => import('/tests/filing.js'));
  return page.evaluate((given) => window.filing.keep(given), options);
}

test('a document holds the picture\'s file unchanged, and opens as what was saved', async () => {
  await page.evaluate(() => window.first.setTool('rectangle'));
  await draw();
  assert.equal(await page.evaluate(() => window.first.dirty), true);
  const before = await page.evaluate(async () => window.embed.look(await window.first.exportImage()));
  const saved = await keep();
  assert.equal(saved.type, 'application/vnd.kalimkit+json');
  assert.equal(saved.hasFile, true);
  assert.deepEqual([saved.format, saved.mediaType, saved.tools], ['kalimkit', 'image/png', ['MDrawRect']]);
  await until(async () => (await take()).some(({ type, dirty }) => type === 'kalim-change' && !dirty), 'the change');
  await page.resize(1280, 800, 2);
  assert.equal(await page.evaluate(() => window.filing.open()), true);
  await rest();
  const opened = await page.evaluate(async () => {
    const { dirty, canUndo, toolCount: count } = window.first;
    return { dirty, canUndo, count, isSame: await window.filing.isSame(), look: await window.embed.look(await window.first.exportImage()) };
  });
  assert.deepEqual(opened, { dirty: false, canUndo: false, count: 1, isSame: true, look: before });
  assert.deepEqual((await take()).filter(({ type }) => type === 'kalim-open').map(({ name, format }) => [name, format]),
    [['w.kalim', 'image/png']]);
  // Where the browser has no hashes for the page.
  await page.evaluate(() => Object.defineProperty(crypto, 'subtle', { value: undefined }) && null);
  assert.equal(await page.evaluate(() => window.filing.isSame()), true);
  await page.resize(390, 844);
});

test('what a mosaic hides and its place among the tools are not in a sealed document', async () => {
  await page.evaluate(() => window.first.setTool('mosaic'));
  await draw();
  const sealed = await keep({ sealed: true });
  assert.deepEqual([sealed.isSealed, sealed.mediaType, sealed.tools, sealed.hasFile], [true, 'image/png', [], false]);
  assert.equal(await page.evaluate(() => window.first.dirty), true);
  const isSame = await page.evaluate(() => window.filing.looksSame());
  assert.equal(isSame, true);
});

test('a document that cannot be opened is refused by the place, and nothing is lost', async () => {
  await draw();
  await keep();
  const cases = [
    ['tools.0.startPoint', 'here', /w\.kalim: tools\[0\]\.startPoint/],
    ['picture.sha256', '0'.repeat(64), /w\.kalim: picture\.sha256/],
    ['picture.size', [599, 400], /w\.kalim: picture\.size.*600 x 400/],
    ['picture', null, /w\.kalim: .*picture/],
    ['version', 2, /w\.kalim: version 2/],
  ];
  for (const [path, value, message] of cases) assert.match(await failure(path, value), message);
  assert.match(await failure(null, 'cut'), /w\.kalim: /);
  assert.equal(await toolCount(), 1);
});

test('a document inside a PNG is opened, left, or asked about', async () => {
  await draw();
  await keep({ sealed: true });
  const counts = [];
  for (const packing of ['plain', 'deflated']) {
    await openInside('reopen', packing);
    counts.push(await toolCount());
  }
  await openInside('flat', 'plain');
  counts.push(await toolCount());
  assert.deepEqual(counts, [1, 1, 0]);
  for (const [keys, count] of [[['Escape'], 0], [['Tab', 'Enter'], 1]]) {
    await openInside(null, 'plain');
    await page.evaluate(() => window.first.focus());
    assert.equal(await questions(), 1);
    for (const key of keys) await page.press(key);
    await rest();
    assert.equal(await questions(), 0);
    await page.waitFor((wanted) => window.first.toolCount === wanted, count);
  }
  assert.match(await openInside('reopen', 'damaged'), /p\.png: the chunk is/);
  assert.equal(await openInside('flat', 'damaged'), true);
  assert.equal(await openInside(null, 'damaged'), true);
  assert.equal(await questions(), 0);
});
