// The page of npm/page around the element: how pictures come in and go out, and that it is kept.

import assert from 'node:assert/strict';
import { writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { Page } from './page.mjs';

let page;

before(async () => {
  page = await Page.open();
  await page.goto('/');
  await page.waitFor(() => window.kalimEditor);
});
after(() => page.close());

// What the page gets of a drag or of the clipboard.
const give = (kind, name, format = 'image/png') => page.evaluate(async (type, given, mime) => {
  const pixels = new OffscreenCanvas(60, 40).getContext('2d');
  pixels.fillRect(0, 0, 60, 40);
  const data = new DataTransfer();
  data.items.add(new File([await pixels.canvas.convertToBlob({ type: mime })], given, { type: mime }));
  document.dispatchEvent(type === 'drop' ? new DragEvent(type, { dataTransfer: data, cancelable: true }) :
    new ClipboardEvent(type, { clipboardData: data, cancelable: true }));
}, kind, name, format);

// Until it has appeared.
const rest = () => page.evaluate(async () => {
  for (let i = 0; i < 40; ++i) await new Promise(requestAnimationFrame);
});

async function send() {
  await rest();
  await page.touch([[365, 32]]);
  await page.waitFor(() => document.getElementById('result').open);
}

test('a dropped and a pasted picture are opened, and what is sent can be shared and copied', async () => {
  await page.evaluate(() => {
    window.given = [];
    navigator.canShare = ({ files }) => files.length === 1;
    navigator.share = async ({ files: [file] }) => window.given.push([file.name, file.type]);
    navigator.clipboard.write = async ([item]) => window.given.push(item.types);
  });
  await give('drop', 'dropped.png');
  await page.waitFor(() => window.kalimEditor.isOpen);
  await send();
  await page.evaluate(() => {
    document.getElementById('share').click();
    document.getElementById('copy').click();
  });
  await page.waitFor(() => document.getElementById('told').textContent);
  assert.deepEqual(await page.evaluate(() => window.given),
    [['dropped-annotated.png', 'image/png'], ['image/png']]);
  await page.evaluate(() => {
    document.getElementById('keep').click();
    window.kalimEditor.close();
  });
  await give('paste', 'pasted.png');
  await page.waitFor(() => window.kalimEditor.isOpen);
  assert.deepEqual(await page.complaints(), []);
});

test('what is taken gives its name, format and title, what is refused gives nothing', async () => {
  await page.evaluate(() => {
    window.given = [];
    window.kalimEditor.close();
  });
  await give('drop', 'first.one.jpeg', 'image/jpeg');
  await page.waitFor(() => window.kalimEditor.isOpen);
  await rest();
  // After the button of the page that opened it.
  await page.press('r');
  await page.touch([[100, 400]], [[150, 450]], [[250, 550]]);
  await give('paste', 'second.webp', 'image/webp');
  await rest();
  await page.press('Escape');
  await rest();
  assert.equal(await page.evaluate(() => window.kalimEditor.tool), 'rectangle');
  assert.equal(await page.evaluate(() => document.title), 'first.one.jpeg – KalimKit');
  await send();
  await page.evaluate(() => {
    for (const id of ['share', 'copy']) document.getElementById(id).click();
  });
  await page.waitFor(() => window.given.length === 2);
  assert.deepEqual(await page.evaluate(() => window.given),
    [['first.one-annotated.jpg', 'image/jpeg'], ['image/png']]);
  await page.evaluate(() => document.getElementById('keep').click());
  assert.deepEqual(await page.complaints(), []);
});

test('keys save the drawing as a document and open one', async () => {
  await page.evaluate(() => {
    document.getElementById('file').addEventListener('click', (event) => {
      event.preventDefault();
      window.given.push('asked');
    });
  });
  await page.press('Control+Shift+s');
  const file = join(page.folder, 'again.kalim');
  await writeFile(file, await page.download('first.one.kalim'));
  await page.press('Control+o');
  assert.equal(await page.evaluate(() => window.given.at(-1)), 'asked');
  await page.chooseFile(() => document.getElementById('file'), file);
  await rest();
  for (const key of ['Tab', 'Enter']) await page.press(key);
  await page.waitFor(() => document.title === 'again.kalim – KalimKit');
  assert.deepEqual(await page.evaluate(() => [window.kalimEditor.toolCount, window.kalimEditor.dirty]), [1, false]);
});

test('it can be installed', async () => {
  const icons = await page.evaluate(async () => {
    const { href } = document.querySelector('link[rel=manifest]');
    const manifest = await (await fetch(href)).json();
    return Promise.all(manifest.icons.filter(({ sizes }) => sizes !== 'any').map(async ({ src, sizes }) => {
      const { width, height } = await createImageBitmap(await (await fetch(new URL(src, href))).blob());
      return [sizes, `${width}x${height}`];
    }));
  });
  assert.ok(icons.length >= 2);
  for (const [said, found] of icons) assert.equal(found, said);
});

test('it opens and works without a network', async () => {
  await page.evaluate(() => navigator.serviceWorker.ready);
  await page.waitFor(() => navigator.serviceWorker.controller);
  // A newer one removes what older ones have kept, and nothing of other pages of the site.
  const kept = await page.evaluate(async () => {
    for (const name of ['kalimkit / old', 'kalimkit /other/ old', 'another']) await caches.open(name);
    const registration = await navigator.serviceWorker.register('worker.js?newer');
    const worker = registration.installing ?? registration.waiting;
    await new Promise((done) => {
      const look = () => {
        if (worker.state === 'installed') worker.postMessage('take over');
        if (worker.state === 'activated') done();
      };
      worker.addEventListener('statechange', look);
      look();
    });
    return caches.keys();
  });
  assert.equal(kept.filter((name) => name.startsWith('kalimkit / ')).length, 1);
  assert.deepEqual(kept.filter((name) => !name.startsWith('kalimkit / ')).toSorted(), ['another', 'kalimkit /other/ old']);
  page.stopServer();
  await page.goto('/');
  await page.waitFor(() => window.kalimEditor);
  await give('drop', 'offline.png');
  await page.waitFor(() => window.kalimEditor.isOpen);
  await send();
  assert.match(await page.evaluate(() => document.getElementById('preview').src), /^blob:/);
});
