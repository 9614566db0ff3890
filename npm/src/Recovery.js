// What becomes of an element's unfinished work when the page goes, and when it comes again.

import { Works } from '../../kalimkit/host/browser/works.js';
import { titleOf } from './loading.js';

export class Recovery {
  #target;
  #key = null;
  #works = null;
  // Whether a work of before is gone on with instead of what has been asked for: a promise while that is not
  // known yet.
  #goingOn = null;
  // Counts what has been begun here; what belongs to an earlier number is not wanted any more.
  #run = 0;

  // target: tell(detail), which answers whether the host lets a work be gone on with, goOn(work), which opens it,
  // and warn(error).
  constructor(target) {
    this.#target = target;
  }

  // Of an element that is in its document, with the key that it has by the end of the task. Looks for a work.
  start(keyOf) {
    if (this.#goingOn) return;
    const run = ++this.#run;
    const goingOn = this.#look(run, keyOf).catch((error) => {
      this.#target.warn(error);
      return false;
    }).finally(() => {
      if (this.#goingOn === goingOn) this.#goingOn = null;
    });
    this.#goingOn = goingOn;
  }

  get isLooking() {
    return this.#goingOn !== null;
  }

  // Whoever has asked for something else finds out whether to leave it.
  async isGoingOn() {
    return Boolean(await this.#goingOn);
  }

  get works() {
    return this.#works;
  }

  // The element has left its document, and come back.
  pause() {
    this.#works?.close();
  }

  resume() {
    this.#works?.reopen();
  }

  // The element lets go of its editor; what is drawn may be gone on with, later or in another place.
  leave() {
    ++this.#run;
    this.#goingOn = null;
    this.#works?.leave();
  }

  // Nobody wants what is drawn any more.
  discard() {
    this.#works?.restart();
  }

  // Another element may have the key.
  stop() {
    this.leave();
    this.#works?.close();
    this.#works = null;
    this.#key = null;
  }

  async #look(run, keyOf) {
    await null;
    const key = keyOf();
    if (run !== this.#run || key === this.#key) return false;
    this.#works?.close();
    this.#works = null;
    this.#key = key;
    if (key === null) return false;
    const works = new Works(key, (error) => this.#target.warn(error));
    await works.open();
    if (run !== this.#run) {
      works.close();
      return false;
    }
    this.#works = works;
    const found = await works.find();
    if (!found || run !== this.#run) return false;
    const detail = { name: titleOf(found).name, began: new Date(found.began), steps: found.steps };
    if (!this.#target.tell(detail) || run !== this.#run) return false;
    return this.#target.goOn(await works.read(found.id));
  }
}
