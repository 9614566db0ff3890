// The screen for assistive technologies and the keyboard: real elements, not seen and not touched, lie
// over what the canvas shows, with its names and states.

const pause = 250;
const role = { button: 1, image: 2, text: 3, field: 4, dialog: 5, group: 6, radio: 7, canvas: 8,
  slider: 9, menu: 10, item: 11, status: 12 };
// A tag and a role by the module's number; all others are buttons.
const kinds = {
  [role.image]: ['div', 'img'],
  [role.text]: ['div', null],
  [role.field]: ['div', 'textbox'],
  [role.dialog]: ['div', 'dialog'],
  [role.group]: ['div', 'group'],
  [role.radio]: ['button', 'radio'],
  [role.canvas]: ['div', 'group'],
  [role.slider]: ['div', 'slider'],
  [role.menu]: ['div', 'menu'],
  [role.item]: ['button', 'menuitem'],
  [role.status]: ['div', 'status'],
};

function setAttribute(element, name, value) {
  if (value === null) element.removeAttribute(name);
  else if (element.getAttribute(name) !== value) element.setAttribute(name, value);
}

export class Mirror {
  #canvas;
  #editor;
  #root = document.createElement('div');
  #nodes = new Map();
  #elements = new Map();
  // Numbers of those that hold radio buttons.
  #choosing = new Set();
  // What the user has just used here; null after anything else.
  #used = null;
  #timer = 0;
  // What is to be said and not to be found.
  #spoken = document.createElement('div');

  // Of an editor on a canvas, put into the stage that the canvas fills.
  constructor(stage, canvas, editor) {
    this.#canvas = canvas;
    this.#editor = editor;
    this.#root.id = 'mirror';
    this.#root.addEventListener('click', (event) => this.#activate(event.target));
    this.#root.addEventListener('keydown', (event) => this.#pressed(event));
    this.#root.addEventListener('keyup', (event) => this.#passOn(event));
    stage.append(this.#root);
    this.#spoken.setAttribute('aria-live', 'polite');
    this.#root.append(this.#spoken);
    editor.watchAnnouncements((text) => this.#say(text));
    editor.watchLeaving(() => this.#standAside());
    editor.watchScreen(() => this.#look());
    this.#look();
  }

  stop() {
    clearTimeout(this.#timer);
    this.#editor.watchScreen(null);
    this.#editor.watchAnnouncements(null);
    this.#editor.watchLeaving(null);
  }

  // While the browser moves the focus from the canvas: where the editor's own bars were walked through is the end.
  #standAside() {
    this.#root.inert = true;
    setTimeout(() => {
      this.#root.inert = false;
    });
  }

  // The same text once more counts as another one.
  #say(text) {
    this.#spoken.textContent = this.#spoken.textContent === text ? `${text}\u00a0` : text;
  }

  // A little later, as more may be on its way.
  #look() {
    this.#timer ||= setTimeout(() => {
      this.#timer = 0;
      this.#update();
    }, pause);
  }

  #update() {
    const screen = this.#editor.describeScreen();
    if (!screen) return;
    const focused = this.#root.getRootNode().activeElement;
    const hadFocus = this.#root.contains(focused);
    const before = new Set(this.#elements.values());
    this.#nodes = new Map(screen.map((node) => [node.id, node]));
    const radios = screen.filter((node) => node.role === role.radio);
    this.#choosing = new Set(radios.map(({ parent }) => parent));
    for (const [id, element] of this.#elements) {
      if (this.#nodes.has(id)) continue;
      element.remove();
      this.#elements.delete(id);
    }
    const last = new Map();
    for (const node of screen) this.#place(node, last);
    this.#keepFocus(focused, hadFocus, before);
  }

  // `last` knows for each parent which of its children has been placed last.
  #place(node, last) {
    const element = this.#elementOf(node);
    const parent = this.#elements.get(node.parent) ?? this.#root;
    const before = last.get(parent);
    last.set(parent, element);
    const next = before ? before.nextSibling : parent.firstChild;
    // An element that is moved loses the focus.
    if (next !== element) parent.insertBefore(element, next);
    const { x = 0, y = 0 } = this.#nodes.get(node.parent) ?? {};
    Object.assign(element.style, {
      left: `${node.x - x}px`,
      top: `${node.y - y}px`,
      width: `${node.width}px`,
      height: `${node.height}px`,
    });
    this.#describe(element, node);
  }

  #elementOf(node) {
    const isShape = this.#isShape(node);
    const [tag, kind] = isShape ? ['button', null] : kinds[node.role] ?? ['button', null];
    let element = this.#elements.get(node.id);
    if (element?.localName !== tag) {
      element?.remove();
      element = document.createElement(tag);
      element.dataset.id = node.id;
      if (tag === 'button') element.type = 'button';
      this.#elements.set(node.id, element);
    }
    const isChoosing = kind === 'group' && this.#choosing.has(node.id);
    setAttribute(element, 'role', isChoosing ? 'radiogroup' : kind);
    return element;
  }

  #describe(element, node) {
    const { label, value, isEnabled, isSelected } = node;
    // The states of these two tell it.
    const isValueTold = node.role === role.field || node.role === role.radio;
    const name = value && !isValueTold ? `${label}, ${value}` : label;
    const state = (isOn) => (isOn ? 'true' : 'false');
    const isToggle = this.#isShape(node) || (node.role === role.button && isSelected && !this.#isAnswer(node));
    if (node.role === role.text && !this.#isShape(node)) {
      if (element.textContent !== name) element.textContent = name;
      return;
    }
    setAttribute(element, 'aria-label', name);
    setAttribute(element, 'aria-disabled', isEnabled ? null : 'true');
    setAttribute(element, 'aria-pressed', isToggle ? state(isSelected) : null);
    setAttribute(element, 'aria-checked', node.role === role.radio ? state(isSelected) : null);
    setAttribute(element, 'aria-modal', node.role === role.dialog ? 'true' : null);
    if (node.role === role.field) {
      // While it is edited the field that takes the keys stands for it, and a long text would be laid out for nobody.
      const text = node.isFocused ? '' : value;
      setAttribute(element, 'aria-hidden', node.isFocused ? 'true' : null);
      setAttribute(element, 'tabindex', node.isFocused ? null : '0');
      if (element.textContent !== text) element.textContent = text;
    }
    if (node.role === role.dialog) setAttribute(element, 'tabindex', '-1');
    if (node.role === role.canvas) setAttribute(this.#canvas, 'aria-label', label);
  }

  // What is drawn: it is selected by a tap.
  #isShape({ parent, role: kind }) {
    return this.#nodes.get(parent)?.role === role.canvas && (kind === role.image || kind === role.text);
  }

  #isAnswer({ parent }) {
    return this.#nodes.get(parent)?.role === role.dialog;
  }

  // With a question that has just been asked, else where it was, else with what has come in the place of
  // what the user has used, else with the canvas.
  #keepFocus(focused, hadFocus, before) {
    const focus = (element) => element.focus({ preventScroll: true });
    const find = (selector) =>
      [...this.#root.querySelectorAll(selector)].find((element) => !before.has(element));
    const asked = find('[role=dialog]');
    if (asked && (hadFocus || focused === this.#canvas)) {
      focus(asked);
    } else if (hadFocus && this.#root.getRootNode().activeElement !== focused) {
      const next = this.#used === focused && find('button, [tabindex="0"]');
      focus(focused.isConnected ? focused : next || this.#canvas);
    }
    if (!focused?.isConnected) this.#used = null;
  }

  #nodeOf(element) {
    return this.#nodes.get(Number(element.closest('[data-id]')?.dataset.id));
  }

  #activate(element) {
    const node = this.#nodeOf(element);
    if (!node) return;
    this.#used = element;
    this.#editor.activate(node.id);
  }

  #pressed(event) {
    const node = this.#nodeOf(event.target);
    if (this.#isForElement(event)) {
      if (event.target.localName === 'button') return;
      event.preventDefault();
      this.#activate(event.target);
      return;
    }
    this.#used = null;
    if (node?.role === role.radio && this.#walk(event)) return;
    // The browser leads on, but in a question.
    const isAsked = node && (node.role === role.dialog || this.#isAnswer(node));
    if (event.key === 'Tab' && !isAsked) return;
    const isDeleting = event.key === 'Delete' || event.key === 'Backspace';
    if (isDeleting && node && this.#isShape(node) && !node.isSelected) this.#editor.activate(node.id);
    this.#passOn(event);
    if (isAsked) this.#followAnswer();
  }

  // The focus, which is read out, goes with the answer that the keys have come to.
  #followAnswer() {
    this.#update();
    const chosen = [...this.#nodes.values()].find((node) => node.isSelected && this.#isAnswer(node));
    this.#elements.get(chosen?.id)?.focus({ preventScroll: true });
  }

  // What presses an element; a question itself answers as the editor does.
  #isForElement({ key, target }) {
    return (key === 'Enter' || key === ' ') && this.#nodeOf(target)?.role !== role.dialog;
  }

  // The keys lead from one choice to the next.
  #walk(event) {
    const step = { ArrowRight: 1, ArrowDown: 1, ArrowLeft: -1, ArrowUp: -1 }[event.key];
    if (!step) return false;
    const radios = [...event.target.parentElement.querySelectorAll(':scope > [role=radio]')];
    radios.at((radios.indexOf(event.target) + step) % radios.length).focus();
    event.preventDefault();
    return true;
  }

  // To the editor, whose keys they are.
  #passOn(event) {
    if (this.#isForElement(event)) return;
    const { key, code, ctrlKey, metaKey, altKey, shiftKey, repeat } = event;
    const copy = new KeyboardEvent(event.type,
      { key, code, ctrlKey, metaKey, altKey, shiftKey, repeat, cancelable: true });
    if (!this.#canvas.dispatchEvent(copy)) event.preventDefault();
  }
}
