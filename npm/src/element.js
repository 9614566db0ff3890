// Registers <kalim-editor>.

import { defineKalimEditor } from './define.js';

defineKalimEditor();

export { KalimEditorElement } from './KalimEditorElement.js';
