// Editors for tests/browser/host.mjs, in the page: the last one is window.editor.

const { KalimEditor } = await import('/kalimkit/host/browser/kalim.js');

function striped() {
  const context = new OffscreenCanvas(400, 300).getContext('2d');
  context.fillStyle = '#fff';
  context.fillRect(0, 0, 400, 300);
  return context.canvas;
}

window.hosting = {
  canvas() {
    const canvas = document.createElement('canvas');
    canvas.style.cssText = 'position: fixed; left: 0; top: 0; width: 300px; height: 400px';
    return document.body.appendChild(canvas);
  },

  async open({ canvas = this.canvas(), ...options } = {}) {
    localStorage.setItem('kalimkit.canUseRingAnimation', false);
    window.editor = await KalimEditor.create(canvas, options);
    await window.editor.open(striped());
    await this.rest();
  },

  // Until an editor has appeared, and the browser has told sizes.
  rest: () => window.watched.frames(40),

  point(phase, pointerId, x, y, options = {}) {
    document.querySelector('canvas').dispatchEvent(new PointerEvent(`pointer${phase}`, {
      pointerId, clientX: x, clientY: y, pointerType: 'touch', bubbles: true, ...options,
    }));
  },

  draw(id, [first, ...others]) {
    this.point('down', id, ...first);
    for (const place of others) this.point('move', id, ...place);
    this.point('up', id, ...others.at(-1));
  },

  tap(x, y) {
    this.draw(1, [[x, y], [x, y]]);
  },
};
