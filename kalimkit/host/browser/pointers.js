// Pointer events of an element as fingers: each pointer that goes down on it is a finger until it
// lifts, wherever it goes. A mouse is one while its main button is down, unless the editor pans with it.

import { contentBox, placeBetween } from './box.js';
import { Phase } from './phase.js';
import { readWheel } from './wheel.js';

// What PointerEvent.buttons holds for a button: main, middle, another.
const buttonBits = [1, 4, 2];
const menuButton = 2;
const kinds = ['touch', 'pen', 'mouse'];

// Kind, width of what is touched, pressure, which only pens measure, and how far the pen leans.
function contactOf({ pointerType, width, height, pressure, tiltX, tiltY }) {
  const kind = Math.max(kinds.indexOf(pointerType), 0);
  return [kind, Math.max(width, height), kind === 1 ? pressure : -1, tiltX ?? 0, tiltY ?? 0];
}

export class Pointers {
  #element;
  #target;
  #down = new Set();
  // The button that the mouse went down with, and whether the editor pans with it.
  #button = 0;
  #isPanning = false;
  #listening = new AbortController();
  // Of what is around the element.
  #watching;

  // target: fingers(phase, [{ time, id, x, y, contact }], predicted), in the order of what happened, with contact as
  // contactOf() says and predicted being where the last of them is about to be, pan(phase, button,
  // place, time), which answers whether the editor pans with the mouse, hover(place, time) and left() of a pointer
  // that hovers, menu(place, time), and zoom(place, factor, distance, time) and scroll(place, distance, time) of a
  // wheel, see readWheel(). held are the keys that are held.
  // x and y go from 0 to 1 over the element's content; buttons are 0 main, 1 middle, 2 another;
  // milliseconds as performance.now(). isHeld() tells whether fingers wait: none goes down then;
  // leavesWheel() whether a wheel without the control key is the page's; corners(), if there is one,
  // where the content's corners are.
  constructor(element, target) {
    this.#element = element;
    this.#target = target;
    const { signal } = this.#listening;
    const on = (type, listener, options) =>
      element.addEventListener(type, listener, { signal, ...options });
    on('pointerdown', (event) => {
      target.held.look(event);
      this.#began(event);
    });
    on('pointermove', (event) => {
      target.held.look(event);
      if (this.#down.has(event.pointerId)) this.#moved(event);
      if (event.pointerType !== 'touch') target.hover(this.#placeOf(event), event.timeStamp);
    });
    on('pointerleave', (event) => {
      if (event.pointerType !== 'touch') target.left();
    });
    on('pointerup', this.#lift(Phase.ended));
    on('pointercancel', this.#lift(Phase.cancelled));
    on('lostpointercapture', this.#lift(Phase.cancelled));
    on('wheel', (event) => this.#turned(event), { passive: false });
    // The focus stays with the text that is edited; a long press is the canvas's own.
    for (const type of ['mousedown', 'contextmenu']) on(type, (event) => event.preventDefault());
    element.style.touchAction = 'none';
    element.style.userSelect = 'none';
    element.style.webkitUserSelect = 'none';
    element.style.webkitTouchCallout = 'none';
    this.watchDocument();
  }

  // An element that is taken out of its document hears of nothing. Until leaveDocument(), after which it may
  // be called again.
  watchDocument() {
    this.#watching = new AbortController();
    const { signal } = this.#watching;
    document.addEventListener('lostpointercapture', this.#lift(Phase.cancelled), { signal });
    document.addEventListener('visibilitychange', () => {
      if (document.hidden) this.cancel();
    }, { signal });
  }

  leaveDocument() {
    this.#watching.abort();
  }

  stop() {
    this.#listening.abort();
    this.leaveDocument();
  }

  #lift(phase) {
    return (event) => {
      if (this.#down.has(event.pointerId)) this.#lifted(event, phase);
    };
  }

  // Of all fingers, whose end nobody will hear of.
  cancel() {
    const time = performance.now();
    const place = { x: 0, y: 0 };
    const contact = [0, 0, -1, 0, 0];
    const fingers = [...this.#down].map((id) => ({ time, id, ...place, contact }));
    this.#down.clear();
    if (!fingers.length) return;
    if (this.#isPanning) this.#target.pan(Phase.ended, this.#button, place, time);
    this.#isPanning = false;
    this.#target.fingers(Phase.cancelled, fingers);
  }

  // One that goes down twice has lifted where nobody heard of it.
  #began(event) {
    if (this.#down.has(event.pointerId)) this.#lifted(event, Phase.cancelled);
    if (this.#target.isHeld()) return;
    if (event.pointerType === 'mouse') {
      if (event.button === menuButton) return this.#target.menu(this.#placeOf(event), event.timeStamp);
      this.#button = Math.min(event.button, 2);
      this.#isPanning =
        this.#target.pan(Phase.began, this.#button, this.#placeOf(event), event.timeStamp);
      if (!this.#isPanning && this.#button !== 0) return;
    }
    this.#catch(event);
    this.#tell(Phase.began, [event]);
  }

  // Wherever it goes until it lifts.
  #catch(event) {
    this.#down.add(event.pointerId);
    // A pointer that is gone already, as one made by a script, cannot be captured.
    try {
      this.#element.setPointerCapture(event.pointerId);
    } catch (error) {
      if (error.name !== 'NotFoundError') throw error;
    }
  }

  // Browsers gather moves for one frame; a drawn line needs all of them. A mouse whose other buttons are
  // still down moves when the one that counts lifts.
  #moved(event) {
    if (event.pointerType === 'mouse' && !(event.buttons & buttonBits[this.#button])) {
      this.#lifted(event, Phase.ended);
      return;
    }
    const gathered = event.getCoalescedEvents?.() ?? [];
    const foreseen = event.pointerType === 'mouse' ? [] : event.getPredictedEvents?.() ?? [];
    const [first = event] = gathered;
    // Browsers guess wildly at times: it is foreseen no further than it came in this frame.
    const way = ({ clientX, clientY }) => Math.hypot(clientX - event.clientX, clientY - event.clientY);
    this.#tell(Phase.moved, gathered.length ? gathered : [event],
      foreseen.filter((one) => way(one) <= way(first)));
  }

  #lifted(event, phase) {
    this.#down.delete(event.pointerId);
    this.#tell(phase, [event]);
    if (event.pointerType === 'mouse') this.#isPanning = false;
  }

  #turned(event) {
    const hasKey = event.ctrlKey || event.metaKey;
    if (this.#target.leavesWheel() && !hasKey) return;
    event.preventDefault();
    if (this.#target.isHeld()) return;
    const { factor, distance } = readWheel(event);
    const place = this.#placeOf(event);
    if (factor === 1 && distance) this.#target.scroll(place, distance, event.timeStamp);
    else this.#target.zoom(place, factor, distance, event.timeStamp);
  }

  // What one event of the page brings, of one pointer.
  #tell(phase, events, foreseen = []) {
    const last = events.at(-1);
    const fingerOf = (event) => ({ time: event.timeStamp, id: event.pointerId,
      ...this.#placeOf(event), contact: contactOf(event) });
    if (!this.#isPanning || last.pointerType !== 'mouse') {
      this.#target.fingers(phase, events.map(fingerOf), foreseen.map(fingerOf));
    } else if (phase !== Phase.began) {
      this.#target.pan(phase, this.#button, this.#placeOf(last), last.timeStamp);
    }
  }

  #placeOf(event) {
    const corners = this.#target.corners?.();
    const between = corners && placeBetween(corners, { x: event.clientX, y: event.clientY });
    if (between) return between;
    const box = contentBox(this.#element);
    return {
      x: (event.clientX - box.left) / box.shownWidth,
      y: (event.clientY - box.top) / box.shownHeight,
    };
  }
}
