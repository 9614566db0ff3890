import { KalimEditorElement } from './KalimEditorElement.js';

// Makes the element known by a name; without effect on a server, and where the name is taken.
export function defineKalimEditor(name = 'kalim-editor') {
  const { customElements } = globalThis;
  if (!customElements || customElements.get(name)) return;
  // A class has one name at most.
  const isTaken = name !== 'kalim-editor';
  customElements.define(name, isTaken ? class extends KalimEditorElement {} : KalimEditorElement);
}
