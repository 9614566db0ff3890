// <kalim-editor> in a page: its interface, its life in the page, and what an assistive technology is told.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { drag, page, rest, take, toolCount } from './embedding.mjs';
import { browserName } from './page.mjs';
import { until } from './webdriver.mjs';

const needsChromium = { skip: browserName === 'chromium' ? false : 'this browser\'s driver does not tell' };

const state = () => page.evaluate(() => window.embed.state());
const failure = (...call) => page.evaluate((...values) => window.embed.failure(...values), ...call);

// Over the picture of an element that is so far down the page.
const draw = (top = 0) => drag([150, top + 150], [180, top + 180], [250, top + 220]);

test('an element draws what it was told to, tells of it, and hands it over', async () => {
  await page.evaluate(() => {
    window.first.setTool('rectangle');
    window.first.setColor('#00FF00');
    window.first.lineWidth = 8;
  });
  await draw();
  assert.deepEqual(await state(), { isOpen: true, canUndo: true, canRedo: false, toolCount: 1, kept: 1 });
  const exported = { width: 600, height: 400, hasGreen: true };
  const exportOf = (options) => page.evaluate(async (given) => {
    const { box, ...rest } = await window.embed.export(given);
    return rest;
  }, options);
  assert.deepEqual(await exportOf({}), { type: 'image/png', ...exported });
  assert.deepEqual(await exportOf({ type: 'image/jpeg', quality: 1 }), { type: 'image/jpeg', ...exported });
  const density = await page.evaluate(() => devicePixelRatio);
  // 600 x 400 between bars that leave 253 points of height.
  assert.equal((await exportOf({ screenSize: true })).width, Math.ceil(379.5 * density));
  assert.equal(await page.evaluate(() => window.first.undo()), true);
  assert.equal((await exportOf({})).hasGreen, false);
  assert.equal(await page.evaluate(() => window.first.undo()), false);
  assert.equal(await page.evaluate(() => window.first.redo()), true);
  const told = (await take()).filter(({ type }) => type === 'kalim-change');
  assert.deepEqual(told.slice(-2).map(({ canUndo, canRedo, count }) => [canUndo, canRedo, count]),
    [[false, true, 0], [true, false, 1]]);

  await page.evaluate(() => {
    window.first.type = 'image/jpeg';
    window.first.addEventListener('kalim-finish', (event) => event.preventDefault(), { once: true });
  });
  await page.touch([[365, 32]]);
  await page.waitFor(() => window.first.isOpen);
  await until(async () => (await take()).some(({ blob }) => blob === 'image/jpeg'), 'what was sent');
  assert.equal((await state()).isOpen, true);
  await page.touch([[365, 32]]);
  await page.waitFor(() => !window.first.isOpen);
  assert.deepEqual(await state(), { isOpen: false, canUndo: false, canRedo: false, toolCount: 0, kept: 0 });
});

test('what is no value is refused by name, and nothing that was there is lost', async () => {
  await draw();
  assert.match(await failure('setTool', 'brush'), /^RangeError: A tool is one of freehand,.*"brush"/);
  assert.match(await failure('setColor', 'red'), /^RangeError: .*"red"/);
  assert.match(await failure('setLineWidth', 0), /^RangeError: .*from 1 to 100, not "0"/);
  assert.match(await failure('open', '/photos/none.png'), /photos\/none\.png: 404/);
  assert.match(await failure('open', '/tests/embed.css'), /^InvalidStateError: .*\/tests\/embed\.css: /);
  assert.match(await failure('open', null), /^TypeError/);
  assert.equal(await toolCount(), 1);
  await take();
  await page.evaluate(() => window.first.setAttribute('src', '/photos/none.png'));
  await until(async () => (await take()).some(({ message }) => message?.includes('none.png: 404')), 'an error');
  assert.equal(await toolCount(), 1);
  // A picture of a type that cannot be made goes out in its own.
  const sent = await page.evaluate(async () => {
    await window.first.open('/photos/rocket.jpg');
    window.first.type = 'image/gif';
    return [window.first.type, (await window.first.exportImage()).type];
  });
  assert.deepEqual(sent, ['auto', 'image/jpeg']);
  await page.evaluate(() => {
    window.first.close();
    window.first.wasmUrl = '/none.wasm';
  });
  assert.match(await failure('open', '/photos/coffee.png'), /none\.wasm: 404/);
  await page.evaluate(() => {
    window.first.wasmUrl = null;
  });
  assert.equal(await failure('open', '/photos/coffee.png'), null);
  assert.equal((await state()).isOpen, true);
});

test('texts are set in the fonts of an element, and one that cannot be had is named', async () => {
  await page.evaluate(() => {
    window.first.close();
    window.first.fonts = ['/none.ttf', new File(['no font'], 'empty.ttf'), '/fonts/truetype/dejavu/DejaVuSans.ttf'];
  });
  assert.equal(await failure('open', '/photos/coffee.png'), null);
  const messages = (await take()).filter(({ type }) => type === 'kalim-warning').map(({ message }) => message);
  assert.equal(messages.length, 2);
  assert.match(messages[0], /\/none\.ttf: 404/);
  assert.match(messages[1], /^empty\.ttf: this is no font/);
  const faces = () => page.evaluate(() => document.fonts.size);
  assert.equal(await faces(), 1);
  await page.evaluate(() => window.first.setAttribute('fonts', '/fonts/truetype/wqy/wqy-microhei.ttc'));
  await until(async () => (await faces()) > 1, 'another font');
  await page.evaluate(() => window.first.close());
  assert.equal(await faces(), 0);
});

test('a picture is handed over where the browser encodes only after a frame', async () => {
  const type = await page.evaluate(async () => {
    const { toBlob } = HTMLCanvasElement.prototype;
    HTMLCanvasElement.prototype.toBlob = function wait(...given) {
      const ask = window.requestAnimationFrame;
      window.requestAnimationFrame = (work) => {
        window.requestAnimationFrame = ask;
        toBlob.apply(this, given);
        return ask(work);
      };
    };
    return (await window.first.exportImage()).type;
  });
  assert.equal(type, 'image/png');
  assert.equal(await page.evaluate(() => window.watched.frames(10)), 0);
});

test('an editor that has stopped makes room for the next one', async () => {
  await page.evaluate(() => {
    const { drawImage } = CanvasRenderingContext2D.prototype;
    CanvasRenderingContext2D.prototype.drawImage = () => {
      CanvasRenderingContext2D.prototype.drawImage = drawImage;
      throw new Error('no memory');
    };
  });
  await draw();
  await page.waitFor(() => window.embed.state().kept === 0);
  assert.deepEqual((await take()).filter(({ type }) => type === 'kalim-error').map(({ message }) => message),
    ['no memory']);
  assert.equal((await page.complaints()).every((complaint) => complaint.includes('no memory')), true);
  assert.equal(await failure('open', '/photos/coffee.png'), null);
  await rest();
  await draw();
  assert.equal(await toolCount(), 1);
});

test('of several pictures the last one is shown, and none that there is no room for is sent', async () => {
  const shown = await page.evaluate(async () => {
    const element = window.first;
    const width = async () => (await window.embed.export()).width;
    const picture = (side) => new ImageData(side, 10);
    const raced = await Promise.all([element.open('/photos/rocket.jpg'), element.open(picture(50))]);
    const answers = [raced, await width()];
    const loading = element.open('/photos/rocket.jpg');
    element.close();
    answers.push([await loading, element.isOpen]);
    element.remove();
    answers.push(await element.open(picture(33)));
    document.body.append(element);
    answers.push(await element.open(picture(44)), await width());
    // Longer than a canvas may be.
    answers.push(await element.open(picture(40000)).catch(String));
    return answers;
  });
  const refusal = shown.pop();
  assert.deepEqual(shown, [[false, true], 50, [false, false], false, true, 44]);
  // Firefox 140 cannot even read it.
  if (browserName === 'firefox' && refusal.startsWith('InvalidStateError')) return;
  assert.equal(refusal, 'RangeError: This browser has no room for a picture of 40000 x 10 pixels');
  assert.equal(await page.evaluate(async () => (await window.embed.export()).width), 44);
});

test('several on a page share one module and nothing else', async () => {
  await page.evaluate(() => window.embed.add('second'));
  await page.waitFor(() => window.second.isOpen);
  await rest();
  await page.evaluate(() => window.second.setTool('arrow'));
  await draw(400);
  assert.deepEqual(await page.evaluate(() => [window.first.toolCount, window.second.toolCount]), [0, 1]);
  assert.deepEqual([...new Set((await take()).map(({ id }) => id))], ['second']);
  assert.equal(await page.evaluate(() =>
    performance.getEntriesByType('resource').filter(({ name }) => name.endsWith('.wasm')).length), 1);

  // A touch that ends the text of one takes the keys from the other.
  for (const id of ['first', 'second']) {
    await page.evaluate((of) => window[of].setTool('text'), id);
    await drag(await page.evaluate((of) => {
      const { left, top } = window[of].getBoundingClientRect();
      return [left + 60, top + 230];
    }, id));
    await page.type('a');
  }
  await drag([200, 130]);
  assert.deepEqual(await page.evaluate(() => [document.activeElement.id, window.first.shadowRoot.querySelector('textarea')]),
    ['first', null]);
});

test('moved, or taken out and put back, it keeps its drawings and steps', async () => {
  await draw();
  await page.evaluate(() => {
    const frame = document.createElement('section');
    document.body.append(frame);
    frame.append(window.first);
  });
  await rest();
  assert.equal(await toolCount(), 1);

  // While a finger draws.
  await page.evaluate(() => {
    window.kept = window.first;
    addEventListener('pointermove', () => window.first?.remove(), { once: true, capture: true });
  });
  await drag([60, 300], [80, 320], [120, 340]);
  const away = await page.evaluate(async () => {
    const { isOpen, toolCount: count, dirty } = window.kept;
    return [isOpen, count, dirty, (await window.kept.exportImage()).type, await window.watched.frames(10)];
  });
  assert.deepEqual(away, [true, 1, true, 'image/png', 0]);

  await page.evaluate(() => document.body.append(window.kept));
  await rest();
  assert.deepEqual(await state(), { isOpen: true, canUndo: true, canRedo: false, toolCount: 1, kept: 1 });
  await draw();
  assert.equal(await toolCount(), 2);
  for (const count of [1, 0]) {
    assert.equal(await page.evaluate(() => window.first.undo()), true);
    assert.equal(await toolCount(), count);
  }
});

test('nothing of the page holds one that is gone for good', needsChromium, async () => {
  await draw();
  await page.evaluate(() => {
    window.gone = new WeakRef(window.first);
    document.body.replaceChildren();
  });
  await rest();
  await until(async () => {
    await page.collectGarbage();
    return page.evaluate(() => !window.gone.deref());
  }, 'the end of the element');
});

test('put back it shows the picture that the user has taken last', async () => {
  const widthAnew = async () => {
    await page.evaluate(() => {
      window.kept = window.first;
      window.kept.remove();
    });
    await rest();
    await page.evaluate(() => document.body.append(window.kept));
    return page.evaluate(async () => (await window.embed.export()).width);
  };
  // Answered once the user has.
  const offer = (picture) => page.evaluate((given) => {
    window.answer = window.first.offer(given);
    return window.watched.frames(20);
  }, picture);
  const offered = () => page.evaluate(() => window.answer);
  await offer('/photos/rocket.jpg');
  assert.equal(await offered(), true);
  await rest();
  assert.equal(await widthAnew(), 640);
  await rest();
  await draw();
  for (const [answer, width] of [[['Escape'], 640], [['Enter'], 640], [['Tab', 'Enter'], 600]]) {
    await offer('/photos/coffee.png');
    for (const key of answer) await page.press(key);
    assert.equal(await offered(), width === 600);
    await rest();
    assert.equal(await page.evaluate(async () => (await window.embed.export()).width), width);
  }
  assert.equal(await widthAnew(), 600);
});

test('a page may remove it in answer to anything it says', async () => {
  await page.evaluate(() => {
    for (const type of ['kalim-finish', 'kalim-close', 'kalim-change', 'kalim-error']) {
      document.addEventListener(type, ({ target, detail }) => {
        if (detail?.count !== 0) target.remove();
      });
    }
    window.kept = window.first;
  });
  const again = async () => {
    await page.evaluate(() => document.body.append(window.kept));
    await page.waitFor(() => window.first?.isOpen);
    await rest();
  };
  await draw();
  assert.deepEqual(await page.evaluate(() => [window.kept.isOpen, window.kept.isConnected]), [true, false]);
  await page.evaluate(() => {
    window.kept.close();
    window.kept.setAttribute('src', '/photos/coffee.png');
  });
  await again();
  await page.touch([[30, 32]]);
  await page.waitFor(() => !window.kept.isOpen);
  await page.evaluate(() => window.kept.setAttribute('src', '/photos/coffee.png'));
  await again();
  await page.touch([[365, 32]]);
  await page.waitFor(() => !window.kept.isOpen);
  await page.evaluate(() => document.body.append(window.kept));
  await page.evaluate(() => window.kept.setAttribute('src', '/photos/none.png'));
  await page.waitFor(() => !window.kept.isConnected);
  assert.deepEqual(await page.evaluate(() => window.kept.shadowRoot.querySelector('canvas')), null);
});

test('it works where the browser keeps nothing for the page', async () => {
  await page.evaluate(() => {
    Object.defineProperty(window, 'localStorage', {
      get() {
        throw new DOMException('no', 'SecurityError');
      },
    });
  });
  assert.equal(await failure('open', '/photos/coffee.png'), null);
  await draw();
  assert.equal(await toolCount(), 1);
});

// ---- what an assistive technology is told

// Role, name and states of all that is announced.
async function screen() {
  // The mirror waits a moment.
  await page.evaluate(() => new Promise((done) => setTimeout(done, 400)));
  return (await page.accessibilityTree()).filter(([role]) => role !== 'RootWebArea');
}

test('the screen is told and used without being seen', needsChromium, async () => {
  await page.evaluate(() => window.first.setTool('rectangle'));
  await draw();
  assert.deepEqual(await screen(), [
    ['Canvas', 'Canvas', ''],
    ['group', 'Canvas', ''],
    ['button', 'Red rectangle, middle', ''],
    ['group', 'Tool bar', ''],
    ['button', 'Close', ''],
    ['button', 'Undo', ''],
    ['button', 'Redo', 'disabled'],
    ['button', 'Send', ''],
    ['button', 'Pen, Rectangle Red Fine', ''],
  ]);
  const focus = (name) => page.evaluate((label) =>
    window.first.shadowRoot.querySelector(`#mirror [aria-label="${label}"]`).focus(), name);
  const focused = () => page.evaluate(() => window.first.shadowRoot.activeElement.getAttribute('aria-label'));
  await focus('Red rectangle, middle');
  await page.press('Enter');
  assert.deepEqual((await screen())[2], ['button', 'Red rectangle, middle', 'pressed']);
  assert.equal(await focused(), 'Red rectangle, middle');
  await page.press('Delete');
  const left = await screen();
  assert.equal(left.some(([, name]) => name.startsWith('Red rectangle')), false);
  assert.equal(await focused(), 'Canvas');
  assert.equal(await toolCount(), 0);
  await focus('Undo');
  await page.press('Enter');
  assert.equal(await toolCount(), 1);
  await screen();
  await focus('Pen, Rectangle Red Fine');
  await page.press('Enter');
  assert.deepEqual((await screen()).filter(([role]) => role === 'radio').map(([, name, held]) => [name, held]),
    [['Arrow', ''], ['Ellipse', ''], ['Rectangle', 'checked'], ['Text', ''], ['Mosaic', ''], ['Crop', ''],
      ['Red', 'checked'], ['Fine', 'checked']]);
  assert.equal(await focused(), 'Arrow');
  await page.press('ArrowLeft');
  assert.equal(await focused(), 'Crop');
  await focus('OK');
  await page.press('Enter');
  await screen();
  assert.equal(await focused(), 'Pen, Rectangle Red Fine');
  // It asks whether to throw the drawing away.
  await focus('Close');
  await page.press('Enter');
  const asked = await screen();
  assert.equal(asked.find(([role]) => role === 'dialog')?.[0], 'dialog');
  assert.deepEqual(asked.filter(([role]) => role === 'button').map(([, name]) => name),
    ['Discard Changes', 'Send', 'Keep Editing']);
  assert.equal(await focused(), asked.find(([role]) => role === 'dialog')[1]);
  assert.equal(await page.evaluate(() => window.watched.frames(10)), 0);
});

test('it speaks the language that is said around it', needsChromium, async () => {
  await page.evaluate(() => {
    document.documentElement.lang = 'zh-Hans';
    window.embed.add('second');
  });
  await page.waitFor(() => window.second.isOpen);
  const names = async () => (await screen()).map(([, name]) => name);
  let told = await names();
  assert.ok(['Send', '发送'].every((name) => told.includes(name)), told.join());
  // From the next picture on.
  await page.evaluate(() => {
    window.second.remove();
    window.first.strings = { 撤销: 'Annuler' };
    return window.first.open('/photos/rocket.jpg');
  });
  told = await names();
  assert.ok(['发送', 'Annuler'].every((name) => told.includes(name)), told.join());
});
