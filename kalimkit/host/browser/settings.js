// Flags and texts that the user's browser keeps for the editor, or the page alone where the browser refuses to.

const prefix = 'kalimkit.';
const held = new Map();

function kept(key) {
  if (held.has(key)) return held.get(key);
  try {
    return localStorage.getItem(prefix + key) ?? undefined;
  } catch {
    return undefined;
  }
}

// Answers with true, false or undefined.
export function setting(key) {
  return { true: true, false: false }[kept(key)];
}

// Undefined for none.
export function textSetting(key) {
  const text = kept(key);
  return text === undefined ? undefined : String(text);
}

export function setSetting(key, value) {
  try {
    localStorage.setItem(prefix + key, value);
    held.delete(key);
  } catch {
    held.set(key, value);
  }
}
