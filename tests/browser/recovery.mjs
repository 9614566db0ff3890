// Work that survives the page: <kalim-editor recovery="KEY">.

import assert from 'node:assert/strict';
import { test } from 'node:test';

import { page, rest, take, toolCount } from './embedding.mjs';
import { until } from './webdriver.mjs';

const source = '/photos/coffee.png';
const place = (attributes) => page.evaluate((given) => window.recovering.place(given), attributes);
const opened = () => page.evaluate(() => window.recovering.opened());
const print = () => page.evaluate(() => window.recovering.print());
const told = async (type) => (await take()).filter((event) => event.type === type);

async function steps(first, last) {
  for (let number = first; number <= last; ++number) await page.evaluate((n) => window.recovering.step(n), number);
}

// What is kept comes a moment after it was handed over.
const keeps = (...counts) =>
  until(async () => (await page.evaluate(() => window.recovering.kept())).sort().join() === counts.join(),
    `${counts.join()} steps`);

// The page as its user has it after a reload; `prepare` does what a page does before there is an element.
async function reload(attributes, prepare = () => {}) {
  await page.evaluate(() => {
    window.first.unsent = 'lose';
  });
  await page.goto('/tests/embed.html');
  await page.evaluate(() => Promise.all([import('/tests/embed.js'), import('/tests/recovering.js')]));
  await page.evaluate(prepare);
  await place(attributes);
  await opened();
}

test('after a reload it goes on with what was drawn, whatever the page wants to open', async () => {
  await reload({ recovery: 'a', src: source });
  await page.evaluate(() => window.first.setTool('rectangle'));
  await steps(0, 7);
  const before = await print();
  await keeps(8);
  await reload({ recovery: 'a', src: '/photos/rocket.jpg' });
  assert.equal(await page.evaluate(() => window.first.dirty), true);
  assert.equal(await print(), before);
  const [recovered] = await told('kalim-recover');
  assert.deepEqual([recovered.name, recovered.steps], ['coffee.png', 8]);
  // Back to the beginning and forth, as if nothing had happened, and through another reload.
  const prints = [before];
  while (await page.evaluate(() => window.first.undo())) prints.push(await print());
  assert.equal(prints.length, 5);
  assert.equal(await toolCount(), 0);
  await reload({ recovery: 'a' });
  for (const expected of prints.slice(0, -1).reverse()) {
    assert.equal(await page.evaluate(() => window.first.redo()), true);
    assert.equal(await print(), expected);
  }
  await page.evaluate(() => window.first.close());
  await keeps();
});

test('what was sent, closed or replaced leaves nothing; what is drawn after sending is kept with the rest', async () => {
  await reload({ recovery: 'a', src: source });
  await keeps();
  await steps(0, 1);
  await keeps(2);
  await page.evaluate(() => window.first.open('/photos/rocket.jpg'));
  await keeps();
  await rest();
  await steps(0, 1);
  await keeps(2);
  await page.evaluate(() => {
    window.first.addEventListener('kalim-finish', (event) => event.preventDefault());
    window.first.focus();
  });
  await page.touch([[365, 32]]);
  await keeps();
  await rest();
  await steps(2, 3);
  const before = await print();
  await keeps(4);
  await reload({ recovery: 'a' });
  assert.equal(await print(), before);
  await page.evaluate(() => window.first.close());
  await keeps();
});

test('a host may refuse, and then has what it asked for; the work waits for the next one\'s first step', async () => {
  await reload({ recovery: 'a', src: source });
  await steps(0, 3);
  await keeps(4);
  const refusing = () => document.addEventListener('kalim-recover', (event) => event.preventDefault());
  await reload({ recovery: 'a', src: '/photos/rocket.jpg' }, refusing);
  assert.equal(await toolCount(), 0);
  assert.equal(await page.evaluate(async () => (await window.embed.export()).width), 640);
  await keeps(4);
  await steps(0, 0);
  await keeps(1);
});

test('a picture that is offered meanwhile is asked about', async () => {
  await reload({ recovery: 'a', src: source });
  await steps(0, 1);
  await keeps(2);
  await reload({ recovery: 'a' }, () => {
    document.addEventListener('kalim-recover', ({ target }) => {
      window.answer = target.offer('/photos/rocket.jpg');
    });
  });
  assert.equal(await toolCount(), 2);
  await page.evaluate(() => window.first.shadowRoot.querySelector('canvas').focus());
  for (const key of ['Tab', 'Enter']) await page.press(key);
  assert.equal(await page.evaluate(() => window.answer), true);
  await keeps();
});

test('work that has stopped the page again and again is left alone', async () => {
  await reload({ recovery: 'a', src: source });
  await steps(0, 1);
  await keeps(2);
  const stop = () => {
    window.createImageBitmap = () => {
      window.isStopped = true;
      return new Promise(() => {});
    };
    window.recovering.opened = async () => {
      while (!window.isStopped) await window.watched.frames(1);
    };
  };
  for (let i = 0; i < 3; ++i) await reload({ recovery: 'a', src: source }, stop);
  await reload({ recovery: 'a', src: source });
  assert.deepEqual([await toolCount(), await told('kalim-recover')], [0, []]);
  await steps(0, 0);
  await keeps(1);
});

test('elements with other keys keep their own, and one that is made anew goes on', async () => {
  await reload({ recovery: 'b', src: source });
  assert.equal(await toolCount(), 0);
  await steps(0, 1);
  const before = await print();
  // As a router does that makes its views anew.
  await page.evaluate(() => {
    window.kept = window.first;
  });
  await place({ recovery: 'b', src: '/photos/rocket.jpg' });
  await opened();
  assert.equal(await print(), before);
  await steps(2, 2);
  await keeps(3);
  assert.deepEqual(await told('kalim-warning'), []);
  await page.evaluate(() => {
    window.first.remove();
    document.body.append(window.kept);
  });
  await until(async () => (await told('kalim-warning')).some(({ message }) => /has gone on/.test(message)), 'a warning');
  await page.evaluate(() => window.first.close());
  await keeps(3);
});

test('a document, and a picture that is no file, are gone on with', async () => {
  const pictures = {
    document: async () => new File([await window.first.getDocument()], 'w.kalim'),
    pixels: () => new ImageData(80, 60),
  };
  for (const [name, make] of Object.entries(pictures)) {
    await reload({ recovery: name, src: source });
    await steps(0, 0);
    await page.evaluate(`async () => window.first.open(await (${make})())`);
    await rest();
    await steps(1, 4);
    const before = await print();
    await until(async () => (await page.evaluate(() => window.recovering.kept())).includes(4), `the steps of a ${name}`);
    await reload({ recovery: name });
    assert.equal(await print(), before, name);
    await page.evaluate(() => window.first.close());
  }
});

test('where nothing can be kept it warns once and goes on without', async () => {
  const obstacles = {
    'another editor keeps its work as "a"': () => {
      navigator.locks.request('kalimkit a', () => new Promise(() => {}));
    },
    'only pages of https:': () => {
      Object.defineProperty(navigator, 'locks', { value: undefined });
    },
    'the browser keeps nothing': () => {
      indexedDB.open = () => {
        throw new DOMException('the browser keeps nothing', 'SecurityError');
      };
    },
    'a damaged database': () => {
      indexedDB.open = () => {
        const opening = {};
        setTimeout(() => {
          opening.error = new DOMException('a damaged database', 'UnknownError');
          opening.onerror();
        });
        return opening;
      };
    },
    'the disk is full': () => {
      IDBObjectStore.prototype.put = () => {
        throw new DOMException('the disk is full', 'QuotaExceededError');
      };
    },
  };
  for (const [message, prepare] of Object.entries(obstacles)) {
    await reload({ recovery: 'a', src: source }, prepare);
    await steps(0, 2);
    assert.equal(await toolCount(), 1, message);
    const warnings = await told('kalim-warning');
    assert.deepEqual(warnings.map((warning) => warning.message.includes(message)), [true], message);
    await page.evaluate(() => window.first.close());
  }
});
