// Keys as the module names them: "ctrl+shift+z". A Mac's command key counts as ctrl.

const names = {
  ArrowLeft: 'left',
  ArrowRight: 'right',
  ArrowUp: 'up',
  ArrowDown: 'down',
  Home: 'home',
  End: 'end',
  Backspace: 'backspace',
  Delete: 'delete',
  Enter: 'enter',
  Tab: 'tab',
  Escape: 'escape',
  F1: 'f1',
  F11: 'f11',
  '?': '?',
  ' ': 'space',
  '+': 'plus',
};

// What the key types, or where that is no letter of the Latin alphabet, what it types on a US keyboard.
function characterOf({ key, code }) {
  if (/^[a-z0-9[\]=-]$/i.test(key)) return key.toLowerCase();
  if (/^[\x20-\x7e]$/.test(key)) return null;
  const [, character] = /^(?:Key|Digit)([A-Z0-9])$/.exec(code) ?? [];
  return character?.toLowerCase() ?? { BracketLeft: '[', BracketRight: ']' }[code] ?? null;
}

// Nothing for a key that an input method has taken, and for one without a name. Pasting is left to the
// browser, which alone may read the clipboard without asking.
export function nameOf(event) {
  if (event.isComposing || event.keyCode === 229) return null;
  const name = names[event.key] ?? (event.key.length === 1 ? characterOf(event) : null);
  const isCommand = event.ctrlKey || event.metaKey;
  if (!name || (isCommand && name === 'v')) return null;
  return `${isCommand ? 'ctrl+' : ''}${event.altKey ? 'alt+' : ''}${event.shiftKey ? 'shift+' : ''}${name}`;
}

// What an element that has the focus hears. target: press(name, isRepeated), which answers whether the
// key did something, release(name), paste(file) for a picture, pasteText(text), which answers whether the text is
// something that the editor has copied, and held, the keys that are held.
export function watchKeys(element, signal, target) {
  const on = (type, listener) => element.addEventListener(type, listener, { signal });
  if (element.tabIndex < 0) element.tabIndex = 0;
  on('keydown', (event) => {
    target.held.press(event);
    const name = nameOf(event);
    if (name && target.press(name, event.repeat)) event.preventDefault();
  });
  on('keyup', (event) => {
    target.held.release(event);
    const name = nameOf(event);
    if (name) target.release(name);
  });
  // Of what is released elsewhere nobody hears.
  on('blur', () => {
    target.held.forget();
    target.release('space');
  });
  on('paste', (event) => {
    const file = [...event.clipboardData.files].find(({ type }) => type.startsWith('image/'));
    if (!file) {
      if (target.pasteText(event.clipboardData.getData('text/plain'))) event.preventDefault();
      return;
    }
    event.preventDefault();
    target.paste(file);
  });
}
