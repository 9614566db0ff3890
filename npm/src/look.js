// How the element looks by itself; the page's own rules for it win.

const css = `
:host { display: block; position: relative; height: 30rem; overflow: hidden; }
:host([hidden]) { display: none; }
:host { background: Canvas; color: CanvasText; }
:host(:focus), canvas { outline: 0; }
#stage, canvas { position: absolute; inset: 0; width: 100%; height: 100%; }
#stage { pointer-events: none; }
canvas { display: block; visibility: hidden; }
canvas.open { visibility: visible; pointer-events: auto; }
#mirror, #mirror * { position: absolute; forced-color-adjust: none; }
#mirror { inset: 0; overflow: hidden; }
#mirror * {
  box-sizing: border-box; margin: 0; padding: 0; border: 0; background: none; color: transparent;
  font-size: 12px; pointer-events: none;
}
#mirror :focus-visible { outline: 2px solid #0a84ff; outline-offset: -2px; box-shadow: inset 0 0 0 4px #fff; }
slot[hidden] { display: none; }
`;
const sheets = new WeakMap();

// One for all elements of a document; made by a script, as a policy may forbid those of the markup.
export function sheetOf(document) {
  if (!sheets.has(document)) {
    const sheet = new document.defaultView.CSSStyleSheet();
    sheet.replaceSync(css);
    sheets.set(document, sheet);
  }
  return sheets.get(document);
}
