// The browser is killed at random moments while its user draws, started again, and has lost nothing: as often as
// KALIM_KILLS says; KALIM_SEED repeats a run.

import assert from 'node:assert/strict';
import { after, test } from 'node:test';
import { env } from 'node:process';
import { setTimeout as pause } from 'node:timers/promises';

import { Page } from './page.mjs';

const kills = Number(env.KALIM_KILLS ?? 3);
const seed = Number(env.KALIM_SEED ?? Date.now() % 100000);
// A drawing of so many steps is closed, and the next one begun.
const stepsOfDrawing = 48;
// A kill comes no later than this after the first step, milliseconds.
const longest = 1000;

let state = seed;
const random = () => {
  state = (state * 48271 + 11) % 2147483647;
  return state / 2147483647;
};

let said = -1;
const page = await Page.open((text) => {
  said = Math.max(said, Number(text));
});
after(() => page.close());

async function arrive() {
  await page.goto('/tests/blank.html');
  await page.evaluate(() => localStorage.setItem('kalimkit.canUseRingAnimation', false));
  await page.goto('/tests/embed.html');
  await page.evaluate(() => Promise.all([import('/tests/embed.js'), import('/tests/recovering.js')]));
  await page.evaluate(() => {
    window.recovering.place({ recovery: 'killed', src: '/photos/coffee.png', tool: 'rectangle', unsent: 'lose' });
    return window.recovering.opened();
  });
}

// But for which tools share a colour: a page that comes again draws with colours of its own.
const print = async () => (await page.evaluate(() => window.recovering.print())).replace(/"colorId":\d+,/g, '');
// How many steps were found, and what was wrong.
const recovered = () => page.evaluate(async () => {
  const told = window.embed.take();
  const problems = told.filter(({ type }) => type === 'kalim-warning').map(({ message }) => message);
  return { steps: told.find(({ type }) => type === 'kalim-recover')?.steps ?? 0, problems };
});

// The prints after each step of a drawing that nobody disturbs; none of its steps is without effect.
async function undisturbed() {
  await arrive();
  const prints = [await print()];
  for (let number = 0; number < stepsOfDrawing; ++number) {
    await page.evaluate((n) => window.recovering.step(n), number);
    prints.push(await print());
  }
  assert.deepEqual(await page.evaluate(() => window.recovering.kept()), [stepsOfDrawing]);
  await page.evaluate(() => window.first.close());
  return prints;
}

test(`no finished step is lost by being killed ${kills} times (KALIM_SEED=${seed})`, async () => {
  const prints = await undisturbed();
  const found = new Set();
  await arrive();
  let done = 0;
  for (let kill = 0; kill < kills; ++kill) {
    said = done - 1;
    page.evaluate((from, last) => window.recovering.goOn(from, last), done, stepsOfDrawing - 1).catch(() => {});
    await pause(random() * longest);
    await page.restart();
    await arrive();
    const { steps, problems } = await recovered();
    console.log(`kill ${kill}: ${said + 1} steps were shown, ${steps} are there`, ...problems);
    assert.deepEqual(problems, []);
    assert.ok(steps >= said + 1, `${said + 1} steps were shown and ${steps} are left`);
    assert.ok(await print() === prints[steps], `after ${steps} steps something else is drawn`);
    found.add(steps);
    done = steps;
    if (done < stepsOfDrawing) continue;
    await page.evaluate(() => window.first.close());
    await arrive();
    done = 0;
  }
  // More than the beginning was seen.
  assert.ok(kills < 20 || found.size > 5, [...found].join());
});
