// Every scenario of tests/scenarios, played natively and in a browser: the prints agree, and so do the
// pictures, of which the last is what the view shows in the end, handles and all.

import assert from 'node:assert/strict';
import { execFile } from 'node:child_process';
import { mkdir, readFile, readdir, symlink, writeFile } from 'node:fs/promises';
import { basename, join } from 'node:path';
import { after, before, test } from 'node:test';
import { promisify } from 'node:util';

import { differences } from './json-match.mjs';
import { Page, browserName } from './page.mjs';
import { build, command, fonts, root } from './server.mjs';

const folder = join(root, 'tests/scenarios');
const names = (await readdir(folder)).filter((name) => name.endsWith('.jsonl'));
const lastPicture = { export: 'view.png', at: 'view' };
const lastScreen = { screenshot: 'screen.png' };

async function readScenario(name) {
  const lines = (await readFile(join(folder, `${name}.jsonl`), 'utf8')).split('\n');
  const options = await readFile(join(folder, `${name}.options`), 'utf8').catch(() => '');
  const words = options.split(/\s+/).filter(Boolean);
  const option = (key, otherwise) =>
    words.includes(key) ? words[words.indexOf(key) + 1] : otherwise;
  const all = (key) => words.flatMap((word, i) => (words[i - 1] === key ? [word] : []));
  const isEditor = words.includes('--editor');
  const [width, height] = option('--canvas', '390x844').split('x').map(Number);
  const picture = option('--picture', '');
  const named = lines.flatMap((line) => /"(?:picture|pick)"\s*:\s*"([^"]*)"\s*}/.exec(line)?.[1] ?? []);
  return {
    words,
    screen: { width, height, scale: Number(option('--scale', 2)) },
    forgiving: words.includes('--forgiving'),
    picture,
    pictures: Object.fromEntries([picture, ...named].filter(Boolean).map((at) => [at, `/${at}`])),
    editor: isEditor && {
      nativeHeight: Number(option('--native-height', 0)),
      layout: option('--layout', 'phone'),
      entrance: option('--needs-init-animate', null)?.split(',').map(Number),
      userDefaults: Object.fromEntries(all('--user-default').map((setting) => {
        const [, key, value] = /^(.*?)=(.*)$/.exec(setting);
        return [key, value === 'true'];
      })),
    },
    fonts: all('--font').map((at) => at.replace('/usr/share/', '/')),
    lines: [...lines, JSON.stringify(isEditor ? lastScreen : lastPicture)],
  };
}

const hasBoldText = ({ lines }) => lines.some((line) => /"type"|"text"|setShowMeasurement/.test(line));

// Leaves its pictures in the place.
async function playNatively({ words, lines }, place) {
  await mkdir(place, { recursive: true });
  await symlink(join(root, 'docs/photos'), join(place, 'photos'));
  const run = promisify(execFile)(command, ['play', '-', ...words], {
    cwd: place,
    env: { ...process.env, FONTCONFIG_FILE: fonts },
    maxBuffer: 1 << 28,
  });
  run.child.stdin.end(lines.join('\n'));
  return (await run).stdout.split('\n').filter(Boolean);
}

let page;

before(async () => {
  page = await Page.open();
  await page.goto('/tests/player.html');
  await page.waitFor(() => Boolean(window.scenarios));
});
after(() => page.close());

test('pictures differ when a small thing is missing in one, not when it has moved by a pixel', async () => {
  const found = await page.evaluate(() => window.scenarios.canCompare(5));
  assert.deepEqual(found, { missing: true, added: true, moved: false });
});

for (const name of names.map((file) => basename(file, '.jsonl'))) {
  test(`scenario ${name} goes in a browser as it goes natively`, async (running) => {
    const scenario = await readScenario(name);
    if (browserName === 'firefox' && hasBoldText(scenario)) {
      return running.skip('Firefox widens the bold letters that it makes of regular ones');
    }
    if (scenario.lines.some((line) => /"openDocument"\s*:\s*"documents\//.test(line))) {
      return running.skip('the player of a page opens only what it has saved itself');
    }
    const place = join(build, 'results', browserName, name);
    const [prints, played] = await Promise.all([
      playNatively(scenario, place),
      page.evaluate((given) => window.scenarios.play(given), {
        ...scenario.screen,
        forgiving: scenario.forgiving,
        picture: scenario.picture,
        pictures: scenario.pictures,
        editor: scenario.editor,
        fonts: scenario.fonts,
        lines: scenario.lines,
      }),
    ]);
    assert.equal(played.problem, null);
    assert.equal(played.prints.length, prints.length);
    const found = prints.flatMap((line, i) =>
      differences(JSON.parse(line), JSON.parse(played.prints[i]), `print ${i + 1}`));
    for (const picture of played.exported) {
      const compared = await page.evaluate((given) => window.scenarios.compare(given), {
        name: picture,
        url: `/results/${browserName}/${name}/${picture}`,
        scale: scenario.screen.scale,
        hasText: Boolean(scenario.editor) || hasBoldText(scenario),
      });
      const beside = join(place, `beside-${picture}.png`);
      await writeFile(beside, Buffer.from(compared.picture.split(',')[1], 'base64'));
      if (compared.message) found.push(`${picture}: ${compared.message}\n  see ${beside}`);
    }
    assert.deepEqual(await page.complaints(), []);
    assert.equal(found.join('\n'), '');
  });
}
