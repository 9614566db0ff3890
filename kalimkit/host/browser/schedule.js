// When the module is called again: its clock, and frames and timers of the page.

// What is due sooner than this, in seconds, waits for the next frame.
const nearFrame = 0.02;
// Ticks of the library's clock and frames of the screen drift apart; one that is nearly due is done.
const frameTolerance = 0.005;
// How late, in seconds, something may be done. The clock stands still for longer delays, as those of a
// computer that has slept, or all that was missed would be done at once.
const mostLate = 1;

export class Schedule {
  #target;
  #start = performance.now();
  #frame = 0;
  #timer = 0;
  #isPaused = false;

  // target: advance(time), in seconds, and nextDue(), the time when something is to be done, below zero
  // for never.
  constructor(target) {
    this.#target = target;
  }

  // Makes seconds of milliseconds as those of performance.now().
  timeAt(milliseconds) {
    const time = (milliseconds - this.#start) / 1000;
    const due = this.#target.nextDue();
    const late = due < 0 ? 0 : time - due - mostLate;
    if (late <= 0) return time;
    this.#start += late * 1000;
    return due + mostLate;
  }

  // Frames are asked for only while something moves or waits to be shown.
  plan() {
    clearTimeout(this.#timer);
    this.#timer = 0;
    const due = this.#target.nextDue();
    if (due < 0 || this.#frame || this.#isPaused) return;
    const delay = due - (performance.now() - this.#start) / 1000;
    if (delay < nearFrame) {
      this.#frame = requestAnimationFrame((time) => {
        this.#frame = 0;
        this.#target.advance(this.timeAt(time) + frameTolerance);
      });
    } else {
      this.#timer = setTimeout(
        () => this.#target.advance(this.timeAt(performance.now())), delay * 1000);
    }
  }

  // Nothing is done meanwhile, and what was due then is done late.
  pause(isPaused) {
    this.#isPaused = isPaused;
    if (isPaused) this.stop();
    else this.plan();
  }

  stop() {
    cancelAnimationFrame(this.#frame);
    this.#frame = 0;
    clearTimeout(this.#timer);
  }
}
