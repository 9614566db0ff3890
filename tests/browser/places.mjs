// Where the editor's buttons are, which a page cannot tell: the native player has them in the same places.

import { execFile } from 'node:child_process';
import { promisify } from 'node:util';

import { command } from './server.mjs';

const opening = [{ wait: 1 }, { tap: 'penView' }, { wait: 1 }];
const steps = [
  ...opening,
  { print: 'editor' },
  { tap: 'confirmButton' },
  { wait: 1 },
  ...['began', 'moved', 'ended'].map((touch, i) => ({ touch, points: [[100 + 50 * i, 200 + 50 * i]] })),
  { tap: 'toolView.closeButton' },
  { wait: 1 },
  { print: 'editor' },
];
const cropSteps = [...opening, { tap: 'penViews.5' }, { wait: 2 }, { print: 'editor' }];

// What the native player's prints hold of the views, in an editor of this size, points.
async function play(lines, { width, height }, ...options) {
  const run = promisify(execFile)(command,
    ['play', '-', '--editor', '--forgiving', '--canvas', `${width}x${height}`, ...options]);
  run.child.stdin.end(lines.map((step) => JSON.stringify(step)).join('\n'));
  return (await run).stdout.trim().split('\n').map((line) => JSON.parse(line).views);
}

const centersOf = (views) => Object.fromEntries(Object.entries(views).map(
  ([path, { frame: [x, y, w, h] }]) => [path, [x + w / 2, y + h / 2]]));

// The centre of each view by its path: of the panel when it is open, of the question before closing when
// that is asked.
export async function editorPlaces(size) {
  const [opened, asked] = await play(steps, size);
  return centersOf({ ...asked, ...opened });
}

// The same of the crop editor of a picture, and the frame that cuts it: [x, y, width, height].
export async function cropPlaces(size, file) {
  const [views] = await play(cropSteps, size, '--picture', file);
  return { places: centersOf(views), cut: views['editImageInitialView.cropGridView'].frame };
}
