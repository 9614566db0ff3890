/**
 * A picture's address, or a file, a blob or whatever else `createImageBitmap` takes. A document's file or
 * address opens with all that was drawn.
 */
export type KalimPicture = string | URL | ImageBitmapSource;

/** What a picture is drawn on with. */
export type KalimTool = 'PENS';

/**
 * `auto` is the type of the picture's own file, as far as that is one of these, and `image/png` otherwise. Some
 * browsers make `image/png` instead of `image/webp` of what did not come as a JPEG, PNG or WebP file.
 */
export type KalimImageType = 'auto' | 'image/png' | 'image/jpeg' | 'image/webp';

/**
 * What of the data in a JPEG, PNG or WebP file goes along with a picture that came from it: `safe` keeps orientation,
 * dates, camera, exposure, copyright and resolution; `keep` all but thumbnails; `none` nothing. Colours always do.
 */
export type KalimMetadata = 'safe' | 'keep' | 'none';

export interface KalimExportOptions {
  /** The element's type is the default. */
  type?: KalimImageType;
  /** Ranges from 0 to 1 and counts for JPEG and WebP; the element's is the default. */
  quality?: number;
  /** The element's is the default. */
  metadata?: KalimMetadata;
  /** Whether the picture is as large as on the screen instead of full size; the element's answer is the default. */
  screenSize?: boolean;
}

/** A TrueType or OpenType file: its address or what is in it. */
export type KalimFont = string | URL | Blob | ArrayBuffer | ArrayBufferView;

/** Of a PNG with a document inside: go on with what was drawn, or open the picture alone. */
export type KalimInside = 'reopen' | 'flat';

export interface KalimDocumentOptions {
  /** Burns the mosaics in and leaves nothing that a crop has cut off, so that it may be given away. */
  sealed?: boolean;
}

/** Something of a tool's look that can be chosen besides colour and width. */
export interface KalimProperty {
  name: string;
  type: 'number' | 'switch' | 'choice' | 'color' | 'text';
  /** A switch has true or false; a colour is written `#RRGGBBAA`, empty for none. Not there where the selected differ. */
  value?: number | boolean | string;
  /** Of numbers. */
  least?: number;
  most?: number;
  step?: number;
  /** Of choices: their names. */
  choices?: string[];
}

export type KalimLayout = 'auto' | 'phone' | 'desk';
export type KalimTheme = 'light dark' | 'dark light' | 'light' | 'dark';

export interface KalimHistory {
  canUndo: boolean;
  canRedo: boolean;
  /** How many things are drawn. */
  count: number;
  /** As the element's. */
  dirty: boolean;
}

export interface KalimPen {
  tool: KalimTool;
  /** Reads `#RRGGBB`. */
  color: string;
  /** Counts thousandths of the picture's longer side. */
  lineWidth: number;
}

export interface KalimEditorElementEventMap {
  /** The user sent the picture. The element shows nothing more unless a listener prevents it. */
  'kalim-finish': CustomEvent<{ blob: Blob }>;
  /** The user closed the editor. The element shows nothing more unless a listener prevents it. */
  'kalim-close': CustomEvent<null>;
  /** A picture is shown; a name or type that nobody has said is empty. */
  'kalim-open': CustomEvent<{ name: string; type: string; width: number; height: number }>;
  /** At the end of every step, after an undo, and when a picture was sent, opened or closed. */
  'kalim-change': CustomEvent<KalimHistory>;
  /** The user draws with something else. */
  'kalim-tool': CustomEvent<KalimPen>;
  /** How many things are selected now. */
  'kalim-select': CustomEvent<{ count: number }>;
  /** The same with what can be chosen for it, or for what is drawn next where nothing is selected. */
  'kalim-selection': CustomEvent<{ count: number; properties: KalimProperty[] }>;
  /**
   * People delete so many things that are selected, by whatever key or button; they stay if a listener prevents it. The
   * listener may ask the element for anything, and does nothing to it.
   */
  'kalim-delete': CustomEvent<{ count: number }>;
  /**
   * What went wrong without anybody waiting for it, as the loading of `src`, and what the page's author can do.
   * Both go to the console, and a picture's failure into its place, unless a listener prevents it.
   */
  'kalim-error': CustomEvent<{ error: Error; remedy: string }>;
  /**
   * With `recovery`: there is unfinished work, with so many steps. The element goes on with it, instead of what it
   * was to open, unless a listener prevents that; the work then waits until another one is begun under its key.
   */
  'kalim-recover': CustomEvent<{ name: string; began: Date; steps: number }>;
  /**
   * Work cannot be kept, and goes on without recovery, which is told once; or a picture was sent without its file's
   * data, encoded anew, because the module for saving could not be had. Told to the console unless a listener prevents
   * it.
   */
  'kalim-warning': CustomEvent<{ error: Error }>;
}

/**
 * `<kalim-editor>`. Its own content is shown while no picture is open, but for what has `slot="bar"`: that lies in the
 * editor's upper bar, where there is room, while one is. On a server the class can be
 * imported, but not made.
 */
export class KalimEditorElement extends HTMLElement {
  /**
   * Adds a language such as `pl`, or texts to one there is, for all elements from their next pictures on. Throws for a
   * text that is none, or does not put in what its key does.
   */
  static addTexts(language: string, texts: KalimTexts): void;

  /** The picture's address. Another one opens another picture, none closes the editor. */
  src: string | null;
  /** What the user draws with, from now on and in every picture; follows the user, who may choose another. */
  tool: KalimTool | null;
  /** The colour that the user draws with, written `#RRGGBB`; follows the user as `tool` does. */
  color: string | null;
  /** The width that the user draws with, in thousandths of the picture's longer side, from 1 to 100. */
  lineWidth: number | null;
  /** Of the picture that is sent; `auto` by default. */
  type: KalimImageType;
  /** Ranges from 0 to 1. Unless it is set a file of the same type keeps its own, and 0.92 counts for others. */
  quality: number;
  /** What of its file's data goes along with the picture that is sent; `safe` by default. */
  metadata: KalimMetadata;
  /** Whether what is sent is as large as on the screen; from the next picture on. */
  screenSize: boolean;
  /** Whether what is drawn beyond the picture's edge enlarges what is sent; from the next picture on. */
  grow: boolean;
  /**
   * Which bars there are: a phone's, those of wide screens, or by default whichever suit: the element is wider than 700
   * points and than it is high, or a mouse is over it and there is room enough. Nothing is lost when they change.
   */
  get layout(): KalimLayout;
  set layout(layout: KalimLayout | null);
  /** What the bars show, in this order; null for the editor's own. Lists, or texts with blanks between. */
  get pens(): (KalimTool | 'crop')[] | null;
  set pens(names: (KalimTool | 'crop')[] | string | null);
  /** Colours are written `#RRGGBB` or `#RGB`. */
  get colors(): string[] | null;
  set colors(colors: string[] | string | null);
  /** Widths count thousandths of the picture's longer side. */
  get widths(): number[] | null;
  set widths(widths: number[] | string | null);
  /** `none` shows no bars: the page has its own, over the methods and events below. */
  ui: 'none' | null;
  /** Whether the picture is only looked at: moved and zoomed. */
  readonly: boolean;
  /** Whether fingers stop drawing once a pen has been used; the user's own choice where it is left out. */
  penOnly: 'on' | 'off' | null;
  /** Whether the bars of wide screens are light or dark; of both the user's system takes one, as by default. */
  get theme(): KalimTheme;
  set theme(theme: KalimTheme | null);
  /** Where the module for wide screens and the kit is, which is fetched when one of them is wanted. */
  deskUrl: string | null;
  /** Where the module is, if not beside the scripts; for pictures that are opened while none is. */
  wasmUrl: string | null;
  /** The same of the module for saving, which is fetched when a picture is saved. */
  codecUrl: string | null;
  /** `ctrl` leaves a wheel without that key to the page. */
  wheel: 'ctrl' | null;
  /** `lose` keeps the browser from asking before the user leaves unsent work. */
  unsent: 'lose' | null;
  /** What becomes of a PNG with a document inside; the user is asked by default. */
  inside: KalimInside | null;
  /** Under this key what is drawn is kept in the browser, so that a reload or a crash loses nothing. */
  recovery: string | null;
  /**
   * Fonts that texts are set in, before those of the system: addresses, blobs or bytes of TrueType or OpenType files; or a
   * text of addresses with blanks between.
   */
  get fonts(): KalimFont[];
  set fonts(fonts: KalimFont[] | string | null);
  /** Texts of the editor, found by the Chinese ones; new ones count from the next picture on. */
  get strings(): Record<string, string>;
  set strings(strings: Record<string, string> | null);

  /**
   * Opens a picture in a new editor. Answers whether it is shown: not when another was asked for or
   * the element was removed meanwhile, and not before the element is in a document. Rejects when the
   * picture cannot be had, or the document not be understood, with its place; what was open still is.
   */
  open(picture: KalimPicture, options?: { inside?: KalimInside }): Promise<boolean>;
  /**
   * As `open`, but an editor that is open asks the user first when something would be lost, and says itself
   * when the picture cannot be read. Answers once the user has; another one that is offered takes its place.
   */
  offer(picture: Blob | string | URL): Promise<boolean>;
  /** Has the user choose another picture for the editor that is open; in answer to what the user did. */
  pickPicture(): void;
  /** Takes the editor away without asking, and gives its memory back. */
  close(): void;
  readonly isOpen: boolean;

  /** The picture with all that is drawn on it; null while none is open. Ends a text that is typed, and selects nothing. */
  exportImage(options?: KalimExportOptions): Promise<Blob | null>;
  /**
   * The picture's own file and what is drawn on it, as a document that `open` takes again; null while none is
   * open. One that is not sealed counts as saved. Ends a text that is typed, and selects nothing.
   */
  getDocument(options?: KalimDocumentOptions): Promise<Blob | null>;

  /** Whether there was something to do. */
  undo(): boolean;
  redo(): boolean;
  readonly canUndo: boolean;
  readonly canRedo: boolean;
  readonly toolCount: number;
  /** Whether there is a step that can be undone and was neither sent nor saved, or a text that is being typed. */
  readonly dirty: boolean;

  /** These throw a RangeError for a value that is none, and set the properties. */
  setTool(tool: KalimTool): void;
  setColor(color: string): void;
  setLineWidth(width: number): void;
  setWidth(width: number): void;
  /** What else can be chosen now, for what is selected or else for what is drawn next; none where nothing is open. */
  readonly properties: KalimProperty[];
  /** Throws a RangeError for a name or a value that there is none of. */
  setProperty(name: string, value: number | boolean | string): void;
  /** Deletes what is selected; whether it is gone. */
  deleteSelection(): boolean;

  addEventListener<K extends keyof KalimEditorElementEventMap>(
    type: K, listener: (this: KalimEditorElement, event: KalimEditorElementEventMap[K]) => unknown,
    options?: boolean | AddEventListenerOptions): void;
  addEventListener<K extends keyof HTMLElementEventMap>(
    type: K, listener: (this: KalimEditorElement, event: HTMLElementEventMap[K]) => unknown,
    options?: boolean | AddEventListenerOptions): void;
  addEventListener(type: string, listener: EventListenerOrEventListenerObject,
    options?: boolean | AddEventListenerOptions): void;
}

/** By the Chinese texts, each a text or its forms by the categories of plurals, `other` among them. */
export type KalimTexts = Record<string, string | Partial<Record<Intl.LDMLPluralRule, string>>>;

/** Makes the element known by a name, `kalim-editor` by default; without effect on a server. */
export function defineKalimEditor(name?: string): void;

/** Numbers the editor's pens. */
export const Pen: Readonly<Record<KalimTool, number>>;

export interface KalimEditorOptions {
  /** Where the module is, its bytes, or the module itself. */
  wasm?: string | URL | BufferSource | WebAssembly.Module;
  /** The same of the module for wide screens and the kit. */
  desk?: string | URL | BufferSource | WebAssembly.Module;
  /** As the element's properties of these names. */
  layout?: KalimLayout;
  pens?: string[];
  colors?: string[];
  widths?: number[];
  ui?: 'none';
  theme?: KalimTheme;
  readonly?: boolean;
  penOnly?: boolean;
  /** The same of the module for saving. */
  codec?: string | URL | BufferSource | WebAssembly.Module;
  /** Of the texts, such as `en-GB`; the browser's by default. English where there are no texts in it. */
  language?: string;
  /** Replaces texts, which are found by the Chinese ones. */
  strings?: Record<string, string>;
  /** `auto` by default. */
  type?: KalimImageType;
  quality?: number;
  metadata?: KalimMetadata;
  exportsAtPictureScale?: boolean;
  /** Whether what is drawn beyond the picture's edge enlarges the result; false by default: it is cut there. */
  grow?: boolean;
  /** `ctrl` leaves a wheel without that key to the page. */
  wheel?: 'always' | 'ctrl';
  /** What becomes of a PNG with a document inside. */
  inside?: KalimInside | 'ask';
  /** Where in the page the content's corners are, clockwise from the left upper one; for a turned canvas. */
  corners?: () => { x: number; y: number }[];
}

export type KalimScale = 'screen' | 'picture' | 'view';

/** One thing on the screen that an assistive technology is told of. */
export interface KalimScreenNode {
  id: number;
  /** What it lies in; 0 stands for the screen itself. */
  parent: number;
  /**
   * 1 is a button, 2 an image, 3 a text, 4 a text field, 5 a dialog, 6 a group, 7 a radio button, 8 a canvas, 9 a slider,
   * 10 a menu, 11 an item of one, 12 a status.
   */
  role: number;
  /** Places and sizes are points, from the canvas's corner. */
  x: number;
  y: number;
  width: number;
  height: number;
  label: string;
  value: string;
  isEnabled: boolean;
  isSelected: boolean;
  isFocused: boolean;
}

/** A place over the canvas, in points from its corner; the colour is that of texts there, written `#RRGGBB`. */
export interface KalimRoom {
  x: number;
  y: number;
  width: number;
  height: number;
  color: string;
}

/**
 * The editor on a canvas of the page's own, which decides when it goes. Its events are `confirm`, with
 * `detail.blob`, `close`, `open`, with `detail.picture`, `width` and `height`, `change`, `tool`, with a `KalimPen`,
 * `select`, with `detail.count`, `delete`, with `detail.count`, which `preventDefault()` forbids, `busy`, `picture`, with `detail.picture` that the user has taken instead, and
 * `warning` and `error`, with `detail.error`.
 */
export class KalimEditor extends EventTarget {
  static create(canvas: HTMLCanvasElement, options?: KalimEditorOptions): Promise<KalimEditor>;
  /** As the element's. */
  static addTexts(language: string, texts: KalimTexts): void;
  private constructor();
  destroy(): void;
  open(picture: ImageBitmapSource | Promise<ImageBitmapSource>, options?: Omit<KalimEditorOptions, 'wasm' | 'codec'>): Promise<boolean>;
  offer(picture: ImageBitmapSource | Promise<ImageBitmapSource>): Promise<boolean>;
  dismiss(): void;
  readonly isOpen: boolean;
  clickPickImage(): void;
  /** A PNG unless told. */
  exportImage(options?: { scale?: KalimScale; type?: KalimImageType; quality?: number; metadata?: KalimMetadata }):
    Promise<Blob | null>;
  exportImageAtPictureScale(options?: { type?: KalimImageType; quality?: number; metadata?: KalimMetadata }):
    Promise<Blob | null>;
  getDocument(options?: KalimDocumentOptions): Promise<Blob | null>;
  /** Gives the user what would be sent now as a download; false when there is nothing. */
  saveToAlbum(name: string): boolean;
  choosePen(pen: number): void;
  chooseColor(color: string): void;
  chooseLineWidth(width: number): void;
  setTopNavigationItemTitle(isCloseButton: boolean, title: string): void;
  askToClose(): void;
  /** Of the picture that is sent from now on. */
  setSending(type: KalimImageType, quality?: number | null, metadata?: KalimMetadata): void;
  setWheel(wheel: 'always' | 'ctrl' | null): void;
  /** Null is as without it. */
  setLayout(layout: KalimLayout | null): void;
  setPens(names: string[] | null): Promise<void>;
  setColors(colors: string[] | null): void;
  setWidths(widths: number[] | null): void;
  /** Adds a font that texts are set in; its family. Rejects with what is wrong with which font. */
  addFont(font: KalimFont): Promise<string>;
  setUi(ui: 'none' | null): void;
  setTheme(theme: KalimTheme | null): void;
  setReadonly(isReadonly: boolean): void;
  setPenOnly(isPenOnly: boolean | null): void;
  readonly properties: KalimProperty[];
  setProperty(name: string, value: number | boolean | string): void;
  deleteSelection(): boolean;
  readonly isUnsent: boolean;
  /** A picture comes in or goes out; fingers and keys wait. */
  readonly isBusy: boolean;
  readonly pen: KalimPen | null;
  /** For a canvas that is moved in the page. */
  cancelTouches(): void;
  /** For a canvas that leaves its document, and when it has come back. */
  suspend(): void;
  resume(): void;
  /** Calls the listener whenever the screen may have become different. */
  watchScreen(listener: (() => void) | null): void;
  /** In reading order; null when all is as it was the last time. */
  describeScreen(): KalimScreenNode[] | null;
  /** Calls the listener with what is to be said of what keys have just done. */
  watchAnnouncements(listener: ((text: string) => void) | null): void;
  /** Calls the listener while a key leads the focus on to what is around the canvas, which the browser does then. */
  watchLeaving(listener: (() => void) | null): void;
  /**
   * Leaves so many points of the upper bar free for what the page lays over the canvas there, 0 for none; `placed` hears
   * where that is, null for nowhere.
   */
  setHostRoom(width: number, placed: (room: KalimRoom | null) => void): void;
  /** Does what a tap on the node does; whether there was something to do. */
  activate(id: number): boolean;
  undo(): boolean;
  redo(): boolean;
  readonly canUndo: boolean;
  readonly canRedo: boolean;
  readonly toolCount: number;
}

declare global {
  interface HTMLElementTagNameMap {
    'kalim-editor': KalimEditorElement;
  }
}
