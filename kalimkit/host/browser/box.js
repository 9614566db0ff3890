// Finds the box of an element's content, without its border and padding.

const sides = ['Left', 'Top', 'Right', 'Bottom'];

// In pixels of the page's own: where it is and how large it looks, and how wide and high it is before
// transforms. All are 0 for an element that is not displayed.
export function contentBox(element) {
  if (!element.getClientRects().length) {
    return { left: 0, top: 0, shownWidth: 0, shownHeight: 0, width: 0, height: 0 };
  }
  const outer = element.getBoundingClientRect();
  const style = getComputedStyle(element);
  const [left, top, right, bottom] = sides.map((side) =>
    parseFloat(style[`border${side}Width`]) + parseFloat(style[`padding${side}`]));
  const [ownWidth, ownHeight] = [parseFloat(style.width), parseFloat(style.height)];
  const isWhole = style.boxSizing === 'border-box';
  const width = isWhole ? ownWidth - left - right : ownWidth;
  const height = isWhole ? ownHeight - top - bottom : ownHeight;
  const across = outer.width / (width + left + right);
  const down = outer.height / (height + top + bottom);
  return {
    left: outer.left + left * across,
    top: outer.top + top * down,
    shownWidth: width * across,
    shownHeight: height * down,
    width,
    height,
  };
}

// Where a point of the page lies in a rectangle whose corners the page shows there, clockwise from the
// left upper one: x and y go from 0 to 1. The inverse of the projective map of the unit square onto four
// points (Heckbert, Fundamentals of Texture Mapping, 1989). Null where the rectangle is seen edge on.
export function placeBetween([a, b, c, d], point) {
  const [bx, by, dx, dy] = [b.x - c.x, b.y - c.y, d.x - c.x, d.y - c.y];
  const [sx, sy] = [a.x - b.x + c.x - d.x, a.y - b.y + c.y - d.y];
  const area = bx * dy - dx * by;
  const g = (sx * dy - dx * sy) / area;
  const h = (bx * sy - sx * by) / area;
  // Of the two linear equations for the place.
  const across = { x: b.x - a.x + g * (b.x - point.x), y: b.y - a.y + g * (b.y - point.y) };
  const down = { x: d.x - a.x + h * (d.x - point.x), y: d.y - a.y + h * (d.y - point.y) };
  const right = { x: point.x - a.x, y: point.y - a.y };
  const determinant = across.x * down.y - down.x * across.y;
  const x = (right.x * down.y - down.x * right.y) / determinant;
  const y = (across.x * right.y - right.x * across.y) / determinant;
  return Number.isFinite(x) && Number.isFinite(y) ? { x, y } : null;
}
