// What the tests in a browser share: where things lie, a server for them, a Chromium.

import { createRequire } from 'node:module';
import { createServer } from 'node:http';
import { readFile } from 'node:fs/promises';
import { extname, join, normalize } from 'node:path';
import { env } from 'node:process';
import { fileURLToPath } from 'node:url';

export const root = fileURLToPath(new URL('../..', import.meta.url));
export const wasmBuild = join(root, env.KALIM_WASM_BUILD ?? 'build/wasm');
// The native player.
export const command = join(root, env.KALIM_COMMAND ?? 'build/ci/cli/kalimkit');
// Packages and results, emptied by tests/browser/run.
export const build = join(root, 'build/browser');
export const fonts = join(root, 'tests/browser/fonts.conf');

const { chromium } = createRequire(join(build, 'package.json'))('playwright-core');

const places = [
  ['/results/', join(build, 'results')],
  ['/photos/', join(root, 'docs/photos')],
  ['/tests/', join(root, 'tests/browser')],
  ['/modules/', join(wasmBuild, 'tests/browser')],
  ['/', join(wasmBuild, 'page')],
];
const types = {
  '.html': 'text/html',
  '.css': 'text/css',
  '.js': 'text/javascript',
  '.wasm': 'application/wasm',
  '.png': 'image/png',
  '.jpg': 'image/jpeg',
  '.webp': 'image/webp',
};

async function answer(request, response) {
  const path = normalize(decodeURIComponent(new URL(request.url, 'http://here').pathname));
  const [prefix, folder] = places.find(([start]) => path.startsWith(start));
  const file = join(folder, path.slice(prefix.length) || 'index.html');
  try {
    const body = await readFile(file);
    response.writeHead(200, { 'Content-Type': types[extname(file)] ?? 'application/octet-stream' });
    response.end(body);
  } catch {
    response.writeHead(404).end();
  }
}

// A server of this machine alone and a browser. Ends with close().
export async function open() {
  const browser = await chromium.launch({
    executablePath: env.KALIM_CHROMIUM ?? '/usr/bin/chromium',
    args: ['--force-color-profile=srgb', '--font-render-hinting=none'],
    env: { ...env, FONTCONFIG_FILE: fonts },
  });
  const server = createServer(answer);
  await new Promise((done) => server.listen(0, '127.0.0.1', done));
  return {
    browser,
    url: `http://127.0.0.1:${server.address().port}`,
    async close() {
      await browser.close();
      server.close();
    },
  };
}

// Collects what goes wrong on a page without anybody asking: errors, failed requests.
export function complaintsOf(page) {
  const complaints = [];
  page.on('pageerror', (error) => complaints.push(String(error)));
  page.on('console', (message) => message.type() === 'error' && complaints.push(message.text()));
  return complaints;
}
