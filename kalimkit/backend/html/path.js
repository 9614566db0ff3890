// Draws paths of the library on a canvas.

const Command = { move: 0, line: 1, quad: 2, cubic: 3, close: 4 };

// Makes the path that lies in the heap the context's own, in pixels of a layer whose pixel (x, y) is at
// the origin, and leaves no transform in force.
export function tracePath({ bytes, doubles }, { context, x, y }, commands, count, points, scale) {
  let at = points >>> 3;
  context.setTransform(1, 0, 0, 1, 0, 0);
  context.beginPath();
  const first = commands >>> 0;
  for (let i = first; i < first + count; ++i) {
    const px = doubles[at] * scale - x;
    const py = doubles[at + 1] * scale - y;
    switch (bytes[i]) {
      case Command.move:
        context.moveTo(px, py);
        at += 2;
        break;
      case Command.line:
        context.lineTo(px, py);
        at += 2;
        break;
      case Command.quad:
        context.quadraticCurveTo(px, py, doubles[at + 2] * scale - x, doubles[at + 3] * scale - y);
        at += 4;
        break;
      case Command.cubic:
        context.bezierCurveTo(px, py, doubles[at + 2] * scale - x, doubles[at + 3] * scale - y,
          doubles[at + 4] * scale - x, doubles[at + 5] * scale - y);
        at += 6;
        break;
      case Command.close:
        context.closePath();
        break;
    }
  }
}
