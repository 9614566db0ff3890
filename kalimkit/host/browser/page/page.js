import { KalimCanvas, Tool } from './kalimkit/host/browser/kalim.js';

const $ = (id) => document.getElementById(id);
const tools = {
  Arrow: Tool.arrow,
  Line: Tool.line,
  Box: Tool.rectangle,
  Round: Tool.roundedRectangle,
  Oval: Tool.ellipse,
  Pen: Tool.freehand,
  Text: Tool.text,
  Mosaic: Tool.mosaic,
};
const colors = {
  red: '#FF3B30',
  orange: '#FF9500',
  yellow: '#FFCC00',
  green: '#34C759',
  blue: '#007AFF',
  white: '#FFFFFF',
};

let pictureName = 'picture';

const canvas = await KalimCanvas.create($('canvas'), {
  delegate: {
    canUndoStateChangedCanRedo(canUndo, canRedo) {
      $('undo').disabled = !canUndo;
      $('redo').disabled = !canRedo;
    },
    seletedToolsStateChanged(hasSelection) {
      $('delete').disabled = !hasSelection;
    },
    alert: (title, message) => say(title || message),
  },
});

// For whoever looks at the page with the browser's tools.
window.kalimCanvas = canvas;

function say(text) {
  $('hint').textContent = text;
  $('hint').hidden = !text;
}

// Buttons of which one is chosen; the first at the beginning.
function choice(group, entries, look, choose) {
  for (const [name, value] of Object.entries(entries)) {
    const button = document.createElement('button');
    button.type = 'button';
    button.setAttribute('role', 'radio');
    look(button, name, value);
    button.addEventListener('click', () => {
      for (const other of group.children) other.setAttribute('aria-checked', other === button);
      choose(value);
    });
    group.append(button);
  }
  group.firstElementChild.click();
}

async function open(file) {
  try {
    await canvas.open(file);
  } catch (error) {
    say(`${file.name}: ${error.message}`);
    return;
  }
  pictureName = file.name.replace(/\.[^.]*$/, '');
  $('export').disabled = false;
  say('');
}

async function save() {
  const blob = await canvas.exportImageAtPictureScale();
  if (!blob) return;
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = `${pictureName}-annotated.png`;
  link.click();
  // Some browsers read it only after this has returned.
  setTimeout(() => URL.revokeObjectURL(link.href), 60000);
}

choice($('tools'), tools, (button, name) => {
  button.textContent = name;
}, (type) => canvas.beginDrawingForType(type));
choice($('colors'), colors, (button, name, color) => {
  button.style.background = color;
  button.setAttribute('aria-label', name);
}, (color) => canvas.setDrawColor(color));
$('width').addEventListener('input', () => canvas.setDrawLineWidth(Number($('width').value)));
$('undo').addEventListener('click', () => canvas.undo());
$('redo').addEventListener('click', () => canvas.redo());
$('delete').addEventListener('click', () => canvas.deleteSelectedTools());
$('export').addEventListener('click', save);
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
