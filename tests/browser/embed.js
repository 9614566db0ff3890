// What tests/browser/element.mjs does in its page.

const events = [];
const first = () => document.getElementById('first');
const types = ['kalim-open', 'kalim-finish', 'kalim-close', 'kalim-change', 'kalim-tool', 'kalim-select',
  'kalim-error', 'kalim-recover', 'kalim-warning', 'kalim-selection', 'kalim-delete'];

// Bubbling out of every element to the page.
for (const type of types) {
  document.addEventListener(type, (event) => {
    const { error, blob, ...detail } = event.detail ?? {};
    events.push({
      ...detail,
      ...(type === 'kalim-open' ? { format: detail.type } : {}),
      type,
      id: event.target.id,
      ...(error ? { message: error.message } : {}),
      ...(blob ? { blob: blob.type } : {}),
    });
    // It would go to the console.
    if (error && !window.embed.logsErrors) event.preventDefault();
  });
}

window.embed = {
  logsErrors: false,

  take: () => events.splice(0),

  // One finger through places of the page; how many changes each step tells.
  async drag(places) {
    const canvas = first().shadowRoot.querySelector('canvas');
    const changes = [];
    const before = () => events.filter(({ type }) => type === 'kalim-change').length;
    const point = async (phase, [clientX, clientY]) => {
      const count = before();
      canvas.dispatchEvent(new PointerEvent(`pointer${phase}`,
        { pointerId: 7, clientX, clientY, pointerType: 'touch', bubbles: true }));
      await new Promise((done) => setTimeout(done));
      changes.push(before() - count);
    };
    await point('down', places[0]);
    for (const place of places.slice(1)) await point('move', place);
    await point('up', places.at(-1));
    return changes;
  },

  add(id) {
    const element = document.createElement('kalim-editor');
    element.id = id;
    element.setAttribute('src', '/photos/coffee.png');
    document.body.append(element);
  },

  // Its type, its size, whether it has a green pixel, and the box of those: left, top, right, bottom.
  async look(blob) {
    const bitmap = await createImageBitmap(blob);
    const { width, height } = bitmap;
    const pixels = new OffscreenCanvas(width, height).getContext('2d');
    pixels.drawImage(bitmap, 0, 0);
    const { data } = pixels.getImageData(0, 0, width, height);
    const box = [width, height, -1, -1];
    for (let i = 0; i < data.length; i += 4) {
      if (data[i] >= 60 || data[i + 1] <= 200 || data[i + 2] >= 60) continue;
      const [x, y] = [(i / 4) % width, Math.floor(i / 4 / width)];
      box.splice(0, 4, Math.min(box[0], x), Math.min(box[1], y), Math.max(box[2], x), Math.max(box[3], y));
    }
    return { type: blob.type, width, height, hasGreen: box[2] >= 0, box };
  },

  export: async (options) => window.embed.look(await first().exportImage(options)),

  state() {
    const { isOpen, canUndo, canRedo, toolCount } = first();
    return { isOpen, canUndo, canRedo, toolCount, kept: first().shadowRoot.querySelectorAll('canvas').length };
  },

  // What the call throws or rejects with.
  async failure(call, ...values) {
    try {
      await first()[call](...values);
      return null;
    } catch (error) {
      return `${error.name}: ${error.message}`;
    }
  },
};
