// Pointer events of an element as fingers: each pointer that goes down on it is a finger until it
// lifts, wherever it goes. A mouse is one while its main button is down, unless the editor pans with it.

import { contentBox, placeBetween } from './box.js';

export const Phase = { began: 0, moved: 1, ended: 2, cancelled: 3 };

// A wheel's pixels and lines that are a notch, and how much a notch enlarges.
const notches = { 0: 100, 1: 3, 2: 1 };
const notchFactor = 1.15;
// The least part of a notch that a wheel turns at once.
const smallestNotch = 0.4;
// What PointerEvent.buttons holds for a button: main, middle, another.
const buttonBits = [1, 4, 2];

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

  // target: fingers(phase, [{ time, id, x, y }]), in the order of what happened, pan(phase, button,
  // place, time), which answers whether the editor pans with the mouse, and zoom(place, factor, time).
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
    on('pointerdown', (event) => this.#began(event));
    on('pointermove', (event) => {
      if (this.#down.has(event.pointerId)) this.#moved(event);
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
    const fingers = [...this.#down].map((id) => ({ time, id, ...place }));
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
      this.#button = Math.min(event.button, 2);
      this.#isPanning =
        this.#target.pan(Phase.began, this.#button, this.#placeOf(event), event.timeStamp);
      if (!this.#isPanning && this.#button !== 0) return;
    }
    this.#down.add(event.pointerId);
    // A pointer that is gone already, as one made by a script, cannot be captured.
    try {
      this.#element.setPointerCapture(event.pointerId);
    } catch (error) {
      if (error.name !== 'NotFoundError') throw error;
    }
    this.#tell(Phase.began, [event]);
  }

  // Browsers gather moves for one frame; a drawn line needs all of them. A mouse whose other buttons are
  // still down moves when the one that counts lifts.
  #moved(event) {
    if (event.pointerType === 'mouse' && !(event.buttons & buttonBits[this.#button])) {
      this.#lifted(event, Phase.ended);
      return;
    }
    const gathered = event.getCoalescedEvents?.() ?? [];
    this.#tell(Phase.moved, gathered.length ? gathered : [event]);
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
    const turned = event.deltaY / notches[event.deltaMode];
    // A touchpad's pinch arrives as a wheel with the control key, in small steps.
    const isPinch = event.ctrlKey && Math.abs(turned) < smallestNotch;
    const factor = isPinch ? Math.exp(-turned) : notchFactor ** -turned;
    this.#target.zoom(this.#placeOf(event), factor, event.timeStamp);
  }

  // What one event of the page brings, of one pointer.
  #tell(phase, events) {
    const last = events.at(-1);
    if (!this.#isPanning || last.pointerType !== 'mouse') {
      this.#target.fingers(phase, events.map((event) =>
        ({ time: event.timeStamp, id: event.pointerId, ...this.#placeOf(event) })));
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
