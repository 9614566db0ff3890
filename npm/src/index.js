// The editor for web pages: as an element, and as a class for a canvas of the page's own.

export { KalimEditor, Pen } from '../../kalimkit/host/browser/kalim.js';
export { KalimEditorElement } from './KalimEditorElement.js';
export { defineKalimEditor } from './define.js';
