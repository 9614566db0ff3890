// <kalim-editor>: the editor as an element of a page. index.d.ts says what a page may do with it.

import { KalimEditor } from '../../kalimkit/host/browser/kalim.js';
import { penOf, rgbOf, widthOf } from './choices.js';
import { sheetOf } from './look.js';
import { Mirror } from './mirror.js';

// What takes an attribute's value to the editor; throws for a value that is none.
const choices = {
  tool: (editor, value) => editor.choosePen(penOf(value)),
  color: (editor, value) => editor.chooseColor(rgbOf(value)),
  'line-width': (editor, value) => editor.chooseLineWidth(widthOf(value)),
};
// Properties that are their attributes' texts.
const texts = { src: 'src', tool: 'tool', color: 'color', wasmUrl: 'wasm-url' };
const properties = [...Object.keys(texts), 'lineWidth', 'type', 'quality', 'screenSize', 'grow', 'strings'];

function reflect(element, attribute, value) {
  if (value === null || value === undefined) element.removeAttribute(attribute);
  else element.setAttribute(attribute, value);
}

// Of the nearest element around this one that says its language; of the user otherwise.
function languageAround(element) {
  for (let inner = element; inner; inner = inner.getRootNode().host) {
    const said = inner.closest('[lang]');
    if (said?.lang) return said.lang;
  }
  return navigator.language;
}

async function fetchPicture(url, signal) {
  const response = await fetch(url, { signal });
  if (!response.ok) throw new Error(`${response.url}: ${response.status} ${response.statusText}`);
  // Named for whoever cannot read it.
  return new File([await response.blob()], response.url);
}

// A server has no elements, and defines none.
export class KalimEditorElement extends (globalThis.HTMLElement ?? class {}) {
  static observedAttributes = ['src', 'type', 'quality', ...Object.keys(choices)];

  #stage;
  #idle;
  #strings = {};
  // What is open, or is to be as soon as the element is in a document; null for nothing.
  #picture = null;
  // Of the opening under way, or of the last one. Aborted once its picture is not wanted any more.
  #opening = null;
  // { canvas, editor, mirror, ready }: the editor and its mirror are null until the promise is kept.
  #session = null;
  // The task that ends the session of an element that has left its document.
  #leaving = 0;

  constructor() {
    super();
    const shadow = this.attachShadow({ mode: 'open', delegatesFocus: true });
    this.#stage = document.createElement('div');
    this.#stage.id = 'stage';
    this.#idle = document.createElement('slot');
    shadow.append(this.#idle, this.#stage);
  }

  // ---- pictures

  async open(picture) {
    if (picture === null || picture === undefined) throw new TypeError('There is no picture to open');
    const before = this.#picture;
    this.#picture = picture;
    if (!this.isConnected) {
      this.#end();
      return false;
    }
    try {
      return await this.#show(picture);
    } catch (error) {
      // What was open still is.
      if (this.#picture === picture) this.#picture = this.isOpen ? before : null;
      throw error;
    }
  }

  async offer(picture) {
    if (!this.isOpen) return this.open(picture);
    await this.#editor.offer(this.#sourceOf(picture));
    return true;
  }

  close() {
    this.#picture = null;
    this.#end();
  }

  get isOpen() {
    return this.#editor?.isOpen ?? false;
  }

  async exportImage({ type = this.type, quality = this.quality, screenSize = this.screenSize } = {}) {
    if (!this.isOpen) return null;
    const scale = screenSize ? 'screen' : 'picture';
    return this.#editor.exportImage({ scale, type, quality });
  }

  pickPicture() {
    if (this.isOpen) this.#editor.clickPickImage();
  }

  // ---- drawing

  undo() {
    return this.isOpen && this.#editor.undo();
  }

  redo() {
    return this.isOpen && this.#editor.redo();
  }

  get canUndo() {
    return this.isOpen && this.#editor.canUndo;
  }

  get canRedo() {
    return this.isOpen && this.#editor.canRedo;
  }

  get toolCount() {
    return this.isOpen ? this.#editor.toolCount : 0;
  }

  setTool(name) {
    penOf(name);
    this.tool = name;
  }

  setColor(color) {
    rgbOf(color);
    this.color = color;
  }

  setLineWidth(points) {
    widthOf(points);
    this.lineWidth = points;
  }

  // ---- attributes as properties

  get lineWidth() {
    return this.hasAttribute('line-width') ? Number(this.getAttribute('line-width')) : null;
  }

  set lineWidth(points) {
    reflect(this, 'line-width', points);
  }

  get type() {
    return this.getAttribute('type') ?? 'image/png';
  }

  set type(type) {
    reflect(this, 'type', type);
  }

  get quality() {
    const quality = Number.parseFloat(this.getAttribute('quality'));
    return quality >= 0 && quality <= 1 ? quality : 0.92;
  }

  set quality(quality) {
    reflect(this, 'quality', quality);
  }

  get screenSize() {
    return this.hasAttribute('screen-size');
  }

  set screenSize(isScreenSize) {
    this.toggleAttribute('screen-size', Boolean(isScreenSize));
  }

  get grow() {
    return this.hasAttribute('grow');
  }

  set grow(isGrowing) {
    this.toggleAttribute('grow', Boolean(isGrowing));
  }

  // Texts by the Chinese ones, for the next picture.
  get strings() {
    return this.#strings;
  }

  set strings(strings) {
    this.#strings = strings ?? {};
  }

  // ---- life in a document

  connectedCallback() {
    clearTimeout(this.#leaving);
    this.shadowRoot.adoptedStyleSheets = [sheetOf(this.ownerDocument)];
    for (const name of properties) this.#upgrade(name);
    if (this.#picture !== null && !this.#opening) this.#openUnasked(this.#picture);
  }

  // Who moves it takes it out and puts it in again, within the same task.
  disconnectedCallback() {
    this.#editor?.cancelTouches();
    clearTimeout(this.#leaving);
    this.#leaving = setTimeout(() => this.#end());
  }

  // Nothing that was made in one document is of use in another. Of the end of a frame's document its
  // elements hear nothing.
  adoptedCallback() {
    this.#end();
    this.ownerDocument.defaultView?.addEventListener('pagehide', () => this.#end(), { once: true });
  }

  attributeChangedCallback(name, before, value) {
    if (name === 'src') {
      if (value === null) this.close();
      else this.#openUnasked(value);
    } else if (name in choices) {
      if (value !== null) this.#choose(name, value);
    } else {
      this.#editor?.setSending(this.type, this.quality);
    }
  }

  // What was set before the element was known as one.
  #upgrade(name) {
    if (!Object.hasOwn(this, name)) return;
    const value = this[name];
    delete this[name];
    this[name] = value;
  }

  // ---- the editor

  // Nobody waits for the answer, so a failure is told by an event.
  #openUnasked(picture) {
    this.open(picture).catch((error) => this.#failed(error));
  }

  #choose(name, value) {
    try {
      if (this.#editor) choices[name](this.#editor, value);
    } catch (error) {
      this.#failed(error);
    }
  }

  async #show(picture) {
    this.#opening?.abort();
    const opening = new AbortController();
    const { signal } = opening;
    this.#opening = opening;
    try {
      const session = this.#begin();
      const [source] = await Promise.all([this.#sourceOf(picture, signal), session.ready]);
      if (signal.aborted || !(await session.editor.open(source, this.#settings())) || signal.aborted) return false;
      // The user may have taken another one meanwhile.
      this.#picture = picture;
      session.canvas.classList.add('open');
      this.#idle.hidden = true;
      return true;
    } catch (error) {
      if (signal.aborted) return false;
      if (!this.isOpen) this.#end();
      throw error;
    }
  }

  // Of the next picture.
  #settings() {
    return {
      language: languageAround(this),
      strings: this.strings,
      type: this.type,
      quality: this.quality,
      exportsAtPictureScale: !this.screenSize,
      grow: this.grow,
    };
  }

  // What an editor takes.
  async #sourceOf(picture, signal) {
    const isAddress = typeof picture === 'string' || picture instanceof URL;
    return isAddress ? fetchPicture(new URL(picture, this.baseURI), signal) : picture;
  }

  get #editor() {
    return this.#session?.editor;
  }

  #begin() {
    if (!this.#session) {
      const session = { canvas: document.createElement('canvas'), editor: null, mirror: null };
      this.#stage.append(session.canvas);
      this.#session = session;
      session.ready = this.#make(session);
    }
    return this.#session;
  }

  async #make(session) {
    // By then a script has set all the attributes.
    await null;
    const wasm = this.getAttribute('wasm-url');
    const editor = await KalimEditor.create(session.canvas,
      wasm === null ? {} : { wasm: new URL(wasm, this.baseURI) });
    if (session !== this.#session) {
      editor.destroy();
      throw new DOMException('The element has left its document', 'AbortError');
    }
    session.editor = editor;
    session.mirror = new Mirror(this.#stage, session.canvas, editor);
    this.#listen(editor);
    for (const name of Object.keys(choices)) {
      if (this.hasAttribute(name)) this.#choose(name, this.getAttribute(name));
    }
  }

  #listen(editor) {
    const on = (type, work) => editor.addEventListener(type, (event) => {
      if (editor === this.#editor) work(event);
    });
    on('confirm', ({ detail }) => {
      if (detail.blob) this.#leaveAfter('kalim-finish', detail);
      else this.#failed(new Error('The picture could not be made'));
    });
    on('close', () => this.#leaveAfter('kalim-close', null));
    on('change', () => {
      const { canUndo, canRedo, toolCount: count } = this;
      this.#tell('kalim-change', { canUndo, canRedo, count });
    });
    on('picture', ({ detail }) => {
      this.#picture = detail.picture;
    });
    on('error', ({ detail }) => {
      this.#failed(detail.error);
      // One that has stopped is of no more use.
      if (editor === this.#editor && !this.isOpen) this.close();
    });
  }

  // Unless a listener wants it to stay, or has opened another picture.
  #leaveAfter(type, detail) {
    const opening = this.#opening;
    if (this.#tell(type, detail, true) && opening === this.#opening) this.close();
  }

  #failed(error) {
    this.#tell('kalim-error', { error });
  }

  #tell(type, detail, cancelable = false) {
    return this.dispatchEvent(
      new CustomEvent(type, { detail, cancelable, bubbles: true, composed: true }));
  }

  // Gives everything back; the picture is kept for the next time in a document.
  #end() {
    this.#opening?.abort();
    this.#opening = null;
    this.#session?.mirror?.stop();
    this.#editor?.destroy();
    this.#session = null;
    this.#stage.replaceChildren();
    this.#idle.hidden = false;
  }
}

for (const [property, attribute] of Object.entries(texts)) {
  Object.defineProperty(KalimEditorElement.prototype, property, {
    configurable: true,
    enumerable: true,
    get() {
      return this.getAttribute(attribute);
    },
    set(value) {
      reflect(this, attribute, value);
    },
  });
}
