// The package as others have it from the registry: npm/tests/run has installed it into an app.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { existsSync, readFileSync, readdirSync } from 'node:fs';
import { createRequire } from 'node:module';
import { join } from 'node:path';
import { execPath } from 'node:process';
import { after, before, test } from 'node:test';

import { Page } from '../../tests/browser/page.mjs';
import { build } from '../../tests/browser/server.mjs';

const app = join(build, 'app');
const installed = join(app, 'node_modules/kalimkit');
let page;

before(async () => {
  page = await Page.open();
});
after(() => page.close());

async function open(path) {
  await page.goto(path);
  await page.waitFor(() => document.querySelector('kalim-editor'));
}

test('a server imports it without a page', () => {
  const script = `import { KalimEditorElement, defineKalimEditor } from 'kalimkit';
    import 'kalimkit/element';
    defineKalimEditor();
    console.log(KalimEditorElement.name);`;
  const output = execFileSync(execPath, ['--input-type=module', '--eval', script], { cwd: app });
  assert.equal(String(output).trim(), 'KalimEditorElement');
  assert.ok(existsSync(createRequire(join(app, 'main.ts')).resolve('kalimkit/kalimkit.wasm')));
});

test('what describes it names what is there', async () => {
  const read = (name) => JSON.parse(readFileSync(join(installed, name)));
  const { exports, sideEffects, customElements } = read('package.json');
  const files = [sideEffects, Object.values(exports).map((entry) => Object.values([entry].flat()[0]))].flat(2);
  for (const file of files.filter((name) => name.startsWith('./'))) assert.ok(existsSync(join(installed, file)), file);
  const [{ attributes, members }] = read(customElements).modules[0].declarations;
  await open('/app/plain.html');
  const missing = await page.evaluate((names) => {
    const element = document.querySelector('kalim-editor');
    return names.filter((name) => !(name in element));
  }, [...members.map(({ name }) => name), ...attributes.map(({ name, fieldName }) => fieldName ?? name)]);
  assert.deepEqual(missing, []);
});

test('a plain page shows a picture', async () => {
  await open('/app/plain.html');
  await page.waitFor(() => document.querySelector('kalim-editor').isOpen);
  assert.deepEqual(await page.complaints(), []);
});

test('a bundled app shows a picture and finds the module by itself', async () => {
  await open('/app/dist/index.html');
  await page.waitFor(() => document.title === 'open');
  const modules = () => page.evaluate(() => performance.getEntriesByType('resource')
    .map(({ name }) => new URL(name).pathname).filter((path) => path.endsWith('.wasm')));
  // The page is wide, so the desk's part comes as well.
  assert.match((await modules()).join(), /^\/app\/dist\/assets\/kalimkit-[^/]+\.wasm,\/app\/dist\/assets\/kalimkit-desk-[^/]+\.wasm$/);
  // So it does the module for saving, and the worker that runs it.
  assert.ok(readdirSync(join(app, 'dist/assets')).some((name) => name.startsWith('worker-')));
  const saved = await page.evaluate(async () => {
    const editor = document.querySelector('kalim-editor');
    await editor.open(new URL('/photos/rocket.jpg', document.baseURI));
    return (await editor.exportImage()).type;
  });
  assert.equal(saved, 'image/jpeg');
  assert.match((await modules()).join(), /\/app\/dist\/assets\/kalimkit-codec-[^/]+\.wasm$/);
  // What the compiler refuses is also told where it runs, for each picture.
  const complaints = await page.complaints();
  assert.equal(complaints.length, 2);
  for (const complaint of complaints) assert.match(complaint, /A tool is one of .*, not "brush"/);
});
