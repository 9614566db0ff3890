// The keys that change what a drag does for as long as they are held.

export class HeldKeys {
  #tell;
  #space = false;
  #told = '';

  // tell(shift, alt, control, space), at every change. A Mac's command key counts as control.
  constructor(tell) {
    this.#tell = tell;
  }

  // What an event of the pointer or the keyboard says.
  look({ shiftKey, altKey, ctrlKey, metaKey }) {
    this.#look(shiftKey, altKey, ctrlKey || metaKey);
  }

  press(event) {
    if (event.key === ' ') this.#space = true;
    this.look(event);
  }

  release(event) {
    if (event.key === ' ') this.#space = false;
    this.look(event);
  }

  // Of what is released elsewhere nobody hears.
  forget() {
    this.#space = false;
    this.#look(false, false, false);
  }

  #look(...keys) {
    const held = [...keys, this.#space];
    if (held.join() === this.#told || (!this.#told && !held.some(Boolean))) return;
    this.#told = held.join();
    this.#tell(...held);
  }
}
