import type { KalimTool } from 'kalimkit';
import 'kalimkit/element';

const tool: KalimTool = 'arrow';
const editor = document.createElement('kalim-editor');

editor.tool = tool;
editor.addEventListener('kalim-finish', ({ detail: { blob } }) => console.log(blob.size));
// @ts-expect-error There is no such tool.
editor.tool = 'brush';
document.body.append(editor);
const pixels: ImageData = new ImageData(40, 30);
editor.open(pixels).then((isOpen) => {
  document.title = isOpen ? 'open' : 'not open';
});
