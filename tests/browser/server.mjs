// Where things lie, and a server for them.

import { once } from 'node:events';
import { createServer } from 'node:http';
import { readFile } from 'node:fs/promises';
import { extname, join, normalize } from 'node:path';
import { env } from 'node:process';
import { fileURLToPath } from 'node:url';

export const root = fileURLToPath(new URL('../..', import.meta.url));
export const wasmBuild = join(root, env.KALIM_WASM_BUILD ?? 'build/wasm');
// The native player.
export const command = join(root, env.KALIM_COMMAND ?? 'build/ci/cli/kalimkit');
// Results and what the browsers leave, emptied by tests/browser/run.
export const build = join(root, 'build/browser');
export const fonts = join(root, 'tests/browser/fonts.conf');

const places = [
  ['/results/', join(build, 'results')],
  ['/app/', join(build, 'app')],
  ['/fonts/', '/usr/share/fonts'],
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
  '.svg': 'image/svg+xml',
  '.webmanifest': 'application/manifest+json',
  '.png': 'image/png',
  '.jpg': 'image/jpeg',
  '.webp': 'image/webp',
};
// Runs before anything of the page.
const watch = '<script src="/tests/watch.js"></script>';

// What a page wants to have said, even if it is killed then, is below this.
const saying = '/said/';

async function answer(request, response, said) {
  const path = normalize(decodeURIComponent(new URL(request.url, 'http://here').pathname));
  if (path.startsWith(saying)) {
    said(path.slice(saying.length));
    response.writeHead(204).end();
    return;
  }
  const [prefix, folder] = places.find(([start]) => path.startsWith(start));
  const file = join(folder, path.slice(prefix.length) || 'index.html');
  try {
    const body = await readFile(file);
    const type = types[extname(file)] ?? 'application/octet-stream';
    response.writeHead(200, { 'Content-Type': type });
    response.end(type === types['.html'] ? String(body).replace('<title>', `${watch}<title>`) : body);
  } catch {
    response.writeHead(404).end();
  }
}

// Of this machine alone, at every address that it has for itself, so that a page can meet another origin.
// Ends with close(). said(text) hears what pages fetch from /said/.
export async function serve(said = () => {}) {
  const server = createServer((request, response) => answer(request, response, said));
  server.on('connection', (socket) => {
    if (!socket.localAddress.startsWith('127.')) socket.destroy();
  });
  server.listen(0, '0.0.0.0');
  await once(server, 'listening');
  return {
    url: `http://127.0.0.1:${server.address().port}`,
    close() {
      server.close();
      // Browsers keep connections open.
      server.closeAllConnections();
    },
  };
}
