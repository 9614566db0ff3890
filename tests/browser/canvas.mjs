// The page of kalimkit/host/browser, used as a person does: by touch, keyboard and input method.

import assert from 'node:assert/strict';
import { join } from 'node:path';
import { after, afterEach, before, beforeEach, test } from 'node:test';

import { complaintsOf, open, root } from './browser.mjs';

let host;
let context;
let page;
let protocol;
let complaints;
let corner;

before(async () => {
  host = await open();
});
after(() => host.close());

beforeEach(async () => {
  context = await host.browser.newContext({
    viewport: { width: 390, height: 844 },
    deviceScaleFactor: 3,
    hasTouch: true,
  });
  page = await context.newPage();
  complaints = complaintsOf(page);
  await page.addInitScript(() => {
    const ask = requestAnimationFrame;
    window.askedFrames = 0;
    window.requestAnimationFrame = (work) => {
      ++window.askedFrames;
      return ask(work);
    };
    // Answers with how many frames the page has asked for while so many went by.
    window.watchFrames = async (count) => {
      const before = window.askedFrames;
      for (let i = 0; i < count; ++i) await new Promise(ask);
      return window.askedFrames - before;
    };
  });
  await page.goto(`${host.url}/`);
  await page.waitForFunction(() => window.kalimCanvas);
  await page.setInputFiles('#file', join(root, 'docs/photos/coffee.png'));
  await page.locator('#hint').waitFor({ state: 'hidden' });
  corner = await page.locator('#canvas').boundingBox();
  protocol = await context.newCDPSession(page);
});
afterEach(async () => {
  await context.close();
  assert.deepEqual(complaints, []);
});

const choose = (tool) => page.click(`#tools button:text-is("${tool}")`);
const toolCount = () => page.evaluate(() => window.kalimCanvas.toolCount);

// Each step lists where all fingers are, canvas points.
async function touch(...steps) {
  const send = (type, places) => protocol.send('Input.dispatchTouchEvent', {
    type,
    touchPoints: places.map(([x, y], id) => ({ x: corner.x + x, y: corner.y + y, id })),
  });
  await send('touchStart', steps[0]);
  for (const step of steps.slice(1)) await send('touchMove', step);
  await send('touchEnd', []);
}

// "#RRGGBB" of a place on the screen, canvas points.
function colorAt(x, y) {
  return page.evaluate(([px, py]) => {
    const { data } = document.getElementById('canvas').getContext('2d').getImageData(px, py, 1, 1);
    return `#${[...data.slice(0, 3)].map((part) => part.toString(16).padStart(2, '0')).join('')}`;
  }, [x * 3, y * 3]);
}

test('a finger draws, undo takes it back, redo brings it again', async () => {
  await choose('Box');
  await touch([[60, 260]], [[100, 300]], [[200, 400]]);
  assert.equal(await toolCount(), 1);
  assert.equal(await colorAt(130, 260), '#ff3b30');
  await page.click('#undo');
  assert.equal(await toolCount(), 0);
  assert.notEqual(await colorAt(130, 260), '#ff3b30');
  assert.equal(await page.isDisabled('#undo'), true);
  await page.click('#redo');
  assert.equal(await colorAt(130, 260), '#ff3b30');
});

test('two fingers zoom about their middle', async () => {
  const before = await colorAt(20, 470);
  const edges = [[[150, 300], [240, 400]], [[130, 280], [260, 420]], [[105, 250], [285, 450]]];
  await touch(...edges);
  // The picture's lower edge, at 485, is now beyond 600.
  await page.waitForFunction(() => {
    const { data } = document.getElementById('canvas').getContext('2d').getImageData(585, 1650, 1, 1);
    return data[0] > 20;
  });
  assert.equal(await toolCount(), 0);
  assert.notEqual(await colorAt(20, 470), before);
});

test('an input method composes, keys edit, and the text is on the canvas', async () => {
  const field = () => page.evaluate(() => document.querySelector('textarea')?.value);
  await choose('Text');
  await touch([[120, 300]], [[160, 320]], [[220, 340]]);
  await page.keyboard.type('ab');
  await protocol.send('Input.imeSetComposition', { text: 'ni', selectionStart: 2, selectionEnd: 2 });
  assert.equal(await field(), 'abni');
  await protocol.send('Input.insertText', { text: '你好' });
  assert.equal(await field(), 'ab你好');
  await page.keyboard.press('Backspace');
  await page.keyboard.press('Control+ArrowLeft');
  await page.keyboard.insertText('😀');
  const text = await field();
  assert.match(text, /^(ab😀你|😀ab你)$/u);
  // As an on-screen keyboard does that corrects a word.
  await page.evaluate((corrected) => {
    const area = document.querySelector('textarea');
    area.value = corrected;
    area.dispatchEvent(new InputEvent('input'));
  }, text.replace('ab', 'abc'));
  await page.keyboard.press('Control+z');
  assert.equal(await field(), text);
  await page.evaluate(() => window.kalimCanvas.finishEditText());
  assert.equal(await field(), undefined);
  assert.equal(await toolCount(), 1);
});

test('the export has the pixels of the picture, or those of the screen', async () => {
  const sizeOf = (options) => page.evaluate(async (given) => {
    const blob = await window.kalimCanvas.exportImage(given);
    const { width, height } = await createImageBitmap(blob);
    return [blob.type, width, height];
  }, options);
  await touch([[60, 260]], [[100, 300]], [[200, 400]]);
  assert.deepEqual(await sizeOf({ scale: 'picture', type: 'image/jpeg' }), ['image/jpeg', 600, 400]);
  assert.deepEqual(await sizeOf({}), ['image/png', 1170, 780]);
});

test('a canvas at rest asks for no frames, and a turned page shows all of it', async () => {
  await page.setViewportSize({ width: 844, height: 390 });
  // The picture's middle and its left edge, in the room of 844 by 256 that is left to it.
  await page.waitForFunction(() => {
    const canvas = document.getElementById('canvas');
    const at = (x) => canvas.getContext('2d').getImageData(x * 3, canvas.height / 2, 1, 1).data;
    return canvas.width === 2532 && at(422)[0] > 60 && at(100)[0] === 0;
  });
  // By then the picture has glided to its place.
  await page.evaluate(() => window.watchFrames(60));
  assert.equal(await page.evaluate(() => window.watchFrames(30)), 0);
});

test('what the browser cannot read is refused and changes nothing', async () => {
  await touch([[60, 260]], [[100, 300]], [[200, 400]]);
  await page.setInputFiles('#file', { name: 'no.png', mimeType: 'image/png', buffer: Buffer.from('no') });
  await page.getByText('no.png: ').waitFor();
  assert.equal(await toolCount(), 1);
});
