// Where the editor's buttons are, which a page cannot tell: the native player has them in the same places.

import { execFile } from 'node:child_process';
import { promisify } from 'node:util';

import { command } from './server.mjs';

const steps = [
  { wait: 1 },
  { tap: 'penView' },
  { wait: 1 },
  { print: 'editor' },
  { tap: 'confirmButton' },
  { wait: 1 },
  ...['began', 'moved', 'ended'].map((touch, i) => ({ touch, points: [[100 + 50 * i, 200 + 50 * i]] })),
  { tap: 'toolView.closeButton' },
  { wait: 1 },
  { print: 'editor' },
];

// The centre of each view by its path, in an editor of this size, points: of the panel when it is open,
// of the question before closing when that is asked.
export async function editorPlaces({ width, height }) {
  const run = promisify(execFile)(command, ['play', '-', '--editor', '--canvas', `${width}x${height}`]);
  run.child.stdin.end(steps.map((step) => JSON.stringify(step)).join('\n'));
  const [opened, asked] = (await run).stdout.trim().split('\n').map((line) => JSON.parse(line).views);
  const places = Object.entries({ ...asked, ...opened }).map(([path, { frame: [x, y, w, h] }]) =>
    [path, [x + w / 2, y + h / 2]]);
  return Object.fromEntries(places);
}
