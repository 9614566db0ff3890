// The box of an element's content, without its border and padding.

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
