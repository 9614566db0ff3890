// Pointer events of an element as fingers: each pointer that goes down on it is a finger until it
// lifts, wherever it goes. A mouse is one while its main button is down.

export const Phase = { began: 0, moved: 1, ended: 2, cancelled: 3 };

export class Pointers {
  #element;
  #report;
  #down = new Set();
  #listening = new AbortController();

  // report(phase, fingers, time): fingers are { id, x, y }, x and y from 0 to 1 over the element;
  // milliseconds as performance.now().
  constructor(element, report) {
    this.#element = element;
    this.#report = report;
    const { signal } = this.#listening;
    const on = (type, listener) => element.addEventListener(type, listener, { signal });
    on('pointerdown', (event) => this.#began(event));
    on('pointermove', (event) => this.#moved(event));
    on('pointerup', (event) => this.#lifted(event, Phase.ended));
    on('pointercancel', (event) => this.#lifted(event, Phase.cancelled));
    on('lostpointercapture', (event) => this.#lifted(event, Phase.cancelled));
    // The focus stays with the text that is edited; a long press is the canvas's own.
    for (const type of ['mousedown', 'contextmenu']) on(type, (event) => event.preventDefault());
    element.style.touchAction = 'none';
    element.style.userSelect = 'none';
    element.style.webkitUserSelect = 'none';
    element.style.webkitTouchCallout = 'none';
  }

  stop() {
    this.#listening.abort();
  }

  #began(event) {
    if (event.pointerType === 'mouse' && event.button !== 0) return;
    if (this.#down.has(event.pointerId)) return;
    this.#down.add(event.pointerId);
    // A pointer that is gone already, as one made by a script, cannot be captured.
    try {
      this.#element.setPointerCapture(event.pointerId);
    } catch (error) {
      if (error.name !== 'NotFoundError') throw error;
    }
    this.#tell(Phase.began, event);
  }

  // Browsers gather moves for one frame; a drawn line needs all of them.
  #moved(event) {
    if (!this.#down.has(event.pointerId)) return;
    const gathered = event.getCoalescedEvents?.() ?? [];
    for (const each of gathered.length ? gathered : [event]) this.#tell(Phase.moved, each);
  }

  #lifted(event, phase) {
    if (!this.#down.delete(event.pointerId)) return;
    this.#tell(phase, event);
  }

  #tell(phase, event) {
    const box = this.#element.getBoundingClientRect();
    const x = (event.clientX - box.left) / box.width;
    const y = (event.clientY - box.top) / box.height;
    this.#report(phase, [{ id: event.pointerId, x, y }], event.timeStamp);
  }
}
