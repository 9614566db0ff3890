// Puts together what lies in several places: gather.mjs BUILD MODULE... makes BUILD/npm, the package, and
// BUILD/page, the page. The scripts keep their places towards each other, as they name each other by them.

import { execFileSync } from 'node:child_process';
import { createHash } from 'node:crypto';
import { cpSync, existsSync, mkdirSync, readFileSync, readdirSync, renameSync, rmSync, writeFileSync } from 'node:fs';
import { basename, join, relative } from 'node:path';
import { argv, env } from 'node:process';
import { fileURLToPath } from 'node:url';

const root = fileURLToPath(new URL('..', import.meta.url));
const [build, ...modules] = argv.slice(2);
// Sides are pixels: of a browser's list, of its opening screen, of an iPhone's home screen.
const iconSizes = [192, 512, 180];

// Names and numbers of the pens, in the order in which people are told them.
function readPens() {
  const table = readFileSync(join(root, 'kalimkit/theme/Pens.cpp'), 'utf8');
  return [...table.matchAll(/\.number = (\d+),\s+\.name = "(\w+)"/g)].map(([, number, name]) => [name, number]);
}

// Numbers of the pens that the kit's kinds have, and the pens' keys.
function readKit() {
  const list = readFileSync(join(root, 'kalimkit/shapes/Kit.cpp'), 'utf8');
  const pens = readFileSync(join(root, 'kalimkit/theme/Pens.cpp'), 'utf8');
  const keyOf = (number) => new RegExp(`\\.number = ${number},[^}]*\\.key = '(.)'`).exec(pens)?.[1];
  const nameOf = (key) => (/[A-Z]/.test(key) ? `'shift+${key.toLowerCase()}'` : `'${key}'`);
  const numbers = [...list.matchAll(/\{(\d+), &\w+::Class\(\)\}/g)].map(([, number]) => number);
  return [numbers, numbers.map(keyOf).filter(Boolean).map(nameOf)];
}

// The keys of a canvas that tools/split-module has wait, which are all but those of a few commands and those that ask
// for it themselves, where there is something to do; and those of them that are for readers, see CanvasKey.
function readLateKeys() {
  const table = readFileSync(join(root, 'kalimkit/canvas/CanvasKeys.cpp'), 'utf8');
  const keys = [...table.matchAll(/^ {4}\{("[^"]+"), &(\w+)(.*)\},$/gm)];
  const isLate = (command) => !/^(undo|redo|deleteSelection|escape|enter|holdSpace|zoom\w*|turn|make|selectNext)$/.test(command);
  const late = keys.filter(([, , command]) => isLate(command));
  return [late, late.filter(([, , , rest]) => /, (true|false), true$/.test(rest))].map((rows) => rows.map(([, key]) => key));
}

// Where a script, its types and its description leave a place for the pens.
function fillInPens(target) {
  const pens = readPens();
  const [kitPens, kitKeys] = readKit();
  const [lateKeys, readersKeys] = readLateKeys();
  const names = pens.map(([name]) => `'${name}'`).join(' | ');
  const numbers = `{\n${pens.map(([name, number]) => `  ${name}: ${number},\n`).join('')}}`;
  const choices = 'kalimkit/host/browser/choices.js';
  const places = [[choices, "'PENS'", numbers], [choices, "'KIT PENS'", kitPens.join(', ')],
    [choices, "'LATE KEYS'", [...kitKeys, ...lateKeys].join(', ')], [choices, "'READERS KEYS'", readersKeys.join(', ')],
    ['npm/src/index.d.ts', "'PENS'", names], ['custom-elements.json', 'PENS', names]];
  for (const [name, place, text] of places.filter(([file]) => existsSync(join(target, file)))) {
    const before = readFileSync(join(target, name), 'utf8');
    if (!text || !before.includes(place)) throw new Error(`There is nothing for ${place} in ${name}`);
    writeFileSync(join(target, name), before.replace(place, text));
  }
}

function copyScripts(folder, target, isWanted = (name) => name.endsWith('.js')) {
  mkdirSync(join(target, folder), { recursive: true });
  for (const name of readdirSync(join(root, folder)).filter(isWanted)) {
    cpSync(join(root, folder, name), join(target, folder, name));
  }
}

// Of others, as tools/page-libraries fetches them.
function copyLibraries(target) {
  const fetched = join(root, 'build/page-libraries');
  if (!existsSync(fetched)) return;
  mkdirSync(target, { recursive: true });
  for (const name of readdirSync(fetched).filter((one) => /\.(js|LICENSE)$/.test(one))) {
    cpSync(join(fetched, name), join(target, name));
  }
}

// All that a page may say is in these, but for the names of keys.
function pageSources() {
  const isNative = /^kalimkit\/(host\/(sdl|files|headless)|codec|store)\//;
  return ['kalimkit', 'npm/src', 'npm/page'].flatMap((folder) => filesBelow(join(root, folder)))
    .filter((path) => /\.(cpp|h|js)$/.test(path) && !isNative.test(relative(root, path)))
    .map((path) => readFileSync(path, 'utf8')).join('\n');
}

// Without the blanks, and without what only windows say. In Chinese they are the keys.
function copyTexts(folder, target) {
  const textsOf = (name) => JSON.parse(readFileSync(join(root, folder, name), 'utf8'));
  const sources = pageSources();
  const isSaid = (key) => /^[\x20-\x7e]*$/.test(key) || [`"${key}"`, `'${key}'`].some((text) => sources.includes(text));
  const said = new Set(Object.keys(textsOf('zh.json')).filter(isSaid));
  mkdirSync(join(target, folder), { recursive: true });
  for (const name of readdirSync(join(root, folder)).filter((file) => file !== 'zh.json')) {
    const texts = Object.entries(textsOf(name)).filter(([key]) => said.has(key));
    writeFileSync(join(target, folder, name), JSON.stringify(Object.fromEntries(texts)));
  }
}

function copyLibrary(target) {
  copyScripts('kalimkit/backend/html', target);
  copyScripts('kalimkit/host/browser', target);
  copyScripts('kalimkit/host/browser/saving', target);
  copyLibraries(join(target, 'kalimkit/backend/html/libraries'));
  copyTexts('kalimkit/resources/texts', target);
  for (const module of modules.filter(existsSync)) cpSync(module, join(target, 'kalimkit/host/browser', basename(module)));
}

function gatherPackage(target) {
  copyLibrary(target);
  copyScripts('npm/src', target, (name) => /\.js$|\.d\.ts$/.test(name));
  for (const name of ['custom-elements.json', 'README.md']) cpSync(join(root, 'npm', name), join(target, name));
  cpSync(join(root, 'LICENSE'), join(target, 'LICENSE'));
  fillInPens(target);
  const description = readFileSync(join(root, 'npm/package.json.in'), 'utf8');
  writeFileSync(join(target, 'package.json'), description.replace('@PROJECT_VERSION@', env.VERSION));
}

function filesBelow(folder) {
  return readdirSync(folder, { withFileTypes: true }).flatMap((entry) => {
    const path = join(folder, entry.name);
    return entry.isDirectory() ? filesBelow(path) : [path];
  }).sort();
}

// Visitors load nothing that is only for readers.
function shorten(target, paths) {
  if (env.ESBUILD) {
    execFileSync(env.ESBUILD, [...paths, '--minify', '--allow-overwrite', `--outdir=${target}`, `--outbase=${target}`,
      '--log-level=warning']);
  } else {
    for (const path of paths) writeFileSync(path, readFileSync(path, 'utf8').replace(/^ *\/\/.*\n/gm, '').replace(/^ +/gm, ''));
  }
}

// With the names of all files but licences and what is kept only once it was needed, and a version that is another one as soon as any of them is.
function writeWorker(target) {
  const template = readFileSync(join(target, 'worker.js'), 'utf8');
  rmSync(join(target, 'worker.js'));
  const hash = createHash('sha256').update(template);
  const names = filesBelow(target).map((path) => {
    hash.update(readFileSync(path));
    return relative(target, path);
  }).filter((name) => !/-codec\.wasm$|\.LICENSE$/.test(name) && !name.startsWith('kalimkit/resources/texts/'));
  const list = names.map((name) => `  '${name}',\n`).join('');
  const text = template.replace("'VERSION'", `'${hash.digest('hex').slice(0, 16)}'`)
    .replace('[]', `[\n${list}]`);
  writeFileSync(join(target, 'worker.js'), text);
}

function gatherPage(target) {
  copyLibrary(target);
  copyScripts('npm/src', target);
  cpSync(join(root, 'npm/page'), target, { recursive: true });
  for (const size of iconSizes) {
    execFileSync(env.RSVG_CONVERT, ['-w', size, '-h', size, join(target, 'icon.svg'), '-o',
      join(target, `icon-${size}.png`)]);
  }
  fillInPens(target);
  const worker = join(target, 'worker.js');
  shorten(target, filesBelow(target).filter((path) => path.endsWith('.js') && path !== worker));
  writeWorker(target);
  shorten(target, [worker]);
}

// Beside its place first, so that what is served meanwhile is whole.
function replace(name, gather) {
  const target = join(build, name);
  const made = `${target}.new`;
  rmSync(made, { recursive: true, force: true });
  gather(made);
  rmSync(target, { recursive: true, force: true });
  renameSync(made, target);
}

replace('npm', gatherPackage);
replace('page', gatherPage);
