// <kalim-editor> on a wide screen: bars of its own, the kit, and what of the module is fetched for them when.

import assert from 'node:assert/strict';
import { mkdir, writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { afterEach, test } from 'node:test';

import { page, rest, take, toolCount } from './embedding.mjs';
import { build } from './server.mjs';
import { until } from './webdriver.mjs';

const results = join(build, 'results/wide');
const fetched = () => page.evaluate(() => performance.getEntriesByType('resource')
  .map(({ name }) => name.split('/').at(-1)).filter((name) => name.endsWith('.wasm')));
const isWhole = () => until(async () => (await fetched()).includes('kalimkit-desk.wasm'), 'the rest of the module');

// The one in hand last is that of a new editor, and may need the kit.
const forgetPen = () => page.evaluate(() => localStorage.removeItem('kalimkit.tool.last'));

// The element fills a desktop's window and has opened its picture there.
async function openWide({ size = [1100, 720], scale = 1, looks = {}, attributes = {}, colors = {} } = {}) {
  await page.widen(...size, scale, looks);
  await forgetPen();
  await page.goto('/tests/embed.html');
  await page.evaluate(async (given, style) => {
    await import('/tests/embed.js');
    Object.assign(window.first.style, { width: '100vw', height: '100vh' });
    for (const [name, value] of Object.entries(style)) window.first.style.setProperty(name, value);
    for (const [name, value] of Object.entries(given)) window.first.setAttribute(name, value);
    await window.first.open('/photos/coffee.png');
  }, attributes, colors);
  await rest();
  await take();
}

async function shoot(name) {
  await mkdir(results, { recursive: true });
  await writeFile(join(results, `${name}.png`), await page.screenshot());
}

const colorAt = (x, y) => page.evaluate((place) => {
  const canvas = window.first.shadowRoot.querySelector('canvas');
  return [...canvas.getContext('2d').getImageData(...place.map((side) => Math.round(side * devicePixelRatio)), 1, 1).data];
}, [x, y]);

async function draw(...places) {
  await page.drag('main', ...places);
  await rest();
}

// Of a place in the bar of pens.
const barPlace = [4, 300];

afterEach(() => page.resize(390, 844));

test('a phone fetches the rest of the module only for what needs it', async () => {
  assert.deepEqual(await fetched(), ['kalimkit.wasm']);
  await page.evaluate(() => window.first.setTool('blockarrow'));
  await isWhole();
  await rest();
  await page.touch([[150, 150]], [[180, 180]], [[250, 220]]);
  await rest();
  assert.equal(await toolCount(), 1);
  await page.evaluate(async () => {
    sessionStorage.drawn = await (await window.first.getDocument()).text();
  });

  await forgetPen();
  await page.goto('/tests/embed.html');
  await page.evaluate(() => import('/tests/embed.js'));
  await page.waitFor(() => window.first.isOpen);
  assert.deepEqual(await fetched(), ['kalimkit.wasm']);
  const open = () => page.evaluate(() => window.first.open(new File([sessionStorage.drawn], 'a.kalim')).catch(String));
  await page.evaluate(() => {
    window.first.close();
    window.first.deskUrl = '/none.wasm';
  });
  assert.match(await open(), /none\.wasm: 404/);
  // A pen that cannot be had is not said to be in hand.
  const pen = await page.evaluate(async () => {
    const { fetch } = window;
    await window.first.open('/photos/coffee.png');
    window.fetch = () => Promise.reject(new TypeError('Failed to fetch'));
    window.first.setTool('stamp');
    await new Promise((done) => window.first.addEventListener('kalim-warning', done, { once: true }));
    await window.watched.frames(5);
    window.fetch = fetch;
    return window.first.tool;
  });
  assert.equal(pen, 'arrow');
  assert.match((await take()).find(({ type }) => type === 'kalim-warning').message, /none\.wasm: Failed to fetch/);
  await page.evaluate(() => {
    window.first.close();
    window.first.deskUrl = null;
  });
  assert.equal(await open(), true);
  assert.equal(await toolCount(), 1);
  assert.deepEqual((await fetched()).at(-1), 'kalimkit-desk.wasm');
});

test('on a phone a key for shapes waits for the rest of the module', async () => {
  await page.evaluate(() => localStorage.clear());
  await page.goto('/tests/embed.html');
  await page.evaluate(() => import('/tests/embed.js'));
  await page.waitFor(() => window.first.isOpen);
  await page.evaluate(() => {
    window.first.setTool('rectangle');
    window.first.focus();
  });
  await page.touch([[150, 150]], [[180, 180]], [[250, 220]]);
  await rest();
  assert.deepEqual([await toolCount(), await fetched()], [1, ['kalimkit.wasm']]);
  // The second comes before the module that the first waits for.
  const kept = await page.evaluate(() => ['a', 'd', 'a', 'Delete'].map((key) => {
    const canvas = window.first.shadowRoot.querySelector('canvas');
    return !canvas.dispatchEvent(new KeyboardEvent('keydown',
      { key, ctrlKey: key !== 'Delete', bubbles: true, composed: true, cancelable: true }));
  }));
  await until(async () => await toolCount() === 0, 'the last key');
  await page.evaluate(() => window.first.undo());
  assert.deepEqual([kept, await toolCount(), (await fetched()).at(-1)], [[true, true, true, true], 2, 'kalimkit-desk.wasm']);
});

test('tab leads through what is drawn and the bars, and out again', async () => {
  for (const [name, lay, most] of [['phone', () => {}, 12], ['desk', openWide, 60]]) {
    await lay();
    await page.evaluate(() => window.first.insertAdjacentHTML('afterend', '<button id="after">After</button>'));
    await page.evaluate(() => window.first.setTool('rectangle'));
    for (const x of [150, 250]) await page.evaluate((left) => window.embed.drag([[left, 300], [left + 20, 320], [left + 50, 350]]), x);
    await page.evaluate(() => window.first.shadowRoot.querySelector('canvas').focus());
    const isOut = () => page.evaluate(() => document.activeElement.id === 'after');
    let count = 0;
    for (; count < most && !(await isOut()); ++count) {
      await page.press('Tab');
      // The first one waits for the rest of the module.
      if (count === 0) await isWhole().then(rest);
    }
    assert.ok(count > 2 && await isOut(), `${name}: ${count}`);
    await page.press('Shift+Tab');
    const focused = () => page.evaluate(() => window.first.shadowRoot.activeElement?.ariaLabel);
    const last = await focused();
    await page.press('Shift+Tab');
    assert.notEqual(await focused(), last, name);
  }
});

test('a wide screen has bars of its own, in the looks of the system and of the page', async () => {
  const dark = { 'prefers-color-scheme': 'dark' };
  const light = { 'prefers-color-scheme': 'light' };
  const table = [
    { name: 'light-en', looks: light, scale: 1, attributes: { lang: 'en' }, bar: (level) => level > 200 },
    { name: 'dark-zh', looks: dark, scale: 1.5, attributes: { lang: 'zh' }, bar: (level) => level < 80 },
    { name: 'dark-by-page', looks: light, scale: 2, attributes: { theme: 'dark' }, bar: (level) => level < 80 },
    { name: 'colours', looks: light, scale: 1, colors: { '--kalim-bar': '#123456' },
      bar: (red, green, blue) => red === 0x12 && green === 0x34 && blue === 0x56 },
  ];
  for (const { name, bar, ...given } of table) {
    await openWide(given);
    assert.deepEqual(await fetched(), ['kalimkit.wasm', 'kalimkit-desk.wasm'], name);
    await shoot(name);
    const color = await colorAt(...barPlace);
    assert.ok(bar(...color), `${name}: ${color}`);
  }
});

test('bars change with the size in the middle of a drag, and nothing is lost', async () => {
  await openWide();
  await page.evaluate(() => window.first.setTool('rectangle'));
  await draw([400, 200], [500, 300], [520, 320]);
  await page.hold([600, 200]);
  await page.hover([700, 300]);
  const narrow = (width, height) => page.evaluate((...size) => {
    Object.assign(window.first.style, { width: `${size[0]}px`, height: `${size[1]}px` });
  }, width, height);
  await narrow(390, 700);
  await rest();
  await shoot('narrow');
  await narrow(1100, 720);
  await rest();
  await page.letGo();
  await rest();
  const count = await toolCount();
  assert.ok(count === 1 || count === 2, `${count} shapes`);
  for (let left = count; left > 0; --left) assert.equal(await page.evaluate(() => window.first.undo()), true);
  assert.equal(await toolCount(), 0);
});

test('each tool of the kit is drawn by the mouse', async () => {
  await openWide();
  const pens = await page.evaluate(async () => {
    const { Pen } = await import('/kalimkit/host/browser/kalim.js');
    const { needsKit } = await import('/kalimkit/host/browser/choices.js');
    return Object.keys(Pen).filter((name) => needsKit(Pen[name]));
  });
  assert.ok(pens.length > 3);
  for (const [i, name] of pens.entries()) {
    await page.evaluate((pen) => window.first.setTool(pen), name);
    const [x, y] = [260 + (i % 4) * 190, 120 + Math.floor(i / 4) * 170];
    await draw([x, y], [x + 40, y + 30], [x + 120, y + 90]);
  }
  await shoot('kit');
  assert.ok(await toolCount() >= pens.length - 3, `${await toolCount()} of ${pens}`);
  assert.deepEqual(await page.complaints(), []);
});

test('the page decides what is around the picture', async () => {
  await openWide({ attributes: { ui: 'none' } });
  assert.deepEqual(await fetched(), ['kalimkit.wasm']);
  await page.evaluate(() => {
    window.first.setTool('rectangle');
    window.first.setWidth(12);
    for (const [name, value] of [['layout', 'huge'], ['pens', 'arrow brush'], ['colors', '#f00 red'], ['widths', '0'],
      ['theme', 'blue'], ['ui', 'some']]) window.first.setAttribute(name, value);
  });
  const warnings = (await take()).filter(({ type }) => type === 'kalim-warning').map(({ message }) => message);
  assert.deepEqual(warnings.map((message) => /"([^"]*)"/.exec(message)[1]), ['huge', 'brush', 'red', '0', 'blue', 'some']);
  await draw([300, 150], [350, 200], [500, 300]);
  await shoot('none');
  assert.equal(await toolCount(), 1);

  await draw([300, 200], [300, 200]);
  await until(async () => (await take()).some(({ type, count }) => type === 'kalim-selection' && count === 1), 'a selection');
  const told = await page.evaluate(() => window.first.properties.map(({ name }) => name));
  assert.ok(told.includes('opacity'), String(told));
  const chosen = await page.evaluate(() => {
    window.first.setProperty('opacity', 0.5);
    return window.first.properties.find(({ name }) => name === 'opacity').value;
  });
  assert.equal(chosen, 0.5);
  assert.match(await page.evaluate(() => window.embed.failure('setProperty', 'opacity', 7)), /^RangeError: opacity .*"7"/);
  assert.match(await page.evaluate(() => window.embed.failure('setProperty', 'size', 7)), /^RangeError: .*"size"/);

  // A listener that keeps it, and may look.
  await page.evaluate(() => {
    window.asked = [];
    window.keep = (event) => {
      event.preventDefault();
      window.asked.push(event.detail.count, window.first.toolCount);
      try {
        window.first.undo();
      } catch (error) {
        window.asked.push(error.name);
      }
    };
    document.addEventListener('kalim-delete', window.keep);
    window.first.shadowRoot.querySelector('canvas').focus();
  });
  await page.press('Delete');
  assert.deepEqual(await page.evaluate(() => [window.asked, window.first.toolCount]), [[1, 1, 'InvalidStateError'], 1]);
  await page.evaluate(() => document.removeEventListener('kalim-delete', window.keep));
  assert.equal(await page.evaluate(() => window.first.deleteSelection()), true);
  assert.equal(await toolCount(), 0);
});

test('a picture that is only looked at is moved and zoomed', async () => {
  await openWide({ attributes: { readonly: '' } });
  await draw([300, 150], [350, 200], [500, 300]);
  await page.press('r');
  assert.equal(await toolCount(), 0);
  const before = await colorAt(550, 360);
  await page.wheel([700, 200], -500);
  await rest();
  assert.notDeepEqual(await colorAt(550, 360), before);
  // Most of it has been zoomed out of sight; a finger moves it as the mouse does.
  assert.deepEqual(await colorAt(550, 600), [0, 0, 0, 0]);
  await page.touch([[500, 600]], [[500, 560]], [[500, 300]]);
  await rest();
  await shoot('read-only');
  assert.notDeepEqual(await colorAt(550, 600), [0, 0, 0, 0]);
  assert.equal(await page.evaluate(() => window.first.canUndo), false);
  // The other keys are the page's.
  const isKept = (key) => page.evaluate((name) => !window.first.shadowRoot.querySelector('canvas').dispatchEvent(
    new KeyboardEvent('keydown', { key: name, bubbles: true, composed: true, cancelable: true })), key);
  const kept = [];
  for (const key of ['+', '-', 'ArrowDown', ' ', 'Escape', 'Tab', 'z', 'h']) kept.push(await isKept(key));
  assert.deepEqual(kept, [true, true, false, false, false, false, false, false]);
  assert.deepEqual(await fetched(), ['kalimkit.wasm']);
  // What lies over the picture can be pressed.
  await isKept('?');
  await isWhole();
  const openKeys = () => page.evaluate(() => window.first.shadowRoot.querySelector('#mirror [role="dialog"]') !== null);
  await until(openKeys, 'the list of keys');
  await page.touch([[5, 5]]);
  await until(async () => !await openKeys(), 'the list closed');
});

test('what a page has put into the bar lies in it in each layout, and can be clicked', async () => {
  // Left of which thing of the editor's, by its name.
  const table = [
    { name: 'bar-desk', size: [1100, 720], height: 48, next: 'Undo' },
    { name: 'bar-desk-dark', size: [800, 600], looks: { 'prefers-color-scheme': 'dark' }, height: 48, next: 'Undo' },
    { name: 'bar-phone', size: [390, 700], attributes: { layout: 'phone' }, height: 64, next: 'Send' },
    { name: 'bar-none', size: [1100, 720], attributes: { ui: 'none' } },
  ];
  const isSeen = () => page.evaluate(() => getComputedStyle(document.querySelector('#own')).visibility === 'visible');
  const seen = (wanted, what) => until(async () => await isSeen() === wanted, what);
  for (const { name, height, next, attributes, ...given } of table) {
    await openWide({ ...given, attributes: { lang: 'en', ...attributes } });
    await page.evaluate(() => {
      window.clicks = 0;
      window.first.insertAdjacentHTML('beforeend', '<button slot="bar" id="own">Own</button>');
      document.querySelector('#own').addEventListener('click', () => ++window.clicks);
    });
    await rest();
    await shoot(name);
    assert.equal(await isSeen(), Boolean(next), name);
    if (!next) continue;
    const boxes = () => page.evaluate(() => {
      const all = [...window.first.shadowRoot.querySelectorAll('#mirror button, #mirror [role="slider"], #bar')];
      const box = (element) => element.getBoundingClientRect().toJSON();
      return { own: box(document.querySelector('#own')), bar: box(all.pop()),
        others: all.map((element) => ({ label: element.ariaLabel ?? element.textContent, ...box(element) })) };
    });
    // What comes before undo in a wide screen's bar scrolls, and is cut where this begins.
    const isFree = ({ bar, others }) => others.slice(next === 'Undo' ? others.findIndex(({ label }) => label === next) : 0)
      .every(({ left, right, top, bottom }) => right <= bar.left || left >= bar.right || bottom <= bar.top || top >= bar.bottom);
    const found = await boxes();
    const { own, others } = found;
    assert.ok(own.top >= 0 && own.bottom <= height && isFree(found), `${name}: ${JSON.stringify(found)}`);
    assert.ok(own.right <= others.find(({ label }) => label === next).left, name);

    const middle = [own.left + own.width / 2, own.top + own.height / 2];
    await draw(middle, middle);
    assert.deepEqual(await page.evaluate(() => [window.clicks, window.first.toolCount]), [1, 0], name);
    // Behind the last of what the bars show.
    await page.evaluate(() => [...window.first.shadowRoot.querySelectorAll('#mirror *')]
      .filter(({ tabIndex, disabled }) => tabIndex >= 0 && !disabled).at(-1).focus());
    await page.press('Tab');
    assert.equal(await page.evaluate(() => document.activeElement.id), 'own', name);

    // Not over the crop editor, nor over a question.
    const focus = () => page.evaluate(() => window.first.shadowRoot.querySelector('canvas').focus());
    for (const open of ['x', 'Escape']) {
      await page.evaluate(() => window.first.setTool('rectangle'));
      await draw([120, 300], [180, 350], [250, 400]);
      await focus();
      await page.press(open);
      await rest();
      // The first one only lets go of what is selected.
      if (open === 'Escape' && await isSeen()) await page.press(open);
      await seen(false, `${name}: hidden by ${open}`);
      await rest();
      await page.press('Escape');
      await seen(true, `${name}: back after ${open}`);
      await rest();
    }
    // One that is too wide is cut.
    await page.evaluate(() => {
      document.querySelector('#own').style.width = '900px';
    });
    await rest();
    await shoot(`${name}-cut`);
    const cut = await boxes();
    assert.ok(cut.bar.width < 900 && isFree(cut), `${name}: ${JSON.stringify(cut)}`);
  }
});

test('a page says how large bars and buttons of a wide screen are, and texts suit its bar', async () => {
  const table = [
    { name: 'usual', bar: 48, button: 34, text: 'rgb(27, 32, 39)' },
    { name: 'bar-size', colors: { '--kalim-bar-size': '64px' }, bar: 64, button: 34 },
    { name: 'button-size', colors: { '--kalim-button-size': '48px', '--kalim-bar': '#123456' }, bar: 62, button: 48,
      text: 'rgb(240, 243, 246)' },
    { name: 'both-sizes', colors: { '--kalim-bar-size': '500', '--kalim-button-size': '60px' }, bar: 72, button: 60 },
    { name: 'own-text', colors: { '--kalim-bar': '#123456', '--kalim-text': '#ff0' }, bar: 48, button: 34, text: 'rgb(255, 255, 0)' },
  ];
  for (const { name, colors, bar, button, text } of table) {
    await openWide({ looks: { 'prefers-color-scheme': 'light' }, attributes: { lang: 'en' }, colors });
    await page.evaluate(() => window.first.insertAdjacentHTML('beforeend', '<span slot="bar">Own</span>'));
    await rest();
    await shoot(name);
    const found = await page.evaluate(() => {
      const box = (label) => window.first.shadowRoot.querySelector(`#mirror [aria-label="${label}"]`).getBoundingClientRect();
      const undo = box('Undo');
      return { bar: undo.top + undo.bottom, button: undo.height, pen: box('Arrow').width };
    });
    assert.deepEqual(found, { bar, button, pen: button }, name);
    const color = await page.evaluate(() => window.first.shadowRoot.querySelector('#bar').style.color);
    if (text) assert.equal(color, text, name);
  }
  await take();
  await page.evaluate(() => window.first.style.setProperty('--kalim-bar-size', 'thick'));
  await rest();
  assert.deepEqual((await take()).map(({ type, message }) => [type, message]),
    [['kalim-warning', '--kalim-bar-size: "thick" is no length in px']]);
});
