import { KalimEditor } from './kalimkit/host/browser/kalim.js';

const $ = (id) => document.getElementById(id);
const texts = {
  en: { open: 'Open', hint: 'Open a picture, or drop one here.' },
  zh: { open: '打开', hint: '打开一张图片，或将图片拖放到此处。' },
};
const language = /^zh\b/i.test(navigator.language) ? 'zh' : 'en';

let pictureName = 'picture';

document.documentElement.lang = language;
$('open').textContent = texts[language].open;
say(texts[language].hint);

const editor = await KalimEditor.create($('canvas'));
// For whoever looks at the page with the browser's tools.
window.kalimEditor = editor;
$('file').disabled = false;

function say(text) {
  $('hint').textContent = text;
}

async function open(file) {
  if (editor.isOpen) return editor.offer(file);
  try {
    await editor.open(file);
  } catch (error) {
    say(`${file.name}: ${error.message}`);
    return;
  }
  pictureName = file.name.replace(/\.[^.]*$/, '');
  $('start').hidden = true;
  $('canvas').focus();
}

editor.addEventListener('confirm', ({ detail: { blob } }) => {
  if (!blob) return;
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = `${pictureName}-annotated.png`;
  link.click();
  // Some browsers read it only after this has returned.
  setTimeout(() => URL.revokeObjectURL(link.href), 60000);
});
editor.addEventListener('close', () => {
  editor.dismiss();
  say(texts[language].hint);
  $('start').hidden = false;
});
$('file').addEventListener('change', () => {
  const [file] = $('file').files;
  $('file').value = '';
  if (file) open(file);
});
document.addEventListener('dragover', (event) => event.preventDefault());
document.addEventListener('drop', (event) => {
  event.preventDefault();
  const [file] = event.dataTransfer.files;
  if (file) open(file);
});
