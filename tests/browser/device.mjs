// The tests of what every drawing device must do, on the canvas of a page: tests/backend/html.

import test, { after, before } from 'node:test';
import assert from 'node:assert/strict';
import { Page, browserName } from './page.mjs';

let page;
before(async () => {
  page = await Page.open();
});
after(() => page.close());

// All that the module prints.
async function runTests() {
  await page.goto('/tests/blank.html');
  return page.evaluate(async (browser) => {
    const { instantiate } = await import('/kalimkit/backend/html/instance.js');
    const printed = [];
    console.error = (text) => printed.push(text);
    const { exports, drawing } = await instantiate(new URL('/modules/tests-html.wasm', location.href));
    await drawing.completeTexts();
    exports.run(browser);
    return printed.join('');
  }, ['chromium', 'firefox', 'webkit'].indexOf(browserName));
}

test('the device of a page does what every device must do', async (all) => {
  const output = await runTests();
  const results = [...output.matchAll(/^\[ RUN      \] (.*)\n([^]*?)^\[ +(OK|FAILED) +\]/gm)];
  assert.notEqual(results.length, 0, output);
  for (const [, name, complaint, result] of results) {
    await all.test(name, () => assert.equal(result, 'OK', complaint));
  }
  assert.match(output, new RegExp(`^\\[==========\\] ${results.length} tests? from .* ran\\.`, 'm'));
});
