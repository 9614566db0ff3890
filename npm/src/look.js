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
slot[hidden], [hidden] { display: none; }
#bar { position: absolute; visibility: hidden; display: flex; align-items: center; scrollbar-width: none; }
#bar slot { display: flex; flex: none; gap: 6px; align-items: center; }
.corner { position: absolute; width: 0; height: 0; }
.corner.right { right: 0; }
.corner.bottom { bottom: 0; }
#working, #failure {
  position: absolute; inset: 0; margin: auto; width: fit-content; max-width: calc(100% - 32px); height: fit-content;
  box-sizing: border-box; padding: 12px 20px; border-radius: 12px; font: 15px/1.4 system-ui, sans-serif;
  text-align: center; overflow-wrap: anywhere;
}
#working[hidden], #failure[hidden] { display: none; }
#working { pointer-events: none; background: #1c1c1e; color: #fff; animation: appear 0.1s 0.2s both; }
#working::before {
  content: ''; display: block; width: 24px; height: 24px; margin: 0 auto 8px; border-radius: 50%;
  border: 3px solid #fff6; border-top-color: #fff; box-sizing: border-box; animation: turn 1s linear infinite;
}
#failure { background: Canvas; color: CanvasText; border: 1px solid; }
#failure.beside { top: auto; bottom: 16px; margin: 0 auto; }
#failure strong { display: block; }
@keyframes appear { from { opacity: 0; } }
@keyframes turn { to { transform: rotate(1turn); } }
@media (prefers-reduced-motion: reduce) { #working::before { animation: none; } }
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
