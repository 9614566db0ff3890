// The editor on a <canvas> element of a page: see KalimEditor.

import { Appearance } from './appearance.js';
import { Choices, Pen, colorText, needsKit, packedColor, waitsForRest } from './choices.js';
import { cursors } from './cursors.js';
import { readDescription } from './description.js';
import { Documents, pictureFile } from './documents.js';
import { Clipboard, environment, lastPen, watchMotion } from './environment.js';
import { Exchange } from './exchange.js';
import { takeFont } from './fonts.js';
import { HeldKeys } from './held.js';
import { watchKeys } from './keys.js';
import { addTexts, textsFor } from './languages.js';
import { Module } from './module.js';
import { News, closedState, readState } from './news.js';
import { Pointers } from './pointers.js';
import { Saver } from './saving/saver.js';
import { Schedule } from './schedule.js';
import { Screen } from './screen.js';
import { Typing } from './typing.js';

export { Pen };

const defaults = {
  strings: {},
  type: 'auto',
  quality: null,
  metadata: 'safe',
  exportsAtPictureScale: true,
  grow: false,
  wheel: 'always',
  inside: 'ask',
  layout: 'auto',
  theme: 'light dark',
  readonly: false,
};
// Options that are left out, or null, change nothing.
const said = (options) => Object.fromEntries(
  Object.entries(options).filter(([, value]) => value !== null && value !== undefined));
// Numbers of SeatLayout.
const layouts = { phone: 0, desk: 1, auto: 2, none: 3 };
// The host of a canvas in a shadow tree goes with it.
async function toggleFullScreen(element) {
  try {
    if (document.fullscreenElement) await document.exitFullscreen();
    else await (element.getRootNode().host ?? element).requestFullscreen();
  } catch {
    // Browsers may refuse.
  }
}

const exportScales = { screen: 0, picture: 1, view: 2 };

// Tells its listeners
//   confirm  the user sent the picture: detail.blob is it with all that was drawn, null for nothing
//   close    the user closed the editor; nothing is to be kept
//   open     a picture is shown: detail.picture, as it was given, detail.width and detail.height
//   change   a step has come to its end, was undone or sent: canUndo, canRedo, toolCount, isUnsent
//   tool     what is drawn with is another one: detail.tool, detail.color, detail.lineWidth
//   select   the selection is another one: detail.count
//   delete   so many things are to be deleted, detail.count; preventDefault() keeps them. The editor may be asked
//            meanwhile, and does nothing
//   busy     a picture comes in or goes out, or no more: isBusy; fingers and keys wait meanwhile
//   picture  the user has taken another picture, offered, pasted or picked: detail.picture
//   warning  detail.error: the picture is sent, but not as its file was, see Saver
//   error    detail.error: the picture to be sent could not be made, or the editor has stopped, and
//            every call but destroy() throws from now on
// The editor stays until the page calls dismiss() or destroy().
export class KalimEditor extends EventTarget {
  #element;
  #options;
  #module;
  #screen;
  #pointers;
  #typing;
  #schedule;
  #exchange;
  #documents;
  #saver;
  #isDestroyed = false;
  #choices = new Choices();
  #news;
  #held = 0;
  // While the rest of the module comes for the first of them: [key, isRepeated].
  #keys = [];
  // What has been chosen last; it may wait for the kit.
  #wantedPen = null;
  #announced;
  #left;
  #isLeaving = false;
  #worked = null;
  #works = null;
  #appearance;
  #isFetching = false;
  #hasWarned = false;
  // The page is asked something in the middle of the module's work.
  #isAsking = false;
  #clipboard = new Clipboard();
  #room = null;
  #listening = new AbortController();
  // Of what the user prefers, while the canvas is in its document.
  #preferring;

  // Adds a language for all editors from their next pictures on, or texts to one there is: by the Chinese ones, each a
  // text or its forms by the categories of plurals. Throws for what is none.
  static addTexts(language, texts) {
    addTexts(language, texts);
  }

  // element: a <canvas> that the page has given a size by its style; it may change. Options:
  //   wasm      where the module is, or the module itself; beside this script by default
  //   language  of the texts, such as 'en-GB'; the browser's by default. English where there are no texts in it, see
  //             addTexts()
  //   strings   other texts, by the Chinese ones
  //   desk      the same of the module for the desk and the kit, which is fetched when one of them is used
  //   codec     the same of the module for saving, which is fetched when a picture that came as a file is saved
  //   type      of the picture that is sent: 'auto', that of its own file or PNG, or a media type
  //   quality   of it, from 0 to 1; that of its file by default, as far as it has the same type
  //   metadata  what of its file's data go along: 'safe', 'keep' or 'none'
  //   exportsAtPictureScale   false for a picture that is as large as it is on the screen
  //   grow      true where what is drawn beyond the picture's edge enlarges the result, instead of
  //             being cut there
  //   layout    'phone', 'desk', the bars of wide screens, or 'auto', whichever suits the size
  //   pens, colors, widths   what the bars show, in this order: names of pens, '#RRGGBB', thousandths of the
  //             picture's longer side
  //   ui        'none' for no bars at all
  //   theme     'light', 'dark' or 'light dark', of which the user's system takes one
  //   readonly  true where the picture is only looked at
  //   penOnly   whether fingers stop drawing once there is a pen; the user's own choice by default
  //   wheel     'ctrl' leaves a wheel without that key to the page
  //   inside    of a PNG with a document inside, 'reopen' goes on with what was drawn, 'flat' opens the picture
  //             alone; otherwise the user is asked
  //   corners   answers where in the page the content's corners are, [{ x, y }, ...] from the left upper one
  //             clockwise; for a canvas that is turned or seen in perspective
  static async create(element, options = {}) {
    const editor = new KalimEditor(element, options);
    const rest = options.desk ?? new URL('./kalimkit-desk.wasm', import.meta.url);
    await editor.#load(options.wasm ?? new URL('./kalimkit.wasm', import.meta.url), rest);
    return editor;
  }

  constructor(element, options) {
    super();
    this.#element = element;
    this.#exchange = new Exchange(element, {
      module: () => this.#module,
      call: (name, ...values) => this.#call(name, ...values),
      dispatch: (type, detail) => this.#dispatch(type, detail),
      hold: (isHeld) => this.#hold(isHeld),
      sending: () => this.#sending(),
      sent: (isDone) => {
        this.#news.sent(isDone);
        if (isDone) this.#works?.end();
      },
      needsRoom: () => this.#options.exportsAtPictureScale,
      inside: () => this.#options.inside,
      save: (...values) => this.#saver.save(...values),
    });
    this.#documents = new Documents({
      module: () => this.#module,
      call: (name, ...values) => this.#call(name, ...values),
      given: () => this.#exchange.given(this.#news.state.picture),
      step: () => this.#news.step,
      saved: (step) => this.#news.saved(step),
      encoded: (id, sending) => this.#exchange.encoded(id, { ...sending, metadata: this.#options.metadata }),
    });
    this.#news = new News({
      tell: (type, detail) => {
        this.#tell(type, detail);
        if (detail?.isOffered) this.#tell('picture', { picture: detail.picture });
      },
      givenAs: (id) => this.#exchange.givenAs(id),
    });
    this.#options = { ...defaults, language: navigator.language, ...said(options) };
    // They come while the module does.
    textsFor(this.#options.language);
    const codec = options.codec ?? new URL('./kalimkit-codec.wasm', import.meta.url);
    this.#saver = new Saver(codec, (error) => this.#dispatch('warning', { error }));
  }

  // Gives everything back; the editor is not used any more. A second time does nothing.
  destroy() {
    this.#isDestroyed = true;
    this.#stop();
    this.#module.destroy();
  }

  // For a canvas that leaves its document and may come back: all stays as it is, and nothing of the page refers
  // to the editor any more, which goes with the last reference of its owner's.
  suspend() {
    this.cancelTouches();
    this.#schedule.pause(true);
    this.#screen.stop();
    this.#pointers.leaveDocument();
    this.#appearance.stop();
    this.#preferring.abort();
  }

  // It has come back.
  resume() {
    if (!this.#module.isAlive) return;
    this.#screen.watch();
    this.#pointers.watchDocument();
    this.#appearance.watch();
    this.#watchMotion();
    this.#schedule.pause(false);
  }

  // ---- the picture

  // Opens a new editor of a picture: a file, or anything else that createImageBitmap takes, or a promise
  // of one; a document's file is opened with all that was drawn. Rejects when the browser cannot read it, or could not send it, and nothing is lost then. Answers whether the picture is shown:
  // not when another has been asked for meanwhile. Options, but for wasm, are those of create(), for this
  // picture and the next ones.
  async open(picture, options = {}) {
    const settings = { ...this.#options, ...said(options) };
    // Null is no texts.
    if (options.strings === null) settings.strings = {};
    const prepared = this.#prepared(picture, settings);
    return this.#exchange.take(prepared, settings.exportsAtPictureScale, settings.inside, (id, document) => {
      this.#takeOptions(settings);
      const { exportsAtPictureScale, grow } = this.#options;
      const values = [id, exportsAtPictureScale, grow, this.#speak()];
      if (document) this.#call('open_document', document, ...values);
      else this.#call('open', ...values);
    });
  }

  // The picture, once there is what its editor begins with: its texts, and a desk is not to come after a phone's bars.
  async #prepared(picture, settings) {
    const needsRest = !this.#module.isWhole && (needsKit(Pen[lastPen()]) || this.#module.call('wants_rest'));
    const [given] = await Promise.all([picture, this.#loadTexts(settings), needsRest && this.#complete()]);
    return given;
  }

  async #loadTexts(settings) {
    settings.texts = await textsFor(settings.language, (error) => this.#dispatch('warning', { error }));
  }

  // Takes the texts that were loaded with the options, and tells the module in what language they are.
  #speak() {
    return this.#module.put(this.#options.texts.language);
  }

  #text(key, count) {
    const { strings, texts } = this.#options;
    // What is put in had no name once.
    const own = [key, key.replace(/\{\w+\}/g, '{}')].find((name) => Object.hasOwn(strings, name));
    return own === undefined ? texts?.find(key, count) : String(strings[own]);
  }

  // Keeps what is drawn from the next picture on; null for nothing. See Works.
  setWorks(works) {
    this.#works = works;
  }

  // Opens a work of before, as Works.read() answers with it, and goes on with it. Options as those of open().
  // Answers with what is wrong with its steps, null for nothing: what is right up to there is open. Undefined
  // when something else has been asked for meanwhile.
  async goOn(work, options = {}) {
    const settings = { ...this.#options, ...said(options) };
    let problem;
    await this.#module.completeForDrawings();
    await this.#prepared(null, settings);
    await this.#exchange.takeBack(work, settings.exportsAtPictureScale, (id) => {
      this.#takeOptions(settings);
      const { exportsAtPictureScale, grow } = this.#options;
      for (const text of [work.setUp, ...work.steps]) this.#module.call('tell_work', this.#module.put(text));
      const isWhole = this.#call('go_on', id, exportsAtPictureScale, grow, this.#speak());
      problem = isWhole ? null : this.#module.takeText();
    });
    if (problem === null) this.#works?.goOn(work);
    return problem;
  }

  // Shows it in the editor that is open, which asks the user first when something was drawn, and
  // says when the browser cannot read it. A promise of a picture will do. Answers whether the user has
  // taken it, once that is known; another one that is offered meanwhile takes its place.
  async offer(picture) {
    try {
      return await this.#exchange.offer(picture);
    } catch (error) {
      if (!this.#module.isAlive) throw error;
      this.#call('refuse', this.#module.put(error.message));
      return false;
    }
  }

  // Takes the editor away; the canvas is empty until the next open().
  dismiss() {
    this.#exchange.forget();
    this.#call('dismiss');
  }

  // Of the picture that is sent from now on, as create() takes them.
  setSending(type, quality = null, metadata = this.#options.metadata) {
    this.#options = { ...this.#options, type, quality, metadata };
  }

  // Takes 'ctrl' or 'always', as create() does.
  setWheel(wheel) {
    this.#options.wheel = wheel;
  }

  // These are as create() takes them; null is as without it.
  setLayout(layout) {
    this.#options.layout = layout ?? defaults.layout;
    this.#lay();
  }

  setUi(ui) {
    this.#options.ui = ui;
    this.#lay();
  }

  // Whether a pen that has been used leaves fingers nothing but zooming and moving; null leaves it to the user.
  setPenOnly(isPenOnly) {
    if (isPenOnly !== null) this.#call('set_pen_only', Number(isPenOnly));
  }

  setReadonly(isReadonly) {
    this.cancelTouches();
    this.#options.readonly = isReadonly;
    this.#lay();
  }

  // Those that need the kit are shown once it is there.
  async setPens(names) {
    this.#options.pens = names;
    const pens = names ?? [];
    const isReady = !pens.some((name) => needsKit(Pen[name])) || this.#module.isWhole || await this.#complete();
    if (names !== this.#options.pens || !this.#module.isAlive) return;
    const shown = isReady ? pens : pens.filter((name) => !needsKit(Pen[name]));
    this.#call('set_pens', this.#module.put(shown.join(' ')));
  }

  setColors(colors) {
    this.#options.colors = colors;
    this.#module.putNumbers((colors ?? []).map(packedColor));
    this.#call('set_colors', colors?.length ?? 0);
  }

  setWidths(widths) {
    this.#options.widths = widths;
    this.#module.putNumbers(widths ?? []);
    this.#call('set_widths', widths?.length ?? 0);
  }

  setTheme(theme) {
    this.#appearance.setTheme(theme);
  }

  // Room in the upper bar for what the page lays over it, so many points wide or less; 0 for none. `placed` hears where
  // that is, { x, y, width, height } in points with the colour of texts there, null for nowhere, when it is another.
  setHostRoom(width, placed) {
    this.#room = { placed, told: '' };
    this.#call('set_host_room', width);
  }

  // Sets texts in a font, before those of the system and after those that were added before: an address, a Blob or
  // bytes of a TrueType or OpenType file. Answers with the name of its family; rejects with what is wrong with which
  // font. Add fonts before the picture is opened: texts that are there already are laid out anew.
  async addFont(font) {
    const family = await takeFont(font, (bytes) => this.#module.drawing.addFont(bytes));
    this.#textsChanged();
    return family;
  }

  // Of fingers whose end nobody will hear of, as the canvas is moved in the page.
  cancelTouches() {
    this.#pointers.cancel();
  }

  get isOpen() {
    return this.#ask('is_open') !== 0;
  }

  // Has the user choose another picture by a file input; in answer to what the user did.
  clickPickImage() {
    this.#call('click_pick_image');
  }

  // Picture and drawings as a Blob, at the screen's pixels per point or, with scale 'picture', one
  // pixel for each of the picture; 'view' is what the canvas shows. Null when there is nothing; rejects
  // when the browser has no room for it.
  async exportImage({ scale = 'screen', type = 'image/png', quality = null, metadata = this.#options.metadata } = {}) {
    if (!Object.hasOwn(exportScales, scale)) throw new TypeError(`"${scale}" is no scale of an export`);
    const { drawing } = this.#module;
    drawing.takeRefused();
    const picture = this.#call('export_picture', exportScales[scale]);
    try {
      return await this.#exchange.encoded(picture, { type, quality, metadata });
    } finally {
      if (this.#module.isAlive) this.#module.call('end_export');
      drawing.dropLayers();
    }
  }

  exportImageAtPictureScale(options) {
    return this.exportImage({ ...options, scale: 'picture' });
  }

  // The picture's file and all that is drawn on it, as a document that can be opened again; null when nothing is
  // open. A sealed one may be given away: its picture holds nothing that a mosaic hides or a crop has cut off.
  getDocument({ sealed = false } = {}) {
    return this.#documents.save(sealed);
  }

  // Gives the user, as a download, the picture that would be sent now, and files it in an album as far
  // as a page has albums. False when there is nothing to save.
  saveToAlbum(name) {
    return this.#call('save_to_album', this.#module.put(name)) !== 0;
  }

  // ---- instead of the user; what is chosen while no editor has appeared waits for the next one

  // One that needs the kit once that is there.
  choosePen(pen) {
    this.#wantedPen = pen;
    if (!needsKit(pen) || this.#module.isWhole) return this.#choose('choose_pen', pen);
    this.#hold(true);
    this.#complete().then((isWhole) => {
      this.#hold(false);
      if (pen !== this.#wantedPen || !this.#module.isAlive) return;
      if (isWhole) this.#choose('choose_pen', pen);
      // Who has chosen it hears what is in hand still.
      else if (this.pen) this.#tell('tool', this.pen);
    });
  }

  chooseColor(color) {
    this.#choose('choose_color', packedColor(color));
  }

  // Widths are points.
  chooseLineWidth(width) {
    this.#choose('choose_line_width', width);
  }

  // What else people choose of a tool's look, of what is selected or else of the pen: { name, type, value }, numbers
  // with { least, most, step }, choices with { choices }.
  get properties() {
    this.#module.call('properties');
    return JSON.parse(this.#module.takeText());
  }

  // Throws where there is none of that name, or it does not take the value.
  setProperty(name, value) {
    const isNumber = typeof value !== 'string';
    const bytes = [name, isNumber ? '' : value].map((text) => this.#module.heap.encode(text));
    this.#module.putBytes(...bytes);
    const [nameLength, textLength] = bytes.map(({ length }) => length);
    if (this.#call('set_property', nameLength, textLength, isNumber, isNumber ? Number(value) : 0)) return;
    const names = this.properties.map((property) => property.name);
    if (names.includes(name)) throw new RangeError(`${name} does not take "${value}"`);
    throw new RangeError(`There is no property "${name}" now, only ${names.join(', ') || 'none'}`);
  }

  // What is selected; whether it is gone.
  deleteSelection() {
    return this.#call('delete_selected') !== 0;
  }

  // Of the close button, or of the one that sends.
  setTopNavigationItemTitle(isCloseButton, title) {
    this.#call('set_title', isCloseButton, this.#module.put(title));
  }

  // As the close button does: asks first when something was drawn.
  askToClose() {
    this.#call('ask_to_close');
  }

  // Both answer whether anything happened.
  undo() {
    return this.#call('undo') !== 0;
  }

  redo() {
    return this.#call('redo') !== 0;
  }

  get canUndo() {
    return this.#state.canUndo;
  }

  get canRedo() {
    return this.#state.canRedo;
  }

  // How many things are drawn.
  get toolCount() {
    return this.#state.toolCount;
  }

  // Whether a step has been finished since the picture or document was opened, sent or saved, unless all are
  // undone; or a text is being typed.
  get isUnsent() {
    return this.isOpen && this.#news.isUnsent;
  }

  // Whether a picture comes in or goes out.
  get isBusy() {
    return this.#held > 0;
  }

  // What is drawn with: { tool, color, lineWidth }; null until the editor has appeared.
  get pen() {
    return this.#state.tool;
  }

  // ---- for those who do not see the canvas

  // Calls the listener whenever something may have become different.
  watchScreen(listener) {
    this.#worked = listener;
  }

  // Calls the listener with what is to be said of what keys have just done.
  watchAnnouncements(listener) {
    this.#announced = listener;
  }

  // Calls the listener while a key leads the focus on to what is around the editor, which the browser then does.
  watchLeaving(listener) {
    this.#left = listener;
  }

  // As readDescription() says; null when all is as it was the last time.
  describeScreen() {
    const length = this.#ask('accessibility_update');
    if (!this.#module.isAlive || length < 0) return null;
    return readDescription(this.#module.heap.text(this.#ask('accessibility_text'), length));
  }

  // Does what a tap on the node with this number does; whether there was something to do.
  activate(id) {
    return !this.isBusy && this.#call('accessibility_activate', id) !== 0;
  }

  // ---- the module

  async #load(wasm, rest) {
    this.#screen = new Screen(this.#element, {
      resized: () => this.#resized(),
      keyboardMoved: () => this.#keyboardMoved(),
      restored: () => this.#restored(),
    });
    this.#typing = new Typing(this.#element, this.#listening.signal, {
      replace: (kept, lost, text) =>
        this.#call('replace_text', ...this.#range(kept, lost), this.#module.put(text)),
      insert: (text) => this.#call('insert_text', this.#module.put(text)),
      select: (kept, lost) => this.#module.call('select_text', ...this.#range(kept, lost)),
      compose: (text) => {
        const length = this.#module.put(text);
        this.#call('compose_text', length, length, length);
      },
      press: (key, isRepeated) => this.#press(key, isRepeated),
      copy: (key, data) => this.#clipboard.copyInto(data, () => this.#press(key, false)),
      hasKeyboard: () => this.#screen.hiddenHeight > 0,
    });
    const desk = { wasm: rest, arrived: () => this.#restArrived() };
    this.#module = await Module.load(wasm, desk, (made) => this.#imports(made), (error) => this.#failed(error));
    this.#schedule = new Schedule({
      advance: (time) => this.#call('advance', time),
      nextDue: () => this.#module.call('next_due'),
    });
    this.#module.drawing.onTexts = (error) => {
      if (error) this.#dispatch('warning', { error });
      else this.#textsChanged();
    };
    const { width, height, scale } = this.#screen.size;
    this.#call('create', width, height, scale);
    this.#call('safe_area', ...this.#screen.insets);
    this.setPenOnly(this.#options.penOnly ?? null);
    const held = new HeldKeys((...keys) => this.#call('hold_keys', ...keys));
    this.#pointers = new Pointers(this.#element, {
      fingers: (...told) => this.#touched(...told),
      pan: (phase, button, place, time) =>
        this.#at(time, 'pan', phase, button, ...this.#pointOf(place)) !== 0,
      zoom: (place, factor, distance, time) => this.#at(time, 'zoom', ...this.#pointOf(place), factor,
        distance?.x ?? 0, distance?.y ?? 0),
      scroll: (place, distance, time) =>
        this.#at(time, 'scroll', ...this.#pointOf(place), distance.x, distance.y),
      hover: (place, time) => this.#at(time, 'hover', ...this.#pointOf(place)),
      left: () => this.#call('hover_left'),
      menu: (place, time) => this.#at(time, 'press_menu', ...this.#pointOf(place)),
      held,
      isHeld: () => this.isBusy,
      leavesWheel: () => this.#options.wheel === 'ctrl',
      corners: this.#options.corners,
    });
    if (this.#module.isWhole) this.#call('rest_arrived');
    this.#lay();
    this.#furnish();
    this.#screen.watch();
    this.#watchLooks();
    this.#watchMotion();
    watchKeys(this.#element, this.#listening.signal, {
      held,
      press: (key, isRepeated) => this.#press(key, isRepeated),
      release: (key) => this.#module.call('release_key', this.#module.put(key)),
      paste: (file) => this.#options.readonly || this.offer(file),
      pasteText: (text) => this.#pasteText(text),
    });
  }

  #takeOptions(options) {
    const isOther = ['layout', 'ui', 'readonly'].some((name) => options[name] !== this.#options[name]);
    this.#options = options;
    if (isOther) this.#lay();
  }

  #lay() {
    const { layout, ui, readonly } = this.#options;
    this.#call('set_read_only', readonly);
    this.#call('set_layout', layouts[ui === 'none' || readonly ? 'none' : layout] ?? layouts.auto);
    if (this.#module.call('wants_rest')) this.#module.fetchRest();
  }

  // What the bars show, as far as it was said.
  #furnish() {
    const { pens, colors, widths } = this.#options;
    if (pens) this.setPens(pens);
    if (colors) this.setColors(colors);
    if (widths) this.setWidths(widths);
  }

  #watchLooks() {
    this.#appearance = new Appearance(this.#element, {
      names: () => this.#paletteNames(),
      appearance: (isDark, hasHighContrast) => this.#call('appearance', isDark, hasHighContrast),
      color: (name, packed) => this.#module.call('palette_color', this.#module.put(name), packed !== null, packed ?? 0),
      sizes: (bar, button) => this.#module.call('desk_sizes', bar, button),
      done: () => this.#call('palette_changed'),
      warn: (error) => this.#dispatch('warning', { error }),
    });
    this.#appearance.setTheme(this.#options.theme);
    this.#appearance.watch();
  }

  // Only the rest of the module has such colours.
  #paletteNames() {
    if (!this.#module.isWhole) return [];
    this.#module.call('palette_names');
    return this.#module.takeText().trim().split(' ');
  }

  #textsChanged() {
    if (this.#module.isAlive) this.#call('texts_changed');
  }

  #restArrived() {
    this.#appearance?.look();
    this.#call('rest_arrived');
  }

  #watchMotion() {
    this.#preferring = new AbortController();
    watchMotion(this.#preferring.signal, (isReduced) => this.#call('reduce_motion', isReduced));
  }

  #imports({ heap, drawing }) {
    return {
      ...environment(heap, (key, count) => this.#text(key, count), this.#clipboard, () => this.#module?.isWhole ?? false,
        (text) => this.#announced?.(text)),
      present: (surface, ...box) => this.#screen.present(drawing.sourceOf(surface), ...box),
      text_focused: (at, length, begin, end, isComposing, x, y, height) => {
        // Before it is typed.
        drawing.completeTexts().catch(() => {});
        this.#typing.focus({
          text: heap.text(at, length),
          begin: heap.text(at, begin).length,
          end: heap.text(at, end).length,
          isComposing: isComposing !== 0,
          x,
          y,
          height,
        });
      },
      text_left: () => this.#typing.leave(),
      leave_by_tab: () => {
        this.#isLeaving = true;
      },
      pick_image: () => this.#exchange.pick(),
      set_cursor: (cursor) => {
        this.#element.style.cursor = cursors[cursor];
      },
      may_delete: (count) => this.#mayDelete(count),
      toggle_full_screen: () => toggleFullScreen(this.#element),
      want_rest: () => queueMicrotask(() => this.#complete()),
      exported: (at, count) => {
        const begin = at >>> 3;
        this.#exchange.note([...heap.doubles.subarray(begin, begin + count)]);
      },
      on_confirm: (picture) => this.#exchange.confirm(picture, this.#options),
      on_close: () => this.#tell('close'),
      on_reopen: () => this.#reopen(),
      on_set_up: (at, length) => this.#works?.begin(this.#startOf(heap.text(at, length))),
      on_step: (at, length) => this.#works?.step(heap.text(at, length)),
      on_restart: () => this.#works?.restart(),
      copy_picture: (picture) => this.#exchange.copy(picture),
      save_picture: (picture) => this.#exchange.save(picture, this.#options),
    };
  }

  // Does nothing to what the module still draws with.
  #stop() {
    this.#listening.abort();
    this.#preferring?.abort();
    this.#screen.stop();
    this.#appearance?.stop();
    this.#pointers?.stop();
    this.#schedule.stop();
    this.#typing.leave();
    this.#exchange.stop();
    this.#saver.stop();
  }

  #failed(error) {
    this.#stop();
    this.#tell('error', { error });
  }

  // Listeners may take the editor away, which its own work does not expect.
  #tell(type, detail) {
    queueMicrotask(() => this.#dispatch(type, detail));
  }

  #dispatch(type, detail = null, cancelable = false) {
    return this.#isDestroyed || this.dispatchEvent(new CustomEvent(type, { detail, cancelable }));
  }

  // The module is in the middle of a call, so a listener may only look.
  #mayDelete(count) {
    this.#isAsking = true;
    try {
      return this.#dispatch('delete', { count }, true);
    } finally {
      this.#isAsking = false;
    }
  }

  #call(name, ...values) {
    if (this.#isAsking) throw new DOMException('The editor waits for an answer and does nothing else', 'InvalidStateError');
    const result = this.#module.call(name, ...values);
    if (!this.#module.isAlive) return result;
    this.#choices.make(this.#module);
    this.#news.look(this.#state);
    this.#lookAtPen();
    this.#exchange.look(this.#news.state);
    if (this.#room) this.#lookAtRoom();
    this.#schedule.plan();
    this.#worked?.();
    return result;
  }

  // One that needs the kit may have been taken by a key, or be that of the last time; fingers wait until it can draw.
  #lookAtPen() {
    const { tool } = this.#news.state;
    if (!tool || this.#module.isWhole || this.#isFetching || !needsKit(Pen[tool.tool])) return;
    this.#isFetching = true;
    this.#hold(true);
    this.#complete().then((isWhole) => {
      this.#isFetching = false;
      this.#hold(false);
      if (!isWhole && this.#module.isAlive) this.#choose('choose_pen', Pen.freehand);
    });
  }

  #lookAtRoom() {
    const at = this.#module.call('host_room') >>> 3;
    const numbers = this.#module.heap.doubles.slice(at, at + 5);
    if (this.#room.told === numbers.join()) return;
    this.#room.told = numbers.join();
    const [x, y, width, height, color] = numbers;
    this.#room.placed(width > 0 ? { x, y, width, height, color: colorText(color) } : null);
  }

  // Of a work; what is no file becomes one. Null for a picture that is on its way out.
  #startOf(setUp) {
    const { given, source } = this.#exchange.given(this.#news.state.picture);
    if (!given.picture) return null;
    const file = given.file ?? pictureFile(given, source).then(({ blob }) => blob);
    return { file, name: given.picture?.name ?? '', mediaType: given.mediaType, setUp };
  }

  // The module is in the middle of a call.
  #reopen() {
    queueMicrotask(() => {
      const picture = this.#exchange.takeAsked();
      if (!picture || !this.#module.isAlive) return;
      this.open(picture, { inside: 'reopen' }).catch((error) => this.#dispatch('error', { error }));
    });
  }

  // What changes nothing; 0 from a module that is no more.
  #ask(name) {
    return this.#module.isAlive ? this.#module.call(name) : 0;
  }

  // Has the desk and the kit fetched; whether they are there.
  async #complete() {
    try {
      await this.#module.complete();
      return true;
    } catch (error) {
      // Every size asks again.
      if (!this.#hasWarned) this.#dispatch('warning', { error });
      this.#hasWarned = true;
      return false;
    }
  }

  #choose(name, value) {
    this.#choices.set(name, value);
    this.#call('show');
  }

  get #state() {
    if (!this.#module.isAlive) return closedState;
    return readState(this.#module.heap.doubles, this.#module.call('state'));
  }

  // Counts what is under way.
  #hold(isHeld) {
    const wasBusy = this.isBusy;
    this.#held += isHeld ? 1 : -1;
    if (this.isBusy !== wasBusy) this.#tell('busy');
  }

  // The module is in the middle of a call.
  #sending() {
    this.#news.sending();
    queueMicrotask(() => {
      if (this.#module.isAlive) this.cancelTouches();
    });
  }

  // ---- touches

  #pointOf({ x, y }) {
    const { width, height } = this.#screen.size;
    return [x * width, y * height];
  }

  // Tells the module what happened at that moment, in milliseconds.
  #at(time, name, ...values) {
    this.#module.call('advance', this.#schedule.timeAt(time));
    return this.#call(name, ...values);
  }

  #touched(phase, fingers, predicted = []) {
    this.#module.putNumbers([...fingers, ...predicted].flatMap((finger) =>
      [this.#schedule.timeAt(finger.time), finger.id, ...this.#pointOf(finger), ...finger.contact]));
    this.#call('fingers', phase, fingers.length + predicted.length, predicted.length);
  }

  // ---- text and keys

  // Of a part of the text, in bytes: where it begins and ends.
  #range(kept, lost) {
    const begin = this.#module.heap.encode(kept).length;
    return [begin, begin + this.#module.heap.encode(lost).length];
  }

  // Shapes that an editor has copied; other texts are nobody's here.
  #pasteText(text) {
    if (!/^\s*\{\s*"format"\s*:\s*"kalimkit"/.test(text)) return false;
    this.#clipboard.take(text);
    return this.#press('ctrl+v', false);
  }

  // A key that waits is not the browser's either, or ctrl+s would save the page.
  #press(key, isRepeated) {
    if (this.#keys.length) return this.#keys.push([key, isRepeated]) > 0;
    if (this.isBusy) return key !== 'tab';
    const { isEditing, isAsking } = this.#state;
    if (!this.#module.isWhole && waitsForRest(key, this.#options.readonly) && !isEditing && !isAsking) {
      this.#keys.push([key, isRepeated]);
      this.#pressLater();
      return true;
    }
    this.#isLeaving = false;
    const isTaken = this.#call('press_key', this.#module.put(key), isRepeated) !== 0;
    if (this.#isLeaving) this.#left?.();
    return isTaken && !this.#isLeaving;
  }

  // What is pressed while the rest of the module comes is pressed in its order; where that cannot be had, all but
  // the key that needs it.
  async #pressLater() {
    this.#hold(true);
    const isWhole = await this.#complete();
    this.#hold(false);
    for (const [key, isRepeated] of this.#keys.splice(0).slice(isWhole ? 0 : 1)) {
      if (this.#module.isAlive) this.#press(key, isRepeated);
    }
  }

  // ---- size and keyboard

  #resized() {
    const { width, height, scale } = this.#screen.size;
    this.#module.drawing.dropLayers();
    this.#call('safe_area', ...this.#screen.insets);
    this.#call('resize', width, height, scale);
  }

  // The keyboard is what hides the canvas's lower part while a text is edited.
  #keyboardMoved() {
    const height = this.#typing.isActive ? this.#screen.hiddenHeight : null;
    if (height !== null) this.#call('keyboard', height);
  }

  // The browser had taken away what was drawn, or has other fonts now.
  #restored() {
    this.#module.drawing.forgetWidths();
    this.#call('redraw');
  }
}
