// Serves the page and has a browser measure each peer, every time on a fresh page.

import { once } from 'node:events';
import { mkdtemp, readFile, rm, writeFile } from 'node:fs/promises';
import { createServer } from 'node:http';
import { extname, join } from 'node:path';
import { argv } from 'node:process';
import { fileURLToPath } from 'node:url';

import { launch } from '../../tests/browser/webdriver.mjs';

const rounds = 3;
const build = argv[2];
const root = fileURLToPath(new URL('../..', import.meta.url));
const types = { '.html': 'text/html', '.js': 'text/javascript', '.wasm': 'application/wasm' };
const folders = [
  ['/photos/', join(root, 'docs/photos')],
  ['/bench/', join(root, 'bench/web')],
  ['/node_modules/', join(build, 'node_modules')],
  ['/bench-page.wasm', join(build, 'wasm/bench/web/bench-page.wasm')],
  ['/', join(build, 'wasm/page')],
];

async function answer(request, response) {
  const path = new URL(request.url, 'http://here').pathname;
  const [prefix, folder] = folders.find(([start]) => path.startsWith(start));
  try {
    const body = await readFile(join(folder, path.slice(prefix.length)));
    response.writeHead(200, { 'Content-Type': types[extname(path)] ?? 'application/octet-stream' });
    response.end(body);
  } catch {
    response.writeHead(404).end();
  }
}

const median = (values) => [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];
const rows = [
  ['kalimkit', 'KalimKit'],
  ['konvaLayers', 'konva, the dragged shape on a layer of its own'],
  ['konva', 'konva as it comes'],
  ['fabricWithoutCache', 'fabric without its object cache'],
  ['fabric', 'fabric as it comes'],
];

const server = createServer(answer).listen(0, '127.0.0.1');
await once(server, 'listening');
const url = `http://127.0.0.1:${server.address().port}/bench/page.html`;
const folder = await mkdtemp(join(build, 'profile-'));
const browser = await launch('chromium', { folder, fonts: join(root, 'tests/browser/fonts.conf') });
const results = Object.fromEntries(rows.map(([name]) => [name, []]));
try {
  await browser.send('Chromium:Send', {
    cmd: 'Emulation.setDeviceMetricsOverride',
    params: { width: 390, height: 844, deviceScaleFactor: 3, mobile: true },
  });
  for (let round = 0; round < rounds; ++round) {
    for (const [name] of rows) {
      await browser.send('Navigate', { url });
      const script = `const [name, done] = arguments;
        const wait = () => (window.measure ? window.measure(name).then(done, (e) => done(String(e.stack)))
          : setTimeout(wait, 20));
        wait();`;
      const result = await browser.send('ExecuteAsyncScript', { script, args: [name] });
      if (typeof result === 'string') throw new Error(`${name}: ${result}`);
      results[name].push(result);
      if (round === 0 && argv[3]) {
        const { data } = await browser.send('Chromium:Send', { cmd: 'Page.captureScreenshot', params: {} });
        await writeFile(join(argv[3], `${name}.png`), data, 'base64');
      }
    }
  }
} finally {
  await browser.end();
  server.close();
  server.closeAllConnections();
  await rm(folder, { recursive: true, maxRetries: 10 });
}
const middle = (name, figure) => median(results[name].map((result) => result[figure]));
console.log('| a step of a drag, milliseconds | script | script and raster | against KalimKit | the drop |');
console.log('| --- | --- | --- | --- | --- |');
for (const [name, title] of rows) {
  const [script, all, drop] = ['script', 'all', 'drop'].map((figure) => middle(name, figure));
  const ratio = all / middle('kalimkit', 'all');
  console.log(`| ${title} | ${script.toFixed(2)} | ${all.toFixed(2)} | ${ratio.toFixed(1)} | ${drop.toFixed(1)} |`);
}
