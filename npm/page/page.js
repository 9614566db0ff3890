// The page: a picture comes in by a file, a drop or the clipboard, and goes out marked up.

import { nameOf } from './kalimkit/host/browser/keys.js';
import { endings } from './kalimkit/host/browser/pictures.js';
import './npm/src/element.js';
import { keepForOffline } from './offline.js';
import { direction, language, say } from './texts.js';

const $ = (id) => document.getElementById(id);
const editor = $('editor');
const result = $('result');

const title = document.title;

let pictureName = 'picture';
let sent = null;

const isDocument = ({ name = '' }) => /\.kalim$/i.test(name);
const imageOf = (files) =>
  [...files].find((file) => file.type.startsWith('image/') || isDocument(file)) ?? files[0];
const fileOf = (blob) =>
  new File([blob], `${pictureName}-annotated.${endings[blob.type] ?? 'png'}`, { type: blob.type });

async function open(file) {
  if (!file || result.open) return;
  try {
    await editor.offer(file);
    editor.focus();
  } catch (error) {
    $('hint').textContent = error.message;
  }
}

// What the clipboard of a browser takes.
async function pngOf(blob) {
  if (blob.type === 'image/png') return blob;
  const bitmap = await createImageBitmap(blob);
  const canvas = new OffscreenCanvas(bitmap.width, bitmap.height);
  canvas.getContext('2d').drawImage(bitmap, 0, 0);
  bitmap.close();
  return canvas.convertToBlob();
}

function show(blob) {
  sent = blob;
  $('told').textContent = '';
  $('preview').src = URL.createObjectURL(blob);
  $('share').hidden = !navigator.canShare?.({ files: [fileOf(blob)] });
  result.showModal();
}

function giveFile(address, name) {
  const link = document.createElement('a');
  link.href = address;
  link.download = name;
  link.click();
}

// The document of what is open.
async function saveDocument() {
  const saved = await editor.getDocument().catch(({ message }) => alert(message));
  if (!saved) return;
  const address = URL.createObjectURL(saved);
  giveFile(address, `${pictureName}.kalim`);
  setTimeout(URL.revokeObjectURL, 60000, address);
}

async function tell(work, done) {
  try {
    await work();
    $('told').textContent = done;
  } catch (error) {
    // The user's own change of mind.
    if (error.name !== 'AbortError') $('told').textContent = say.refused;
  }
}

document.documentElement.lang = language;
document.documentElement.dir = direction;
for (const id of ['hint', 'open', 'ready', 'download', 'copy', 'share', 'document', 'keep', 'another']) {
  $(id).textContent = say[id];
}
$('file').disabled = false;
// For whoever looks at the page with the browser's tools.
window.kalimEditor = editor;

editor.addEventListener('kalim-finish', (event) => {
  // The user may want to go on.
  event.preventDefault();
  show(event.detail.blob);
});
editor.addEventListener('kalim-open', ({ detail: { name } }) => {
  pictureName = name.replace(/\.[^.]*$/, '') || 'picture';
  document.title = name ? `${name} – ${title}` : title;
});
editor.addEventListener('kalim-close', () => {
  $('hint').textContent = say.hint;
  document.title = title;
});
editor.addEventListener('kalim-error', (event) => {
  const { message } = event.detail.error;
  event.preventDefault();
  if (editor.isOpen) alert(message);
  else $('hint').textContent = message;
});

result.addEventListener('close', () => {
  // A download may have only begun.
  setTimeout(URL.revokeObjectURL, 60000, $('preview').src);
  $('preview').removeAttribute('src');
  sent = null;
  editor.focus();
});
$('download').addEventListener('click', () => giveFile($('preview').src, fileOf(sent).name));
$('copy').addEventListener('click', () => tell(
  () => navigator.clipboard.write([new ClipboardItem({ 'image/png': pngOf(sent) })]), say.copied));
$('share').addEventListener('click', () => tell(() => navigator.share({ files: [fileOf(sent)] }), ''));
$('document').addEventListener('click', saveDocument);
$('keep').addEventListener('click', () => result.close());
$('another').addEventListener('click', () => {
  result.close();
  $('file').click();
});

$('file').addEventListener('change', () => {
  const [file] = $('file').files;
  $('file').value = '';
  open(file);
});
// Before the editor, and in the place of what browsers do by themselves.
document.addEventListener('keydown', (event) => {
  const key = nameOf(event);
  if (key !== 'ctrl+shift+s' && key !== 'ctrl+o') return;
  event.preventDefault();
  event.stopPropagation();
  if (result.open || event.repeat) return;
  if (key === 'ctrl+o') $('file').click();
  else saveDocument();
}, { capture: true });
document.addEventListener('paste', (event) => {
  if (event.defaultPrevented || !event.clipboardData.files.length) return;
  event.preventDefault();
  open(imageOf(event.clipboardData.files));
});
document.addEventListener('dragover', (event) => {
  event.preventDefault();
  document.body.classList.add('over');
});
document.addEventListener('dragleave', () => document.body.classList.remove('over'));
document.addEventListener('drop', (event) => {
  event.preventDefault();
  document.body.classList.remove('over');
  open(imageOf(event.dataTransfer.files));
});
// Of a page that is installed: a file that the system opens with it.
window.launchQueue?.setConsumer(async ({ files }) => open(await files[0]?.getFile()));

keepForOffline(() => editor.isOpen);
