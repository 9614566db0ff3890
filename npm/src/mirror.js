// The screen for assistive technologies and the keyboard: real elements, not seen and not touched, lie
// over what the canvas shows, with its names and states.

const pause = 250;
const role = { image: 2, text: 3, field: 4, dialog: 5, group: 6, radio: 7, canvas: 8 };
// A tag and a role by the module's number; all others are buttons.
const kinds = {
  [role.image]: ['div', 'img'],
  [role.text]: ['div', null],
  [role.field]: ['div', 'textbox'],
  [role.dialog]: ['div', 'dialog'],
  [role.group]: ['div', 'group'],
  [role.radio]: ['button', 'radio'],
  [role.canvas]: ['div', 'group'],
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
  #timer = 0;

  // Of an editor on a canvas, put into the stage that the canvas fills.
  constructor(stage, canvas, editor) {
    this.#canvas = canvas;
    this.#editor = editor;
    this.#root.id = 'mirror';
    this.#root.addEventListener('click', (event) => this.#activate(event.target));
    this.#root.addEventListener('keydown', (event) => this.#pressed(event));
    this.#root.addEventListener('keyup', (event) => this.#passOn(event));
    stage.append(this.#root);
    editor.watchScreen(() => this.#look());
    this.#look();
  }

  stop() {
    clearTimeout(this.#timer);
    this.#editor.watchScreen(null);
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
    const dialogs = this.#dialogs();
    this.#nodes = new Map(screen.map((node) => [node.id, node]));
    for (const [id, element] of this.#elements) {
      if (this.#nodes.has(id)) continue;
      element.remove();
      this.#elements.delete(id);
    }
    const last = new Map();
    for (const node of screen) this.#place(node, last);
    this.#keepFocus(focused, hadFocus, dialogs);
  }

  #dialogs() {
    return new Set(this.#root.querySelectorAll('[role=dialog]'));
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
    setAttribute(element, 'role', kind);
    return element;
  }

  #describe(element, node) {
    const { label, value, isEnabled, isSelected } = node;
    const name = value && node.role !== role.field ? `${label}, ${value}` : label;
    const state = (isOn) => (isOn ? 'true' : 'false');
    const isToggle = this.#isShape(node) || (node.role === 1 && isSelected);
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
      // While it is edited the field that takes the keys stands for it.
      setAttribute(element, 'aria-hidden', node.isFocused ? 'true' : null);
      setAttribute(element, 'tabindex', node.isFocused ? null : '0');
      if (element.textContent !== value) element.textContent = value;
    }
    if (node.role === role.dialog) setAttribute(element, 'tabindex', '-1');
    if (node.role === role.canvas) setAttribute(this.#canvas, 'aria-label', label);
  }

  // What is drawn: it is selected by a tap.
  #isShape({ parent, role: kind }) {
    return this.#nodes.get(parent)?.role === role.canvas && (kind === role.image || kind === role.text);
  }

  // In a question that has just been asked, else where it was, else with the canvas.
  #keepFocus(focused, hadFocus, dialogs) {
    const isOurs = hadFocus || focused === this.#canvas;
    const asked = [...this.#dialogs()].find((dialog) => !dialogs.has(dialog));
    if (isOurs && asked) {
      asked.focus({ preventScroll: true });
    } else if (hadFocus && this.#root.getRootNode().activeElement !== focused) {
      (focused.isConnected ? focused : this.#canvas).focus({ preventScroll: true });
    }
  }

  #nodeOf(element) {
    return this.#nodes.get(Number(element.closest('[data-id]')?.dataset.id));
  }

  #activate(element) {
    const node = this.#nodeOf(element);
    if (node) this.#editor.activate(node.id);
  }

  #pressed(event) {
    const node = this.#nodeOf(event.target);
    if (event.key === 'Enter' || event.key === ' ') {
      if (event.target.localName === 'button') return;
      event.preventDefault();
      this.#activate(event.target);
      return;
    }
    const isDeleting = event.key === 'Delete' || event.key === 'Backspace';
    if (isDeleting && node && this.#isShape(node) && !node.isSelected) this.#editor.activate(node.id);
    this.#passOn(event);
  }

  // To the editor, whose keys they are.
  #passOn(event) {
    if (event.key === 'Enter' || event.key === ' ') return;
    const { key, code, ctrlKey, metaKey, altKey, shiftKey, repeat } = event;
    const copy = new KeyboardEvent(event.type,
      { key, code, ctrlKey, metaKey, altKey, shiftKey, repeat, cancelable: true });
    if (!this.#canvas.dispatchEvent(copy)) event.preventDefault();
  }
}
