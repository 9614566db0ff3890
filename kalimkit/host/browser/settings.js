// Flags that the user's browser keeps for the editor, or the page alone where the browser refuses to.

const prefix = 'kalimkit.';
const held = new Map();

// Answers with true, false or undefined.
export function setting(key) {
  if (held.has(key)) return held.get(key);
  try {
    return { true: true, false: false }[localStorage.getItem(prefix + key)];
  } catch {
    return undefined;
  }
}

export function setSetting(key, value) {
  try {
    localStorage.setItem(prefix + key, value);
    held.delete(key);
  } catch {
    held.set(key, value);
  }
}
