// Holds what a browser prints against what the native player prints.

const tolerance = 1e-4;
// What a font measures may differ by as much, points.
const fontTolerance = 1;
const textClasses = ['MDrawText', 'MDrawComment'];
// Of the pixels that a frame of texts has cost.
const costTolerance = 0.1;

const isText = ({ class: name }) => textClasses.includes(name);

// What differs, each with its place; expected and actual are parsed JSON.
export function differences(expected, actual, place = 'print', allowed = tolerance) {
  const both = `${place}: expected ${JSON.stringify(expected)}, got ${JSON.stringify(actual)}`;
  if (typeof expected === 'number' && typeof actual === 'number') {
    const size = Math.max(Math.abs(expected), Math.abs(actual));
    const most = allowed === fontTolerance ? allowed : allowed * Math.max(1, size);
    return Math.abs(expected - actual) <= most ? [] : [both];
  }
  if (!expected || !actual || typeof expected !== 'object' || typeof actual !== 'object') {
    return expected === actual ? [] : [both];
  }
  const keys = Object.keys(expected);
  if (keys.join() !== Object.keys(actual).join()) return [both];
  if (isText(expected)) allowed = fontTolerance;
  const allowedIn = (key) =>
    key === 'cost' && (expected.editingText || expected.tools.some(isText)) ? costTolerance : allowed;
  // What follows from the frame in words.
  const compared = isText(expected) ? keys.filter((key) => key !== 'measureText') : keys;
  return compared.flatMap((key) =>
    differences(expected[key], actual[key], `${place}.${key}`, allowedIn(key)));
}
