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
  ' ': 'space',
};

// What the key types, or where that is no letter of the Latin alphabet, what it types on a US keyboard.
function characterOf({ key, code }) {
  if (/^[a-z0-9[\]]$/i.test(key)) return key.toLowerCase();
  if (/^[\x20-\x7e]$/.test(key)) return null;
  const [, character] = /^(?:Key|Digit)([A-Z1-9])$/.exec(code) ?? [];
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
