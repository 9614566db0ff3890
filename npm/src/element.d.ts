export { KalimEditorElement } from './index.js';
