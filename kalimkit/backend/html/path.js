// Draws paths of the library on a canvas.

const Command = { move: 0, line: 1, quad: 2, cubic: 3, close: 4 };

// Whether five commands are those of a rectangle along the axes, as Path::addRect() writes it. Browsers close a path in
// the time that all of it takes.
function isRect(bytes, i, doubles, at) {
  return bytes[i + 1] === Command.line && bytes[i + 2] === Command.line && bytes[i + 3] === Command.line &&
    bytes[i + 4] === Command.close && doubles[at + 1] === doubles[at + 3] && doubles[at + 2] === doubles[at + 4] &&
    doubles[at + 5] === doubles[at + 7] && doubles[at + 6] === doubles[at];
}

// Makes the path that lies in the heap the context's own, in pixels of a layer whose pixel (x, y) is at
// the origin, and leaves no transform in force.
export function tracePath({ bytes, doubles }, { context, x, y }, commands, count, points, scale) {
  let at = points >>> 3;
  context.setTransform(1, 0, 0, 1, 0, 0);
  context.beginPath();
  const first = commands >>> 0;
  const end = first + count;
  for (let i = first; i < end; ++i) {
    const px = doubles[at] * scale - x;
    const py = doubles[at + 1] * scale - y;
    switch (bytes[i]) {
      case Command.move:
        if (i + 4 < end && isRect(bytes, i, doubles, at)) {
          context.rect(px, py, doubles[at + 4] * scale - x - px, doubles[at + 5] * scale - y - py);
          at += 8;
          i += 4;
          break;
        }
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
