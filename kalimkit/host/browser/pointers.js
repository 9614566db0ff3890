// Pointer events of an element as fingers: each pointer that goes down on it is a finger until it
// lifts, wherever it goes. A mouse is one while its main button is down, unless the editor pans with it.

export const Phase = { began: 0, moved: 1, ended: 2, cancelled: 3 };

// A wheel's pixels and lines that are a notch, and how much a notch enlarges.
const notches = { 0: 100, 1: 3, 2: 1 };
const notchFactor = 1.15;

export class Pointers {
  #element;
  #target;
  #down = new Set();
  // The mouse's button that the editor pans with.
  #panButton = null;
  #listening = new AbortController();

  // target: fingers(phase, [{ id, x, y }], time), pan(phase, button, place, time), which answers
  // whether the editor pans with the mouse, and zoom(place, factor, time). x and y go from 0 to 1
  // over the element; buttons are 0 main, 1 middle, 2 another; milliseconds as performance.now().
  constructor(element, target) {
    this.#element = element;
    this.#target = target;
    const { signal } = this.#listening;
    const on = (type, listener, options) =>
      element.addEventListener(type, listener, { signal, ...options });
    on('pointerdown', (event) => this.#began(event));
    on('pointermove', (event) => this.#moved(event));
    on('pointerup', (event) => this.#lifted(event, Phase.ended));
    on('pointercancel', (event) => this.#lifted(event, Phase.cancelled));
    on('lostpointercapture', (event) => this.#lifted(event, Phase.cancelled));
    on('wheel', (event) => this.#turned(event), { passive: false });
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

  cancel() {
    const fingers = [...this.#down].map((id) => ({ id, x: 0, y: 0 }));
    this.#down.clear();
    this.#panButton = null;
    if (fingers.length) this.#target.fingers(Phase.cancelled, fingers, performance.now());
  }

  #began(event) {
    if (this.#down.has(event.pointerId)) return;
    const button = Math.min(event.button, 2);
    const isMouse = event.pointerType === 'mouse';
    if (isMouse && this.#target.pan(Phase.began, button, this.#placeOf(event), event.timeStamp)) {
      this.#panButton = button;
    } else if (isMouse && button !== 0) {
      return;
    }
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
    if (event.pointerType === 'mouse') this.#panButton = null;
  }

  #turned(event) {
    event.preventDefault();
    const turned = event.deltaY / notches[event.deltaMode];
    // A touchpad's pinch arrives as a wheel with the control key.
    const factor = event.ctrlKey ? Math.exp(-turned) : notchFactor ** -turned;
    this.#target.zoom(this.#placeOf(event), factor, event.timeStamp);
  }

  #tell(phase, event) {
    const place = this.#placeOf(event);
    if (this.#panButton === null || event.pointerType !== 'mouse') {
      this.#target.fingers(phase, [{ id: event.pointerId, ...place }], event.timeStamp);
    } else if (phase !== Phase.began) {
      this.#target.pan(phase, this.#panButton, place, event.timeStamp);
    }
  }

  #placeOf(event) {
    const box = this.#element.getBoundingClientRect();
    return { x: (event.clientX - box.left) / box.width, y: (event.clientY - box.top) / box.height };
  }
}
