// What the module tells an assistive technology of the screen, read from its text.

const fieldEnd = '\x1f';
const nodeEnd = '\x1e';

// Lists nodes in reading order: id, parent (0 for the screen itself), role by its number, x, y, width and height
// in points of the canvas, label, value, isEnabled, isSelected, isFocused.
export function readDescription(text) {
  return text.split(nodeEnd).slice(0, -1).map((line) => {
    const [id, parent, role, state, x, y, width, height, label, value] = line.split(fieldEnd);
    const numbers = { id, parent, role, x, y, width, height };
    for (const name in numbers) numbers[name] = Number(numbers[name]);
    return {
      ...numbers,
      label,
      value,
      isEnabled: (state & 1) !== 0,
      isSelected: (state & 2) !== 0,
      isFocused: (state & 4) !== 0,
    };
  });
}
