// What <kalim-editor> tells its page and its user, and when; what waits for what.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { drag, page, rest, take, toolCount } from './embedding.mjs';
import { browserName } from './page.mjs';

const told = async (type) => (await take()).filter((event) => event.type === type);
const dirty = () => page.evaluate(() => window.first.dirty);

test('each finished step is told at its end, and nothing before', async () => {
  await page.evaluate(() => window.first.setTool('rectangle'));
  const during = await page.evaluate(() => window.embed.drag([[150, 150], [180, 180], [250, 220]]));
  assert.deepEqual(during, [0, 0, 0, 1]);
  const dragged = (...places) => () => page.evaluate((path) => window.embed.drag(path), places);
  const steps = {
    'selected it is moved': [dragged([200, 150], [200, 150]), dragged([200, 150], [210, 160], [215, 170])],
    resized: [dragged([265, 240], [275, 250], [290, 260])],
    recoloured: [() => page.evaluate(() => window.first.setColor('#00FF00'))],
    undone: [() => page.evaluate(() => window.first.undo())],
  };
  for (const [what, actions] of Object.entries(steps)) {
    await take();
    for (const act of actions) await act();
    await rest();
    const changes = await told('kalim-change');
    assert.deepEqual(changes.map(({ count, dirty: isDirty }) => [count, isDirty]), [[1, true]], what);
  }
  await page.evaluate(() => window.first.setTool('text'));
  await drag([80, 270]);
  await page.type('note');
  assert.deepEqual(await told('kalim-change'), []);
  await page.press('Escape');
  await rest();
  assert.equal((await told('kalim-change')).at(-1).count, 2);
  await page.evaluate(() => window.first.open('/photos/rocket.jpg'));
  const opened = (await take()).filter(({ type }) => type === 'kalim-open' || type === 'kalim-change');
  assert.deepEqual(opened, [
    { type: 'kalim-open', id: 'first', name: 'rocket.jpg', format: 'image/jpeg', width: 640, height: 427 },
    { type: 'kalim-change', id: 'first', canUndo: false, canRedo: false, count: 0, dirty: false },
  ]);
  await page.evaluate(() => window.first.close());
  assert.deepEqual((await told('kalim-change')).map(({ count }) => count), [0]);
});

test('pen and selection are told, and its properties follow the user', async () => {
  const pens = () => page.evaluate(() => {
    const { tool, color, lineWidth } = window.first;
    return [tool, color, lineWidth];
  });
  assert.deepEqual(await pens(), ['arrow', '#F63434', 7]);
  await page.evaluate(() => window.first.shadowRoot.querySelector('canvas').focus());
  for (const key of ['r', '3', ']']) await page.press(key);
  const chosen = await pens();
  assert.equal(chosen[0], 'rectangle');
  assert.notEqual(chosen[1], '#F63434');
  assert.equal((await told('kalim-tool')).length, 3);
  await drag([150, 150], [180, 180], [250, 220]);
  await drag([200, 150]);
  assert.deepEqual((await told('kalim-select')).map(({ count }) => count), [1]);
  await page.evaluate(() => window.first.open('/photos/rocket.jpg'));
  await rest();
  assert.deepEqual(await pens(), chosen);
  assert.equal((await told('kalim-select')).at(-1).count, 0);
});

test('leaving asks while something is unsent', async () => {
  const isAsked = () => page.evaluate(() =>
    !dispatchEvent(new Event('beforeunload', { cancelable: true })));
  assert.equal(await isAsked(), false);
  await drag([150, 150], [180, 180], [250, 220]);
  assert.deepEqual([await dirty(), await isAsked()], [true, true]);
  await page.evaluate(() => {
    window.first.unsent = 'lose';
  });
  assert.equal(await isAsked(), false);
  await page.evaluate(() => {
    window.first.unsent = null;
    window.first.addEventListener('kalim-finish', (event) => event.preventDefault());
  });
  await page.touch([[365, 32]]);
  await page.waitFor(() => !window.first.dirty);
  assert.equal(await isAsked(), false);
  await page.evaluate(() => window.first.undo());
  assert.deepEqual([await dirty(), await isAsked()], [false, false]);
  await page.evaluate(() => window.first.redo());
  assert.equal(await isAsked(), true);
  await page.evaluate(() => window.first.close());
  assert.equal(await isAsked(), false);
});

const sign = (name) => page.evaluate((id) => {
  const { hidden, textContent } = window.first.shadowRoot.getElementById(id);
  return hidden ? null : textContent;
}, name);

test('one is sent at a time, with a sign, and drawing waits meanwhile', async () => {
  await drag([150, 150], [180, 180], [250, 220]);
  await page.evaluate(() => {
    const { postMessage } = Worker.prototype;
    Worker.prototype.postMessage = function wait(...given) {
      window.goOn = () => postMessage.apply(this, given);
    };
    window.first.addEventListener('kalim-finish', (event) => event.preventDefault());
  });
  for (const key of ['Enter', 'Enter', 'Control+z', 'Control+s']) await page.press(key);
  await drag([60, 150], [80, 180], [120, 220]);
  assert.equal(await sign('working'), 'One moment…');
  assert.equal(await toolCount(), 1);
  await page.waitFor(() => window.goOn);
  await page.evaluate(() => window.goOn());
  await page.waitFor(() => !window.first.dirty);
  await rest();
  assert.equal((await told('kalim-finish')).length, 1);
  assert.equal(await sign('working'), null);
  await drag([60, 150], [80, 180], [120, 220]);
  assert.equal(await toolCount(), 2);
});

test('an offer is answered when the user has, and the last one is asked about', async () => {
  await drag([150, 150], [180, 180], [250, 220]);
  await page.evaluate(() => {
    window.released = 0;
    const { close } = ImageBitmap.prototype;
    ImageBitmap.prototype.close = function count() {
      ++window.released;
      close.call(this);
    };
    window.answers = [];
    for (const name of ['chelsea.png', 'rocket.jpg', 'coffee.png']) {
      window.first.offer(`/photos/${name}`).then((answer) => window.answers.push([name, answer]));
    }
  });
  await rest();
  const answers = () => page.evaluate(() => window.answers);
  assert.deepEqual((await answers()).toSorted(), [['chelsea.png', false], ['rocket.jpg', false]]);
  await page.evaluate(() => {
    window.first.offer('/photos/rocket.jpg').then((answer) => window.answers.push(['again', answer]));
  });
  await rest();
  assert.deepEqual((await answers()).at(-1), ['coffee.png', false]);
  await page.press('Escape');
  await rest();
  assert.deepEqual((await answers()).at(-1), ['again', false]);
  assert.equal(await toolCount(), 1);
  assert.deepEqual(await told('kalim-open'), []);
  await rest();
  // All that came this far: two gave up while they were loaded.
  assert.ok(await page.evaluate(() => window.released) >= 2);
});

test('what could not be opened is said in its place and in the console, with what helps', async () => {
  await page.evaluate(() => {
    window.first.close();
    window.embed.logsErrors = true;
    window.first.src = '/photos/none.png';
  });
  await page.waitFor(() => !window.first.shadowRoot.getElementById('failure').hidden);
  assert.match(await sign('failure'), /^The Picture Cannot Be Opened.*none\.png: 404/i);
  const [complaint] = await page.complaints();
  assert.match(complaint, /^<kalim-editor> Error: .*none\.png: 404/);
  const remedies = await page.evaluate(async () => {
    const { fetchPicture, moduleError } = await import('/npm/src/loading.js');
    const [here, other] = ['/photos/coffee.png', 'https://127.0.0.1:1/a.png'].map((url) => new URL(url, location));
    const fetched = window.fetch;
    window.fetch = () => Promise.reject(new TypeError('Failed to fetch'));
    const failures = await Promise.all([here, other].map((url) => fetchPicture(url).catch((error) => error)));
    window.fetch = fetched;
    const modules = ['neither \'wasm-unsafe-eval\' nor', 'none.wasm: 404'].map((text) => moduleError(new Error(text)));
    return [...failures, ...modules].map(({ message, remedy }) => `${message} | ${remedy}`);
  });
  const expected = [/coffee\.png: Failed to fetch \| connect-src/, /a\.png: .*Access-Control-Allow-Origin/,
    /has to allow 'wasm-unsafe-eval'/, /wasm-url/];
  expected.forEach((pattern, i) => assert.match(remedies[i], pattern));
  await page.evaluate(() => window.first.open('/photos/coffee.png'));
  assert.equal(await sign('failure'), null);
});

test('touches land right on what is turned or seen in perspective', async () => {
  let straight;
  for (const transform of ['none', 'rotate(30deg) scale(0.8)', 'perspective(500px) rotateY(35deg) rotate(-80deg)']) {
    const found = await page.evaluate(async (given) => {
      const element = window.first;
      const frame = document.createElement('div');
      frame.className = 'turned';
      element.replaceWith(frame);
      frame.append(element);
      frame.style.transform = given;
      await window.first.open(new ImageData(390, 400));
      window.first.setTool('rectangle');
      window.first.setColor('#00FF00');
      await window.watched.frames(40);
      const places = [[60, 100], [150, 200], [320, 330]].map(([x, y]) => {
        const mark = document.createElement('div');
        mark.className = 'mark';
        frame.append(mark);
        mark.style.left = `${x}px`;
        mark.style.top = `${y}px`;
        const { left, top } = mark.getBoundingClientRect();
        return [left, top];
      });
      await window.embed.drag(places);
      const { box } = await window.embed.export();
      frame.replaceWith(element);
      return box;
    }, transform);
    straight ??= found;
    assert.ok(straight[2] - straight[0] > 200);
    found.forEach((side, i) => assert.ok(Math.abs(side - straight[i]) <= 1, `${transform}: ${found}, not ${straight}`));
    await page.waitFor(() => window.first.isConnected);
  }
});

test('attributes and the page around it', async () => {
  const answers = await page.evaluate(async () => {
    const element = window.first;
    const canvas = () => element.shadowRoot.querySelector('canvas');
    const turn = (ctrlKey) =>
      !canvas().dispatchEvent(new WheelEvent('wheel', { deltaY: -100, ctrlKey, cancelable: true }));
    element.wheel = 'ctrl';
    const said = [turn(false), turn(true)];
    element.wheel = null;
    said.push(turn(false));
    element.setAttribute('screen-size', 'false');
    said.push(element.screenSize);
    element.strings = null;
    said.push(await element.open('/photos/coffee.png'));

    // The browser's own dialog opens only for a user.
    let leaked = 0;
    for (const type of ['click', 'input', 'change']) document.addEventListener(type, () => ++leaked);
    element.pickPicture();
    const picker = element.shadowRoot.querySelector('input');
    for (const type of ['input', 'change']) picker.dispatchEvent(new Event(type, { bubbles: true, composed: true }));
    said.push(leaked);

    // Through a frame's document and back.
    const frame = document.body.appendChild(document.createElement('iframe'));
    const added = [];
    for (const page of [window, frame.contentWindow]) {
      const add = page.addEventListener;
      page.addEventListener = function count(type, work, options) {
        added.push(options?.signal);
        return add.call(this, type, work, options);
      };
    }
    frame.contentDocument.body.append(element);
    await window.watched.frames(30);
    document.body.append(element);
    await window.watched.frames(30);
    element.close();
    frame.remove();
    said.push(added.length > 0 && added.every((signal) => signal?.aborted));
    return said;
  });
  assert.deepEqual(answers, [false, true, true, false, true, 0, true]);
});

test('the keys work once a picture was opened from what it contains', async () => {
  await page.evaluate(async () => {
    window.first.close();
    const button = window.first.appendChild(document.createElement('button'));
    button.focus();
    await window.first.open('/photos/coffee.png');
    await window.watched.frames(40);
  });
  await page.press('e');
  assert.equal(await page.evaluate(() => window.first.tool), 'ellipse');
});

test('no way out of the editor shows what is being hidden', async () => {
  const exits = ['interface', 'screen', 'Enter', 'ctrl+s', 'ctrl+c', 'finger'];
  const contrasts = await page.evaluate(async (names) => {
    const picture = new ImageData(390, 400);
    picture.data.forEach((_, i) => {
      picture.data[i] = i % 4 === 3 || (i >> 2) % 4 < 2 ? 255 : 0;
    });
    const element = window.first;
    element.addEventListener('kalim-finish', (event) => event.preventDefault());
    const finished = () => new Promise((done) =>
      element.addEventListener('kalim-finish', ({ detail }) => done(detail.blob), { once: true }));
    const copied = () => new Promise((done) => {
      navigator.clipboard.write = async ([item]) => done(await item.getType('image/png'));
    });
    const exit = {
      interface: () => element.exportImage(),
      screen: () => element.exportImage({ screenSize: true }),
      Enter: (press) => [finished(), press({ key: 'Enter' })][0],
      'ctrl+s': (press) => [finished(), press({ key: 's', ctrlKey: true })][0],
      'ctrl+c': (press) => [copied(), press({ key: 'c', ctrlKey: true })][0],
      finger: (press, point) => [finished(), point('down', 8, 365, 32), point('up', 8, 365, 32)][0],
    };
    const found = {};
    for (const name of names) {
      await element.open(picture);
      element.setTool('mosaic');
      await window.watched.frames(40);
      const canvas = element.shadowRoot.querySelector('canvas');
      const press = (keys) => canvas.dispatchEvent(new KeyboardEvent('keydown', { ...keys, cancelable: true }));
      const point = (phase, pointerId, clientX, clientY) => canvas.dispatchEvent(new PointerEvent(`pointer${phase}`,
        { pointerId, clientX, clientY, pointerType: 'touch', bubbles: true }));
      point('down', 7, 100, 150);
      for (let x = 110; x <= 300; x += 10) point('move', 7, x, 100 + x / 2);
      const bitmap = await createImageBitmap(await exit[name](press, point));
      point('up', 7, 300, 250);
      const pixels = new OffscreenCanvas(390, 1).getContext('2d');
      pixels.drawImage(bitmap, 0, bitmap.height / 2, bitmap.width, 1, 0, 0, 390, 1);
      const levels = [...pixels.getImageData(150, 0, 90, 1).data].filter((_, i) => i % 4 === 0);
      found[name] = Math.max(...levels) - Math.min(...levels);
    }
    return found;
  }, exits);
  for (const name of exits) assert.ok(contrasts[name] < 60, `${name}: ${contrasts[name]} levels`);
});

test('the bars keep out of the camera and the corners of a screen', { skip: browserName !== 'chromium' }, async () => {
  const topOf = async (margin) => {
    await page.goto('/tests/embed.html');
    await page.evaluate((given) => {
      window.kept = document.getElementById('first');
      window.kept.style.marginTop = `${given}px`;
    }, margin);
    await page.waitFor(() => window.kept.shadowRoot.querySelector('#mirror [aria-label=Close]'));
    await rest();
    return page.evaluate(() => parseFloat(window.kept.shadowRoot.querySelector('#mirror [aria-label=Close]').style.top));
  };
  const plain = await topOf(0);
  await page.setSafeArea({ top: 60, left: 0, bottom: 30, right: 0 });
  const tops = [await topOf(0), await topOf(35), await topOf(200)];
  await page.setSafeArea({});
  await page.evaluate(() => import('/tests/embed.js'));
  // The bar's buttons begin at 20 points anyway.
  assert.deepEqual(tops.map((top) => top - plain), [40, 5, 0]);
});
