// <kalim-editor>: the editor as an element of a page. index.d.ts says what a page may do with it.

import { KalimEditor } from '../../kalimkit/host/browser/kalim.js';
import { addTexts, textsFor } from '../../kalimkit/host/browser/languages.js';
import { Bar } from './bar.js';
import { colorsOf, layoutOf, penOf, penOnlyOf, pensOf, rgbOf, themeOf, uiOf, widthOf, widthsOf } from './choices.js';
import { fetchPicture, moduleError, titleOf } from './loading.js';
import { sheetOf } from './look.js';
import { Mirror } from './mirror.js';
import { Recovery } from './Recovery.js';
import { Sign } from './sign.js';

// What takes an attribute's value to the editor; throws for a value that is none.
const choices = {
  tool: (editor, value) => editor.choosePen(penOf(value)),
  color: (editor, value) => editor.chooseColor(rgbOf(value)),
  'line-width': (editor, value) => editor.chooseLineWidth(widthOf(value)),
};
// The same of what is around the picture; null is as without the attribute.
const surroundings = {
  layout: [layoutOf, (editor, value) => editor.setLayout(value)],
  pens: [pensOf, (editor, value) => editor.setPens(value)],
  colors: [colorsOf, (editor, value) => editor.setColors(value)],
  widths: [widthsOf, (editor, value) => editor.setWidths(value)],
  ui: [uiOf, (editor, value) => editor.setUi(value)],
  theme: [themeOf, (editor, value) => editor.setTheme(value)],
  'pen-only': [penOnlyOf, (editor, value) => editor.setPenOnly(value)],
};
// Properties that are their attributes' texts.
const texts = {
  src: 'src', wasmUrl: 'wasm-url', deskUrl: 'desk-url', codecUrl: 'codec-url', ui: 'ui', wheel: 'wheel', penOnly: 'pen-only', unsent: 'unsent', inside: 'inside', recovery: 'recovery',
};
const properties = [
  ...Object.keys(texts), 'tool', 'color', 'lineWidth', 'type', 'quality', 'metadata', 'screenSize', 'grow', 'strings',
  'readonly', 'layout', 'pens', 'colors', 'widths', 'theme', 'fonts',
];
const types = ['image/png', 'image/jpeg', 'image/webp'];
const metadataModes = ['safe', 'keep', 'none'];
// What kalim-change tells of an element without a picture.
const closed = { canUndo: false, canRedo: false, count: 0, dirty: false };

function reflect(element, attribute, value) {
  if (value === null || value === undefined) element.removeAttribute(attribute);
  else element.setAttribute(attribute, value);
}

// An attribute that is there, but for one that says no.
const isSet = (element, attribute) => (element.getAttribute(attribute) ?? 'false') !== 'false';

// Of the nearest element around this one that says its language; of the user otherwise.
function languageAround(element) {
  for (let inner = element; inner; inner = inner.getRootNode().host) {
    const said = inner.closest('[lang]');
    if (said?.lang) return said.lang;
  }
  return navigator.language;
}

// Empty boxes of no size: where they are seen, turned and in perspective as may be, are the corners.
function makeCorners() {
  return ['left top', 'right top', 'right bottom', 'left bottom'].map((sides) => {
    const corner = document.createElement('div');
    corner.className = `corner ${sides}`;
    return corner;
  });
}

// A server has no elements, and defines none.
export class KalimEditorElement extends (globalThis.HTMLElement ?? class {}) {
  static observedAttributes = ['src', 'type', 'quality', 'metadata', 'wheel', 'recovery', 'readonly', 'fonts', ...Object.keys(choices),
    ...Object.keys(surroundings)];

  #stage;
  #idle;
  #bar;
  #strings = {};
  #fonts = [];
  // What is open, or is to be as soon as the element is in a document; null for nothing.
  #picture = null;
  // Of the opening under way, or of the last one. Aborted once its picture is not wanted any more.
  #opening = null;
  // Of the loading of what is offered.
  #offering = null;
  #sign;
  // Attributes become what the user has chosen.
  #isFollowing = false;
  // What kalim-change has told last.
  #told = closed;
  // { canvas, editor, mirror, ready }: the editor and its mirror are null until the promise is kept.
  #session = null;
  // The task that lays an element aside that has left its document.
  #leaving = 0;
  // The session waits for the element to come back.
  #isAway = false;
  // What the attributes of the surroundings have said last that could be understood.
  #said = {};
  #recovery = new Recovery({
    tell: (detail) => this.#tell('kalim-recover', detail, true),
    goOn: (work) => this.#goOn(work),
    warn: (error) => this.#warn(error),
  });

  // Adds a language, or texts to one there is, for all elements from their next pictures on.
  static addTexts(language, texts) {
    addTexts(language, texts);
  }

  constructor() {
    super();
    const shadow = this.attachShadow({ mode: 'open', delegatesFocus: true });
    this.#stage = document.createElement('div');
    this.#stage.id = 'stage';
    this.#stage.part = 'stage';
    this.#idle = document.createElement('slot');
    shadow.append(this.#idle, this.#stage);
    this.#sign = new Sign(this.#stage);
    this.#bar = new Bar(this.#stage);
  }

  // ---- pictures

  async open(picture, { inside } = {}) {
    if (picture === null || picture === undefined) throw new TypeError('There is no picture to open');
    const before = this.#picture;
    this.#picture = picture;
    if (!this.isConnected) {
      this.#end();
      return false;
    }
    try {
      if (this.#recovery.isLooking) {
        this.#begin();
        // A work of before takes the place of what is asked for until then.
        if (await this.#recovery.isGoingOn() || this.#picture !== picture) return false;
      }
      const source = (signal) => this.#sourceOf(picture, signal);
      return await this.#show(picture, source, (editor, given) => editor.open(given, this.#settings(inside)));
    } catch (error) {
      // What was open still is.
      if (this.#picture === picture) this.#picture = this.isOpen ? before : null;
      throw error;
    }
  }

  async offer(picture) {
    await this.#recovery.isGoingOn();
    if (!this.isOpen) return this.open(picture);
    this.#offering?.abort();
    this.#offering = new AbortController();
    return this.#editor.offer(this.#sourceOf(picture, this.#offering.signal));
  }

  close() {
    this.#picture = null;
    this.#recovery.discard();
    this.#end();
  }

  get isOpen() {
    return this.#editor?.isOpen ?? false;
  }

  async exportImage({
    type = this.type, quality = this.#quality, metadata = this.metadata, screenSize = this.screenSize,
  } = {}) {
    if (!this.isOpen) return null;
    const scale = screenSize ? 'screen' : 'picture';
    return this.#editor.exportImage({ scale, type, quality, metadata });
  }

  async getDocument(options) {
    return this.isOpen ? this.#editor.getDocument(options) : null;
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

  get dirty() {
    return this.isOpen && this.#editor.isUnsent;
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

  setWidth(points) {
    this.setLineWidth(points);
  }

  // What else can be chosen for what is selected, or else for what is drawn with.
  get properties() {
    return this.isOpen ? this.#editor.properties : [];
  }

  setProperty(name, value) {
    if (!this.isOpen) throw new DOMException('No picture is open', 'InvalidStateError');
    this.#editor.setProperty(name, value);
  }

  deleteSelection() {
    return this.isOpen && this.#editor.deleteSelection();
  }

  // ---- attributes as properties

  // What was said here or chosen by the user; else what the editor draws with by itself.
  get tool() {
    return this.getAttribute('tool') ?? this.#pen?.tool ?? null;
  }

  set tool(name) {
    reflect(this, 'tool', name);
  }

  get color() {
    return this.getAttribute('color') ?? this.#pen?.color ?? null;
  }

  set color(color) {
    reflect(this, 'color', color);
  }

  get lineWidth() {
    if (this.hasAttribute('line-width')) return Number(this.getAttribute('line-width'));
    return this.#pen?.lineWidth ?? null;
  }

  set lineWidth(points) {
    reflect(this, 'line-width', points);
  }

  get type() {
    const type = this.getAttribute('type');
    return types.includes(type) ? type : 'auto';
  }

  set type(type) {
    reflect(this, 'type', type);
  }

  get quality() {
    return this.#quality ?? 0.92;
  }

  set quality(quality) {
    reflect(this, 'quality', quality);
  }

  get metadata() {
    const mode = this.getAttribute('metadata');
    return metadataModes.includes(mode) ? mode : 'safe';
  }

  set metadata(mode) {
    reflect(this, 'metadata', mode);
  }

  get screenSize() {
    return isSet(this, 'screen-size');
  }

  set screenSize(isScreenSize) {
    reflect(this, 'screen-size', isScreenSize ? '' : null);
  }

  get grow() {
    return isSet(this, 'grow');
  }

  set grow(isGrowing) {
    reflect(this, 'grow', isGrowing ? '' : null);
  }

  get readonly() {
    return isSet(this, 'readonly');
  }

  set readonly(isReadonly) {
    reflect(this, 'readonly', isReadonly ? '' : null);
  }

  get layout() {
    return this.#said.layout ?? 'auto';
  }

  set layout(layout) {
    reflect(this, 'layout', layout);
  }

  get theme() {
    return this.#said.theme ?? 'light dark';
  }

  set theme(theme) {
    reflect(this, 'theme', theme);
  }

  // Lists; null for the editor's own. A text with blanks does as well.
  get pens() {
    return this.#said.pens ?? null;
  }

  set pens(names) {
    this.#reflectList('pens', names);
  }

  get colors() {
    return this.#said.colors ?? null;
  }

  set colors(colors) {
    this.#reflectList('colors', colors);
  }

  get widths() {
    return this.#said.widths ?? null;
  }

  set widths(widths) {
    this.#reflectList('widths', widths);
  }

  // Texts are found by the Chinese ones, and hold from the next picture on.
  get fonts() {
    return [...this.#fonts];
  }

  set fonts(fonts) {
    this.#fonts = typeof fonts === 'string' ? fonts.split(/\s+/).filter(Boolean) : [...(fonts ?? [])];
    if (this.#editor) this.#addFonts(this.#session);
  }

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
    if (this.#isAway) return this.#comeBack();
    this.#recovery.start(() => this.recovery);
    if (this.#picture !== null && !this.#opening) this.#openUnasked(this.#picture);
  }

  // Who moves it takes it out and puts it in again, within the same task.
  disconnectedCallback() {
    this.#editor?.cancelTouches();
    clearTimeout(this.#leaving);
    this.#leaving = setTimeout(() => this.#goAway());
  }

  // Nothing that was made in one document is of use in another.
  adoptedCallback() {
    this.#end();
    this.#recovery.stop();
  }

  attributeChangedCallback(name, before, value) {
    if (name === 'src') {
      if (value === null) this.close();
      else this.#openUnasked(value);
    } else if (name in choices) {
      if (value !== null && !this.#isFollowing) this.#choose(name, value);
    } else if (name in surroundings) {
      this.#arrange(name, value);
    } else if (name === 'fonts') {
      this.fonts = value;
    } else if (name === 'readonly') {
      this.#editor?.setReadonly(this.readonly);
    } else if (name === 'recovery') {
      if (this.isConnected && !this.isOpen) this.#recovery.start(() => this.recovery);
    } else if (name === 'wheel') {
      this.#editor?.setWheel(value);
    } else {
      this.#editor?.setSending(this.type, this.#quality, this.metadata);
    }
  }

  // What is no value is told, and what was said before stays.
  #arrange(name, text) {
    const [read, apply] = surroundings[name];
    try {
      this.#said[name] = text === null ? null : read(text);
    } catch (error) {
      this.#warn(error, `keeps its ${name}`);
      return;
    }
    if (this.#editor) apply(this.#editor, this.#said[name]);
  }

  #reflectList(attribute, list) {
    reflect(this, attribute, Array.isArray(list) ? list.join(' ') : list);
  }

  // Null where it was not said.
  get #quality() {
    const quality = Number.parseFloat(this.getAttribute('quality'));
    return quality >= 0 && quality <= 1 ? quality : null;
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

  // Has the editor open what `load` brings; both answer as open() does.
  async #show(picture, load, open) {
    this.#opening?.abort();
    this.#offering?.abort();
    const opening = new AbortController();
    const { signal } = opening;
    this.#opening = opening;
    this.#showFailure(null);
    this.#showWorking(true);
    try {
      const session = this.#begin();
      // It is waited for only once the editor is there.
      const source = load(signal);
      source.catch(() => {});
      await session.ready;
      if (signal.aborted) return false;
      session.editor.setWorks(this.#recovery.works);
      if (!(await open(session.editor, source)) || signal.aborted) return false;
      // The user may have taken another one meanwhile.
      this.#picture = picture;
      return true;
    } catch (error) {
      if (signal.aborted) return false;
      if (!this.isOpen) this.#end();
      throw error;
    } finally {
      if (!signal.aborted) this.#showWorking(false);
    }
  }

  // The editor shows a picture, asked for or taken by the user.
  #shown({ picture, width, height, isOffered, mediaType }) {
    const { canvas } = this.#session;
    const { activeElement } = this.getRootNode();
    canvas.classList.add('open');
    // What the element contains goes, and the focus with it.
    const isIdle = activeElement !== this && this.contains(activeElement) && !activeElement.closest('[slot="bar"]');
    if (isIdle) canvas.focus({ preventScroll: true });
    this.#idle.hidden = true;
    this.#showFailure(null);
    if (isOffered) this.#picture = picture;
    else this.#chooseAll();
    const title = titleOf(picture);
    this.#tell('kalim-open', { ...title, type: mediaType || title.type, width, height });
  }

  // Goes on with a work of before.
  async #goOn(work) {
    let problem;
    const isShown = await this.#show(work.file, async () => work, async (editor) => {
      problem = await editor.goOn(work, this.#settings());
      return problem !== undefined;
    });
    if (problem) this.#recovery.works?.giveUp(new Error(problem));
    return isShown;
  }

  #showWorking(isWorking) {
    this.#stage.ariaBusy = String(isWorking);
    this.#sign.showWorking(isWorking, (text) => this.#say(text));
  }

  #showFailure(error) {
    this.#sign.showFailure(error, (text) => this.#say(text));
    this.shadowRoot.getElementById('failure').classList.toggle('beside', [...this.children].some(({ slot }) => slot !== 'bar'));
  }

  async #say(text) {
    return this.strings[text] ?? (await textsFor(languageAround(this))).say(text);
  }

  // These hold for the next picture.
  #settings(inside = this.inside) {
    return {
      inside: inside ?? 'ask',
      language: languageAround(this),
      strings: this.strings,
      type: this.type,
      quality: this.#quality,
      metadata: this.metadata,
      exportsAtPictureScale: !this.screenSize,
      grow: this.grow,
      wheel: this.wheel,
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

  get #pen() {
    return this.isOpen ? this.#editor.pen : null;
  }

  #begin() {
    if (!this.#session) {
      const canvas = document.createElement('canvas');
      canvas.part = 'canvas';
      const session = { canvas, corners: makeCorners(), editor: null, mirror: null, fonts: new Set(), watching: new AbortController() };
      this.#stage.append(canvas, ...session.corners);
      this.#session = session;
      this.#watchPage(session.watching.signal);
      session.ready = this.#make(session);
    }
    return this.#session;
  }

  // Of the end of a frame's document its elements hear nothing.
  #watchPage(signal) {
    const page = this.ownerDocument.defaultView;
    if (page !== globalThis) page.addEventListener('pagehide', () => this.#end(), { signal });
    page.addEventListener('beforeunload', (event) => {
      if (this.dirty && this.unsent !== 'lose') event.preventDefault();
    }, { signal });
  }

  async #make(session) {
    // By then a script has set all the attributes.
    await null;
    const corners = () => session.corners.map((corner) => corner.getBoundingClientRect());
    const options = { ...this.#said, corners, wheel: this.wheel, readonly: this.readonly,
      penOnly: this.#said['pen-only'] };
    for (const [option, address] of [['wasm', this.wasmUrl], ['desk', this.deskUrl], ['codec', this.codecUrl]]) {
      if (address !== null) options[option] = new URL(address, this.baseURI);
    }
    const editor = await KalimEditor.create(session.canvas, options).catch((error) => {
      throw moduleError(error);
    });
    if (session !== this.#session) {
      editor.destroy();
      throw new DOMException('The element has left its document', 'AbortError');
    }
    session.editor = editor;
    // What was said while the module was on its way.
    for (const [name, [, apply]] of Object.entries(surroundings)) {
      if (this.#said[name] !== options[name]) apply(editor, this.#said[name]);
    }
    if (this.readonly !== options.readonly) editor.setReadonly(this.readonly);
    session.mirror = new Mirror(this.#stage, session.canvas, editor);
    this.#bar.setEditor(editor);
    this.#listen(editor);
    await this.#addFonts(session);
  }

  // Those that the editor does not have yet, in their order. Texts go without one that cannot be had.
  async #addFonts(session) {
    for (const font of this.#fonts.filter((one) => !session.fonts.has(one))) {
      session.fonts.add(font);
      const given = typeof font === 'string' ? new URL(font, this.baseURI) : font;
      await session.editor.addFont(given).catch((error) => this.#warn(error, 'goes on without a font'));
    }
  }

  // Of a new picture, what was said or chosen for those before.
  #chooseAll() {
    for (const name of Object.keys(choices)) {
      if (this.hasAttribute(name)) this.#choose(name, this.getAttribute(name));
    }
  }

  // The attributes become what the user has chosen.
  #follow({ tool, color, lineWidth }) {
    this.#isFollowing = true;
    const isColor = this.getAttribute('color')?.toUpperCase() === color;
    const chosen = { tool, color: isColor ? this.color : color, 'line-width': String(lineWidth) };
    for (const [name, value] of Object.entries(chosen)) {
      if (this.getAttribute(name) !== value) this.setAttribute(name, value);
    }
    this.#isFollowing = false;
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
    on('open', ({ detail }) => this.#shown(detail));
    on('change', () => this.#tellChange());
    on('busy', () => this.#showWorking(editor.isBusy));
    on('select', ({ detail }) => {
      this.#tell('kalim-select', detail);
      this.#tell('kalim-selection', { ...detail, properties: editor.properties });
    });
    on('delete', (event) => {
      if (!this.#tell('kalim-delete', event.detail, true)) event.preventDefault();
    });
    on('tool', ({ detail }) => {
      this.#follow(detail);
      this.#tell('kalim-tool', detail);
    });
    on('warning', ({ detail }) => this.#warn(detail.error, 'goes on'));
    on('error', ({ detail }) => {
      this.#failed(detail.error);
      // One that has stopped is of no more use; what was drawn may be gone on with.
      if (editor !== this.#editor || this.isOpen) return;
      this.#recovery.leave();
      this.close();
    });
  }

  // Unless a listener wants it to stay, or has opened another picture.
  #leaveAfter(type, detail) {
    const opening = this.#opening;
    if (this.#tell(type, detail, true) && opening === this.#opening) this.close();
  }

  // The page's author finds it in the console, the user in the picture's place, unless a listener sees
  // to it.
  #failed(error) {
    const remedy = error.remedy ?? '';
    if (!this.#tell('kalim-error', { error, remedy }, true)) return;
    console.error(['<kalim-editor>', error, remedy].filter(Boolean).join(' '));
    if (!this.isOpen) this.#showFailure(error);
  }

  // What the user does not have to know: work goes on.
  #warn(error, what = 'goes on without recovery') {
    if (!this.#tell('kalim-warning', { error }, true)) return;
    console.warn(`<kalim-editor> ${what}: ${error.message}`);
  }

  #tellChange() {
    const { canUndo, canRedo, toolCount: count, dirty } = this;
    this.#told = { canUndo, canRedo, count, dirty };
    this.#tell('kalim-change', this.#told);
  }

  #tell(type, detail, cancelable = false) {
    return this.dispatchEvent(
      new CustomEvent(type, { detail, cancelable, bubbles: true, composed: true }));
  }

  // What is open stays as it is, but nothing of the page refers to it: it goes with the element.
  #goAway() {
    if (!this.isOpen) return this.#end();
    this.#isAway = true;
    this.#recovery.pause();
    this.#session.watching.abort();
    this.#editor.suspend();
  }

  #comeBack() {
    this.#isAway = false;
    this.#session.watching = new AbortController();
    this.#watchPage(this.#session.watching.signal);
    this.#editor.resume();
    this.#recovery.resume();
  }

  // Gives everything back; the picture is kept for the next time in a document.
  #end() {
    this.#isAway = false;
    if (this.isConnected) this.#recovery.leave();
    else this.#recovery.stop();
    this.#opening?.abort();
    this.#offering?.abort();
    this.#opening = null;
    this.#session?.watching.abort();
    this.#session?.mirror?.stop();
    this.#bar.setEditor(null);
    const wasOpen = this.isOpen;
    this.#editor?.destroy();
    this.#session = null;
    this.#stage.replaceChildren();
    this.#idle.hidden = false;
    this.#showWorking(false);
    this.#showFailure(null);
    const isOther = Object.keys(closed).some((name) => this.#told[name] !== closed[name]);
    if (wasOpen || isOther) this.#tellChange();
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
