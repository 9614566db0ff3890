// The page of npm/page, used as a person does to the file that it gives: by touch, keyboard,
// input method and the editor's buttons.

import assert from 'node:assert/strict';
import { writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { afterEach, beforeEach, test } from 'node:test';

import { Page, browserName, hasFingers } from './page.mjs';
import { cropPlaces, editorPlaces } from './places.mjs';
import { root } from './server.mjs';
import { until } from './webdriver.mjs';

// Pixels. Stripes, so that a mosaic shows and a zoom can be measured.
const picture = { width: 1200, height: 1600 };
const stripe = 20;

const isRed = ([r, g, b]) => r > 200 && g < 120 && b < 120;
const isGrey = (color) => color.slice(0, 3).every((level) => level > 80 && level < 175);
const isStripe = (color) => color.slice(0, 3).every((level) => level < 60 || level > 195);

const needsFingers = { skip: hasFingers ? false : 'this browser\'s driver has no fingers' };
const needsChromium = { skip: browserName === 'chromium' ? false : 'this browser\'s driver cannot' };

let page;
// From the picture's pixels to the page's.
let toPage;
// Of the editor's views.
let places;

// A browser each: after two fingers Chromium tells the next page of none. The hint that invites a
// first tap moves for ever.
beforeEach(async () => {
  page = await Page.open();
  await page.goto('/tests/blank.html');
  await page.evaluate(() => localStorage.setItem('kalimkit.canUseRingAnimation', false));
  await openPage();
});
afterEach(async () => {
  const complaints = await page.complaints();
  await page.close();
  assert.deepEqual(complaints, []);
});

async function openPage() {
  await page.goto('/');
  await page.evaluate(() => import('/tests/looking.js'));
  await page.waitFor(() => window.kalimEditor);
  await page.chooseFile(fileField, await stripesFile('stripes.png', picture));
  await page.waitFor(() => window.kalimEditor.isOpen);
  const { width, height } = await page.evaluate(() => window.kalimEditor.getBoundingClientRect());
  places ??= await editorPlaces({ width, height });
  // Between the tool bar and the pen button.
  const [top, bottom] = [64, height - 83];
  const scale = Math.min(width / picture.width, (bottom - top) / picture.height);
  toPage = ([x, y]) => [
    width / 2 + (x - picture.width / 2) * scale,
    (top + bottom) / 2 + (y - picture.height / 2) * scale,
  ];
  // Until it has appeared, nothing can be chosen.
  await page.evaluate(() => window.watched.frames(40));
}

async function stripesFile(name, size) {
  const stripes = await page.evaluate((given) => window.looking.stripes(given), { ...size, stripe });
  const file = join(page.folder, name);
  await writeFile(file, Buffer.from(stripes, 'base64'));
  return file;
}

const toolCount = () => page.evaluate(() => window.kalimEditor.toolCount);
const framesAskedFor = (count) => page.evaluate((given) => window.watched.frames(given), count);
// Until nothing moves any more; a text that is edited blinks for ever.
const settle = () => until(async () => (await framesAskedFor(4)) === 0, 'the editor to come to rest');

async function tap(path) {
  await page.touch([places[path]]);
  await settle();
}

const fileField = () => document.getElementById('file');
const click = (id) => page.evaluate((given) => document.getElementById(given).click(), id);

// By the place in the row.
async function choosePen(index) {
  await tap('penView');
  await tap(`penViews.${index}`);
  await tap('confirmButton');
}

// In pixels of the picture.
function draw([x, y], [endX, endY], steps = 12) {
  return page.touch(...Array.from({ length: steps + 1 }, (_, i) =>
    [toPage([x + ((endX - x) * i) / steps, y + ((endY - y) * i) / steps])]));
}

// Two fingers, the second a little later; paths(t) is where they are, t from 0 to 1.
function together(paths, steps = 20) {
  const path = Array.from({ length: steps + 1 }, (_, i) => paths(i / steps));
  return page.touch([path[0][0]], ...path, [path.at(-1)[0]]);
}

// The file that the send button gives, decoded in the page for the questions below.
async function send(expected = picture, name = 'stripes-annotated.png') {
  await page.touch([places['toolView.confirmButton']]);
  await page.waitFor(() => document.getElementById('result').open);
  await click('download');
  const bytes = await page.download(name);
  await click('keep');
  const size = await page.evaluate((text) => window.looking.decode(text), bytes.toString('base64'));
  if (expected) assert.deepEqual(size, expected);
  return size;
}
const shownAt = (place) => page.evaluate((at) => window.looking.shownAt(at), place);
const stripeWidth = async () => (await page.evaluate(() => window.looking.stripesShown())).width;
const colorAt = (place) => page.evaluate((at) => window.looking.colorAt(at), place);
const countRed = (x = 0, y = 0, width = picture.width, height = picture.height) =>
  page.evaluate((rect) => window.looking.countRed(rect), [x, y, width, height]);

async function assertColor(is, place, what) {
  const color = await colorAt(place);
  assert.ok(is(color), `${what}: ${color} at ${place}`);
}

test('each pen leaves its ink in the file, undo takes all away, redo brings it again', async () => {
  const arrow = () => choosePen(0);
  const kinds = [
    { name: 'ellipse', pen: () => choosePen(1), from: [100, 600], to: [400, 800], ink: [250, 800], free: [250, 700] },
    { name: 'rectangle', pen: () => choosePen(2), from: [100, 200], to: [400, 400], ink: [250, 200], free: [250, 300] },
    { name: 'arrow', pen: arrow, from: [100, 1000], to: [400, 1200], ink: [360, 1173], free: [350, 1030] },
    { name: 'line', pen: () => page.press('l'), from: [500, 600], to: [800, 800], ink: [650, 700], free: [550, 780] },
    { name: 'freehand', pen: () => page.press('p'), from: [500, 1000], to: [800, 1200], ink: [650, 1100], free: [550, 1180] },
  ];
  const assertAllThere = async () => {
    await send();
    for (const { name, ink, free } of kinds) {
      await assertColor(isRed, ink, `${name} is missing`);
      await assertColor(isStripe, free, `${name} is where it must not be`);
    }
    await assertColor(isGrey, [605, 1412], 'the mosaic is missing');
  };
  for (const { name, pen, from, to, ink } of kinds) {
    await pen();
    await draw(from, to);
    // A stroke fades in.
    await until(async () => isRed(await shownAt(toPage(ink))), `the ink of ${name} on the screen`);
  }
  await choosePen(4);
  await draw([150, 1400], [1000, 1400], 40);
  assert.equal(await toolCount(), kinds.length + 1);
  await assertAllThere();
  for (let left = kinds.length; left >= 0; --left) {
    await tap('toolView.undoButton');
    assert.equal(await toolCount(), left);
  }
  await send();
  assert.equal(await countRed(), 0);
  await assertColor(isStripe, [605, 1412], 'the mosaic is still there');
  for (let i = 0; i <= kinds.length; ++i) await tap('toolView.redoButton');
  await assertAllThere();
});

test('the delete button takes away what is selected, the colour of a dot is what is drawn', async () => {
  await choosePen(2);
  await draw([400, 700], [800, 900]);
  await page.touch([toPage([400, 800])]);
  await settle();
  const [x, y] = places.penView;
  await page.touch([[x - 50, y]]);
  await settle();
  assert.equal(await toolCount(), 0);
  await page.press('3');
  await draw([400, 700], [800, 900]);
  await send();
  await assertColor(([r, g, b]) => b > 200 && r < 80 && g > 120, [600, 700], 'no blue');
});

test('the crop editor cuts and turns, and what it leaves is sent', async () => {
  const size = await page.evaluate(() => window.kalimEditor.getBoundingClientRect());
  const crop = await cropPlaces(size, join(page.folder, 'stripes.png'));
  const tapCrop = async (button) => {
    await page.touch([crop.places[`editImageInitialView.cropToolBar.${button}`]]);
    await framesAskedFor(90);
    await settle();
  };
  await tap('penView');
  await tap('penViews.5');
  await framesAskedFor(60);
  // Half of each side goes. A pan measures from where it begins, after 10 points.
  const [x, y, w, h] = crop.cut;
  const from = [x + w - 16, y + h];
  const path = Array.from({ length: 9 }, (_, i) => [[from[0] - (w * i) / 16, from[1] - (h * i) / 16]]);
  await page.touch([[x + w, y + h]], ...path);
  await framesAskedFor(90);
  await settle();
  await tapCrop('rotateBtn');
  await tapCrop('doneBtn');
  const sent = await send(null);
  assert.ok(Math.abs(sent.width - 800) < 8 && Math.abs(sent.height - 600) < 8, JSON.stringify(sent));
  // What was left is at the bottom now.
  const isBlack = ([level]) => level < 60;
  const isWhite = ([level]) => level > 195;
  for (const across of [100, 700]) {
    await assertColor(isBlack, [across, sent.height - 5], 'the first column');
    await assertColor(isWhite, [across, sent.height - 15], 'the second column');
  }
});

test('a pinch zooms and leaves no ink', needsFingers, async () => {
  const before = await stripeWidth();
  const [x, y] = toPage([600, 800]);
  await together((t) => [[x - 40 - 60 * t, y], [x + 40 + 60 * t, y]]);
  assert.equal(await toolCount(), 0);
  const zoom = (await stripeWidth()) / before;
  assert.ok(zoom > 1.8 && zoom < 2.6, `zoomed by ${zoom}`);
});

test('a wheel zooms about the pointer, and the middle button pans', needsChromium, async () => {
  const before = await stripeWidth();
  // Twelve black pixels of a stripe's twenty are left of here when it is enlarged twice.
  const place = toPage([605, 800]);
  const dark = async () => (await shownAt(place))[0] < 128;
  assert.ok(await dark());
  await page.wheel(place, -500);
  await settle();
  const zoom = (await stripeWidth()) / before;
  assert.ok(Math.abs(zoom - 1.15 ** 5) < 0.05, `zoomed by ${zoom}`);
  assert.ok(await dark());
  // By half a stripe.
  const [x, y] = place;
  const half = (toPage([10, 0])[0] - toPage([0, 0])[0]) * zoom;
  await page.drag('middle', [x, y], [x + 20 + half, y], [x + Math.round(half), y]);
  assert.ok(!(await dark()));
  assert.equal(await toolCount(), 0);
});

test('two fingers turn the selected box', needsFingers, async () => {
  await choosePen(2);
  await draw([400, 700], [800, 900]);
  await page.touch([toPage([400, 800])]);
  await settle();
  const [x, y] = toPage([600, 800]);
  await together((t) => {
    const [dx, dy] = [50 * Math.cos((t * Math.PI) / 2), 50 * Math.sin((t * Math.PI) / 2)];
    return [[x - dx, y - dy], [x + dx, y + dy]];
  });
  assert.equal(await toolCount(), 1);
  await send();
  await assertColor(isRed, [600, 1000], 'no side is below');
  await assertColor(isStripe, [800, 800], 'a side is still on the right');
});

test('an input method composes, keys edit, and the text is in the file', async () => {
  const field = () => page.evaluate(() =>
    window.kalimEditor.shadowRoot.querySelector('textarea')?.value);
  await choosePen(3);
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
    const area = window.kalimEditor.shadowRoot.querySelector('textarea');
    area.value = corrected;
    area.dispatchEvent(new InputEvent('input'));
  }, text.replace('ab', 'abc'));
  assert.equal(await field(), text.replace('ab', 'abc'));
  await page.press('Control+z');
  assert.equal(await field(), text);
  await tap('toolView.doneButton');
  assert.equal(await field(), null);
  assert.equal(await toolCount(), 1);
  await send();
  const ink = await countRed();
  assert.ok(ink > 1000, `${ink} pixels of ink`);
  // The keys are the editor's again.
  await page.press('Control+z');
  assert.equal(await toolCount(), 0);
});

test('Arabic is composed, and the arrows go over the screen', needsChromium, async () => {
  const libraries = () => page.evaluate(() => performance.getEntriesByType('resource')
    .filter(({ name }) => name.includes('/libraries/')).length);
  const caret = () => page.evaluate(() =>
    window.kalimEditor.shadowRoot.querySelector('textarea').selectionStart);
  const press = async (key, count) => {
    const carets = [];
    for (let i = 0; i < count; ++i) {
      await page.press(key);
      carets.push(await caret());
    }
    return carets;
  };
  assert.equal(await libraries(), 0);
  await choosePen(3);
  await page.touch([toPage([300, 500])]);
  await until(async () => (await libraries()) === 2, 'what is known of texts');
  await page.compose(['س', 'سل', 'سلا'], 'سلام');
  await page.type(' abc');
  // From left to right the line is "abc مالس".
  assert.deepEqual(await press('ArrowLeft', 4), [7, 6, 5, 5]);
  assert.deepEqual(await press('ArrowRight', 8), [6, 7, 8, 4, 3, 2, 1, 0]);
  await press('End', 1);
  await page.compose(['ن', 'ني', 'nihao'], '你好');
  await tap('toolView.doneButton');
  assert.equal(await toolCount(), 1);
});

test('closing asks first when something is drawn, and the page starts anew', async () => {
  await draw([400, 700], [800, 900]);
  await tap('toolView.closeButton');
  await tap('actionSheet.0');
  assert.equal(await page.evaluate(() => window.kalimEditor.isOpen), true);
  await page.evaluate(() => {
    window.closings = 0;
    window.kalimEditor.addEventListener('kalim-close', () => ++window.closings);
  });
  await tap('toolView.closeButton');
  await tap('actionSheet.1');
  assert.equal(await page.evaluate(() => window.closings), 1);
  assert.equal(await page.evaluate(() => window.kalimEditor.isOpen), false);
  await page.chooseFile(fileField, join(root, 'tests/browser/fonts.conf'));
  await page.waitFor(() => document.getElementById('hint').textContent.startsWith('fonts.conf: '));
  await page.chooseFile(fileField, join(page.folder, 'stripes.png'));
  await page.waitFor(() => window.kalimEditor.isOpen);
  assert.equal(await toolCount(), 0);
});

test('a picture that cannot be read is refused with an alert, another one can be picked', async () => {
  await draw([400, 700], [800, 900]);
  await page.evaluate(() => window.kalimEditor.offer(new Blob(['no picture'])));
  await page.press('Control+z');
  assert.equal(await toolCount(), 1);
  await page.press('Enter');
  await page.press('Control+z');
  assert.equal(await toolCount(), 0);
  const other = { width: 400, height: 400 };
  // Nobody could answer the browser's own dialog.
  await page.evaluate(() => {
    HTMLInputElement.prototype.click = () => {};
    window.isOther = false;
    window.kalimEditor.addEventListener('kalim-open', () => { window.isOther = true; });
    window.kalimEditor.pickPicture();
  });
  const picker = () => window.kalimEditor.shadowRoot.querySelector('input[hidden]');
  await page.chooseFile(picker, await stripesFile('other.png', other));
  await page.waitFor(() => window.isOther && !window.kalimEditor.shadowRoot.querySelector('input[hidden]'));
  await send(other, 'other-annotated.png');
});

test('the export has the pixels of the picture, or those of the screen', async () => {
  const sizeOf = (options) => page.evaluate(async (given) => {
    const blob = await window.kalimEditor.exportImage(given);
    const { width, height } = await createImageBitmap(blob);
    return [blob.type, width, height];
  }, options);
  const [left, top] = toPage([0, 0]);
  const [right, bottom] = toPage([picture.width, picture.height]);
  const scale = await page.evaluate(() => devicePixelRatio);
  assert.deepEqual(await sizeOf({ type: 'image/jpeg' }), ['image/jpeg', 1200, 1600]);
  const [type, width, height] = await sizeOf({ screenSize: true });
  assert.equal(type, 'image/png');
  assert.ok(Math.abs(width / scale - (right - left)) <= 1, `${width} pixels wide`);
  assert.ok(Math.abs(height / scale - (bottom - top)) <= 1, `${height} pixels high`);
});

test('the buttons speak the language, or English, from either side', async () => {
  const looks = await page.evaluate(async () => {
    const { KalimEditor } = await import('/kalimkit/host/browser/kalim.js');
    const shots = [];
    for (const language of ['zh-CN', 'en-GB', 'de', 'ar-EG', 'tlh']) {
      const canvas = document.createElement('canvas');
      canvas.style.cssText = 'position: fixed; width: 300px; height: 300px';
      document.body.append(canvas);
      const editor = await KalimEditor.create(canvas, { language });
      await editor.open(new ImageData(10, 10));
      await window.watched.frames(10);
      const shot = document.createElement('canvas').getContext('2d');
      shot.drawImage(canvas, 0, 0);
      shots.push(shot.canvas.toDataURL());
      editor.destroy();
      canvas.remove();
    }
    return [new Set(shots).size, shots[1] === shots[4]];
  });
  assert.deepEqual(looks, [4, true]);
});

test('after the first tap an editor at rest asks for no frames, and a turned page shows all of it', async () => {
  await page.evaluate(() => localStorage.clear());
  await openPage();
  assert.notEqual(await framesAskedFor(30), 0);
  await choosePen(0);
  // On a slow machine the last frame of the choice may come late.
  await until(async () => (await framesAskedFor(60)) === 0, 'a second without a frame');
  await openPage();
  await until(async () => (await framesAskedFor(60)) === 0, 'a second without a frame');
  if (browserName !== 'chromium') return;
  await page.resize(844, 390);
  // The picture's columns, and nothing of it at the left edge.
  await page.waitFor(() => {
    const canvas = window.kalimEditor.shadowRoot.querySelector('canvas');
    return canvas.width === 2532 && window.looking.stripesShown().isWhole;
  });
  await page.resize(390, 844);
});
