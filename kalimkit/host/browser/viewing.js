// Fingers and the mouse on a picture that is only looked at: one moves it, two zoom, too.

import { Phase } from './phase.js';

const middleButton = 1;

// Between all places, and how far they are from there.
function middleOf(places) {
  const x = places.reduce((sum, place) => sum + place.x, 0) / places.length;
  const y = places.reduce((sum, place) => sum + place.y, 0) / places.length;
  return { x, y, spread: places.reduce((sum, place) => sum + Math.hypot(place.x - x, place.y - y), 0) };
}

export class Viewing {
  #target;
  #places = new Map();
  #before = null;

  // target: pan(phase, button, place, time) and zoom(place, factor, distance, time), as that of Pointers.
  constructor(target) {
    this.#target = target;
  }

  began(id, place, time) {
    this.#end(time);
    this.#places.set(id, place);
    this.#begin(time);
  }

  moved(id, place, time) {
    if (!this.#places.has(id)) return;
    this.#places.set(id, place);
    const middle = middleOf([...this.#places.values()]);
    this.#target.pan(Phase.moved, middleButton, middle, time);
    if (this.#before.spread > 0 && middle.spread > 0) {
      this.#target.zoom(middle, middle.spread / this.#before.spread, null, time);
    }
    this.#before = middle;
  }

  lifted(id, time) {
    this.#end(time);
    this.#places.delete(id);
    this.#begin(time);
  }

  cancel(time) {
    this.#end(time);
    this.#places.clear();
  }

  #begin(time) {
    if (!this.#places.size) return;
    this.#before = middleOf([...this.#places.values()]);
    this.#target.pan(Phase.began, middleButton, this.#before, time);
  }

  #end(time) {
    if (this.#places.size) this.#target.pan(Phase.ended, middleButton, this.#before, time);
  }
}
