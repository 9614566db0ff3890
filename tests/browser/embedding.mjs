// A page with <kalim-editor> under a strict content security policy, opened anew before each test of the
// file that imports this.

import assert from 'node:assert/strict';
import { after, afterEach, beforeEach } from 'node:test';

import { Page } from './page.mjs';

export const page = await Page.open();
// Long enough for every fade.
export const rest = () => page.evaluate(() => window.watched.frames(40));
// What it has told since the last time.
export const take = () => page.evaluate(() => window.embed.take());
export const toolCount = () => page.evaluate(() => window.first.toolCount);

// With one finger.
export async function drag(...places) {
  await page.touch(...places.map((place) => [place]));
  await rest();
}

after(() => page.close());
beforeEach(async () => {
  await page.goto('/tests/blank.html');
  // The hint that invites a first tap moves for ever.
  await page.evaluate(() => {
    localStorage.clear();
    localStorage.setItem('kalimkit.canUseRingAnimation', false);
  });
  await page.goto('/tests/embed.html');
  await page.evaluate(() => import('/tests/embed.js'));
  await page.waitFor(() => window.first.isOpen);
  await rest();
  await take();
});
afterEach(async () => {
  // Or the browser asks before the next page.
  await page.evaluate(() => document.querySelectorAll('kalim-editor').forEach((element) => element.close()));
  assert.deepEqual(await page.complaints(), []);
});
