// Pictures that <kalim-editor> saves as their files were.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { copyFileSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { drag, page, rest, take } from './embedding.mjs';
import { command, root } from './server.mjs';

const folder = mkdtempSync(join(tmpdir(), 'kalimkit-saving-'));
const run = (program, ...values) => execFileSync(program, values, { cwd: folder, maxBuffer: 2 ** 28, stdio: 'pipe' });
const photo = (name) => join(root, 'docs/photos', name);

// As a camera writes it, held upright, with what tells about its owner.
before(() => {
  run('sh', '-c', 'djpeg "$0" | cjpeg -quality 83 > photo.jpg', photo('rocket.jpg'));
  run('exiftool', '-q', '-overwrite_original', '-n', '-Orientation=6', '-Make=Maker', '-Artist=Someone', '-GPSLatitude=47',
    '-GPSLatitudeRef=N', '-Comment=private', 'photo.jpg');
  copyFileSync(photo('chelsea.png'), join(folder, 'photo.png'));
  run('cwebp', '-quiet', '-q', '70', photo('chelsea.png'), '-o', 'photo.webp');
});
after(() => rmSync(folder, { recursive: true }));

async function open(name) {
  await page.evaluate(() => import('/tests/saving.js'));
  await page.evaluate((bytes) => window.saving.open(bytes), readFileSync(join(folder, name), 'base64'));
  await rest();
}

// Writes it as `name` and answers with its type.
async function save(name, options = {}) {
  const [type, bytes] = await page.evaluate((given) => window.saving.save(given), options);
  writeFileSync(join(folder, name), Buffer.from(bytes, 'base64'));
  return type;
}

const fetched = () => page.evaluate(() => window.saving.fetched());
const draw = async () => {
  await page.evaluate(() => window.first.setTool('arrow'));
  await drag([150, 150], [180, 180], [250, 220]);
};
const tags = (name) => JSON.parse(run('exiftool', '-j', '-n', name))[0];

// The stored pixels, { width, height, data }.
function pixelsOf(name) {
  const ppm = run('djpeg', '-ppm', name);
  const [head, width, height] = String(ppm.subarray(0, 40)).match(/^P6\s(\d+) (\d+)\s255\s/);
  return { width: Number(width), height: Number(height), data: ppm.subarray(head.length) };
}

// The left, top, right and bottom of what differs.
function differenceOf(name, other) {
  const [{ width, height, data }, { data: second }] = [pixelsOf(name), pixelsOf(other)];
  const box = [width, height, -1, -1];
  for (let i = 0; i < data.length; ++i) {
    if (data[i] === second[i]) continue;
    const [x, y] = [Math.floor(i / 3) % width, Math.floor(i / 3 / width)];
    box.splice(0, 4, Math.min(box[0], x), Math.min(box[1], y), Math.max(box[2], x), Math.max(box[3], y));
  }
  return { box, share: (box[2] - box[0]) * (box[3] - box[1]) / (width * height) };
}

test('a JPEG keeps its blocks beside the arrow, its layout and the data that are asked for', async () => {
  await open('photo.jpg');
  await draw();
  assert.equal(await fetched(), 0);
  assert.equal(await save('safe.jpg'), 'image/jpeg');
  assert.equal(await fetched(), 1);
  const { share } = differenceOf('photo.jpg', 'safe.jpg');
  assert.ok(share > 0 && share < 0.3, `${share} of the picture has changed`);
  const told = (name) => {
    const { Orientation, Make, Artist, GPSLatitude, Comment, YCbCrSubSampling } = tags(name);
    return [Orientation, Make, Artist, GPSLatitude, Comment, YCbCrSubSampling];
  };
  assert.deepEqual(told('safe.jpg'), [6, 'Maker', undefined, undefined, undefined, '2 2']);
  for (const [metadata, expected] of [['keep', [6, 'Maker', 'Someone', 47, 'private', '2 2']],
    ['none', [6, undefined, undefined, undefined, undefined, '2 2']]]) {
    await page.evaluate((mode) => { window.first.metadata = mode; }, metadata);
    await save(`${metadata}.jpg`);
    assert.deepEqual(told(`${metadata}.jpg`), expected, metadata);
    assert.deepEqual(differenceOf('safe.jpg', `${metadata}.jpg`).box.slice(2), [-1, -1]);
  }
  assert.equal(await fetched(), 1);
});

test('a picture goes out in the type that it came in, and byte for byte as the command writes it', async () => {
  for (const name of ['photo.jpg', 'photo.png', 'photo.webp']) {
    const ending = name.slice(5);
    writeFileSync(join(folder, 'steps.jsonl'), `{"export":"native${ending}","at":"picture"}\n`);
    run(command, 'play', '--picture', name, 'steps.jsonl');
    await open(name);
    assert.equal(await save(`web${ending}`), { '.jpg': 'image/jpeg', '.png': 'image/png', '.webp': 'image/webp' }[ending]);
    assert.ok(readFileSync(join(folder, `web${ending}`)).equals(readFileSync(join(folder, `native${ending}`))), name);
  }
});

// The photo with a grey square in the middle of what is hidden.
function writeSecret(name, level) {
  const { width, height, data } = pixelsOf('photo.jpg');
  for (let y = 180; y < 220; ++y) data.fill(level, 3 * (y * width + 300), 3 * (y * width + 330));
  writeFileSync(join(folder, 'secret.ppm'), Buffer.concat([Buffer.from(`P6\n${width} ${height}\n255\n`), data]));
  run('sh', '-c', 'cjpeg -quality 83 secret.ppm > "$0"', name);
}

test('photos that differ only in what a mosaic hides give the same bytes, as pictures and as sealed documents', async () => {
  const sent = [];
  for (const level of [0, 255]) {
    writeSecret('secret.jpg', level);
    await open('secret.jpg');
    await page.evaluate(() => window.first.setTool('mosaic'));
    await drag([100, 160], [180, 220], [290, 310]);
    await save(`hidden${level}.jpg`);
    const sealed = await page.evaluate(async () => (await window.first.getDocument({ sealed: true })).text());
    sent.push(readFileSync(join(folder, `hidden${level}.jpg`), 'base64'), sealed);
    assert.ok(differenceOf('secret.jpg', `hidden${level}.jpg`).share > 0.1);
  }
  assert.ok(sent[0] === sent[2] && sent[1] === sent[3]);
});

test('what came as no file becomes a PNG, without the module', async () => {
  await page.evaluate(async () => {
    await import('/tests/saving.js');
    await window.first.open(new ImageData(40, 30));
  });
  await rest();
  assert.equal(await save('made'), 'image/png');
  assert.equal(await fetched(), 0);
});

test('where the module cannot be had the picture is encoded anew, and the page hears of it', async () => {
  await page.evaluate(() => {
    window.first.close();
    window.first.codecUrl = '/photos/rocket.jpg';
  });
  await open('photo.jpg');
  await draw();
  await take();
  assert.equal(await save('anew.jpg'), 'image/jpeg');
  const [{ type, message }] = (await take()).filter((event) => event.type === 'kalim-warning');
  assert.match(`${type} ${message}`, /^kalim-warning The picture was encoded anew, without its file's data: /);
  assert.equal(tags('anew.jpg').Make, undefined);
});
