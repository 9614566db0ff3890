// Elements whose work survives the page, for tests/browser/recovery.mjs and killing.mjs.

const first = () => document.getElementById('first');

// What is drawn at a step: boxes in rows, and now and then an undo or a redo.
const boxesInRow = 6;
const rowsOfBoxes = 4;
const kinds = ['box', 'box', 'undo', 'box', 'undo', 'redo', 'box'];

function boxAt(number) {
  const [x, y] = [70 + (number % boxesInRow) * 44, 125 + (Math.floor(number / boxesInRow) % rowsOfBoxes) * 42];
  return [[x, y], [x + 10, y + 10], [x + 30, y + 28]];
}

const actions = {
  box: (number) => window.embed.drag(boxAt(number)),
  undo: () => first().undo(),
  redo: () => first().redo(),
};

window.recovering = {
  // In the place of the first one.
  place(attributes) {
    const element = document.createElement('kalim-editor');
    for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
    element.id = 'first';
    first()?.remove();
    document.body.append(element);
  },

  // Answers as soon as something is open.
  async opened() {
    while (!first().isOpen) await new Promise((done) => setTimeout(done, 10));
    await window.watched.frames(40);
  },

  // All that is to survive, as a text.
  async print() {
    const { tools, crop, quarterTurns } = JSON.parse(await (await first().getDocument()).text());
    const { canUndo, canRedo } = first();
    return JSON.stringify({ tools, crop, quarterTurns, canUndo, canRedo });
  },

  step: async (number) => actions[kinds[number % kinds.length]](number),

  // One step after the other from a number on, each said to the server once its frame has been shown.
  async goOn(number, last) {
    for (let i = number; i <= last; ++i) {
      await this.step(i);
      await window.watched.frames(2);
      fetch(`/said/${i}`, { keepalive: true });
    }
  },

  // How many works the browser keeps, and how many steps of each.
  async kept() {
    const database = await new Promise((resolve) => {
      const opening = indexedDB.open('kalimkit');
      opening.onsuccess = () => resolve(opening.result);
    });
    const all = (store) => new Promise((resolve) => {
      const reading = database.transaction(store).objectStore(store).getAll();
      reading.onsuccess = () => resolve(reading.result);
    });
    const works = await all('works');
    const steps = await all('steps');
    database.close();
    return works.map(({ id }) => steps.filter(({ work, number }) => work === id && number >= 0).length);
  },
};
