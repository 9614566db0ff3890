// What tests/browser/element.mjs does in its page.

const events = [];
const first = () => document.getElementById('first');
const types = ['kalim-finish', 'kalim-close', 'kalim-change', 'kalim-error'];

// Bubbling out of every element to the page.
for (const type of types) {
  document.addEventListener(type, ({ detail, target }) => events.push({
    type,
    id: target.id,
    ...(type === 'kalim-change' ? detail : {}),
    ...(detail?.error ? { message: detail.error.message } : {}),
    ...(detail?.blob ? { blob: detail.blob.type } : {}),
  }));
}

window.embed = {
  take: () => events.splice(0),

  add(id) {
    const element = document.createElement('kalim-editor');
    element.id = id;
    element.setAttribute('src', '/photos/coffee.png');
    document.body.append(element);
  },

  // Its type, its size, and whether it has a green pixel.
  async look(blob) {
    const bitmap = await createImageBitmap(blob);
    const { width, height } = bitmap;
    const pixels = new OffscreenCanvas(width, height).getContext('2d');
    pixels.drawImage(bitmap, 0, 0);
    const { data } = pixels.getImageData(0, 0, width, height);
    let hasGreen = false;
    for (let i = 0; i < data.length; i += 4) {
      hasGreen ||= data[i] < 60 && data[i + 1] > 200 && data[i + 2] < 60;
    }
    return { type: blob.type, width, height, hasGreen };
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
