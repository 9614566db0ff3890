// What the page has put into the element's slot "bar": it lies over the editor's upper bar, where that leaves room.

export class Bar {
  #place = document.createElement('div');
  #editor = null;
  #width = 0;

  // Behind the stage, so that tab comes to it after what the editor shows.
  constructor(stage) {
    const content = document.createElement('slot');
    content.name = 'bar';
    this.#place.id = 'bar';
    this.#place.part = 'bar';
    this.#place.append(content);
    stage.after(this.#place);
    new ResizeObserver(([{ contentRect }]) => this.#measured(Math.ceil(contentRect.width))).observe(content);
  }

  // Over which editor; null for none.
  setEditor(editor) {
    this.#editor = editor;
    this.#put(null);
    if (this.#width) this.#ask();
  }

  #measured(width) {
    if (width === this.#width) return;
    this.#width = width;
    this.#ask();
  }

  #ask() {
    this.#editor?.setHostRoom(this.#width, (room) => this.#put(room));
  }

  #put(room) {
    const { style } = this.#place;
    // What is not seen is measured all the same, and has no focus.
    style.visibility = room ? 'visible' : 'hidden';
    if (!room) return;
    for (const [side, points] of [['left', room.x], ['top', room.y], ['width', room.width], ['height', room.height]]) {
      style[side] = `${points}px`;
    }
    style.color = room.color;
    // Rings around what has the focus reach out.
    style.overflow = room.width < this.#width ? 'auto hidden' : 'visible';
  }
}
