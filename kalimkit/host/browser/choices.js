// What a page chooses instead of the user.

// Numbers by names; npm/gather.mjs puts them in, from kalimkit/theme/Pens.cpp.
export const Pen = 'PENS';

// Numbers of the pens that need the kit, from kalimkit/shapes/Kit.cpp.
const kitPens = ['KIT PENS'];
// The keys of those pens, and those that arrange shapes, from kalimkit/canvas/CanvasKeys.cpp.
const lateKeys = ['LATE KEYS'];
// Those of them that do something where nothing can be changed.
const lateKeysOfReaders = ['READERS KEYS'];

export const needsKit = (pen) => kitPens.includes(pen);
export const waitsForRest = (key, isReadonly) => (isReadonly ? lateKeysOfReaders : lateKeys).includes(key);

// "#RRGGBB" or "#RRGGBBAA" as a number; throws for any other text.
export function packedColor(color) {
  if (!/^#([0-9a-f]{6}|[0-9a-f]{8})$/i.test(color)) {
    throw new TypeError(`"${color}" is no colour such as #FF3B30 or #FF3B3080`);
  }
  return parseInt(color.slice(1).padEnd(8, 'f'), 16);
}

// Finds the name of a pen by its number.
export function penName(number) {
  return Object.keys(Pen).find((name) => Pen[name] === number);
}

// "#RRGGBB" of a number as packedColor() answers with.
export function colorText(packed) {
  return `#${(packed >>> 8).toString(16).padStart(6, '0').toUpperCase()}`;
}

// They wait for the editor to appear, as it has nothing to choose from before.
export class Choices {
  // Values by the module's operations that take them.
  #waiting = new Map();

  set(operation, value) {
    this.#waiting.set(operation, value);
  }

  make(module) {
    if (!this.#waiting.size || !module.call('has_appeared')) return;
    const choices = [...this.#waiting];
    this.#waiting.clear();
    for (const [operation, value] of choices) module.call(operation, value);
  }
}
