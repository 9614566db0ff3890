// What a page is told of: found by holding the editor's state against the one before.

import { colorText, penName } from './choices.js';

// This holds without a picture.
export const closedState = {
  undoDepth: 0,
  redoDepth: 0,
  toolCount: 0,
  picture: 0,
  selectionCount: 0,
  firstSelected: -1,
  canUndo: false,
  canRedo: false,
  isResting: true,
  isEditing: false,
  isAsking: false,
  tool: null,
};

// state.cpp puts the numbers in this order.
export function readState(doubles, at) {
  const [undoDepth, redoDepth, toolCount, flags, picture, pen, color, lineWidth, selectionCount,
    firstSelected] = doubles.subarray(at >>> 3, (at >>> 3) + 10);
  const has = (bit) => (flags & bit) !== 0;
  return {
    undoDepth,
    redoDepth,
    toolCount,
    picture,
    selectionCount,
    firstSelected,
    canUndo: has(1),
    canRedo: has(2),
    // No gesture or text is in the middle of a step.
    isResting: has(4),
    isEditing: has(8),
    isAsking: has(16),
    // Null until the editor has appeared.
    tool: has(32) ? { tool: penName(pen), color: colorText(color), lineWidth } : null,
  };
}

const textOf = ({ undoDepth, redoDepth, toolCount, canUndo, canRedo, picture }) =>
  [undoDepth, redoDepth, toolCount, canUndo, canRedo, picture].join();

export class News {
  #target;
  #state = closedState;
  #steps = textOf(closedState);
  // Counts finished steps; what was sent, or opened, was so at one of them.
  #step = 0;
  #sentStep = 0;
  // A picture was opened whose step is not known yet.
  #isOpened = false;
  // Of what is being sent: null until its step is known, undefined while nothing is.
  #sendingStep = undefined;
  #selection = '0,-1';
  #tool = null;

  // target: tell(type, detail), and givenAs(id), what the page or the user gave as this picture;
  // undefined for one that the editor has made.
  constructor(target) {
    this.#target = target;
  }

  get state() {
    return this.#state;
  }

  // Counts the steps that have come to their end.
  get step() {
    return this.#step;
  }

  // Whether something would be lost that was neither sent nor saved: not where all is as it was opened.
  get isUnsent() {
    const { toolCount, undoDepth, isEditing } = this.#state;
    if (isEditing && toolCount > 0) return true;
    return undoDepth > 0 && this.#step !== this.#sentStep;
  }

  look(state) {
    const before = this.#state;
    this.#state = state;
    const given = state.picture !== before.picture && this.#target.givenAs(state.picture);
    if (given) this.#target.tell('open', given);
    // What was begun before is as unsent as it was then.
    if (given?.isBegun) this.#sentStep = -1;
    this.#isOpened ||= Boolean(given && !given.isBegun);
    this.#lookAtSteps();
    this.#lookAtSelection();
    this.#lookAtTool();
  }

  // The picture is on its way; what is drawn from now on is not in it.
  sending() {
    this.#sendingStep = null;
  }

  // It has arrived, or not.
  sent(isDone) {
    const step = this.#sendingStep ?? this.#step;
    this.#sendingStep = undefined;
    if (isDone) this.saved(step);
  }

  // All up to this step is kept elsewhere.
  saved(step) {
    if (step === this.#sentStep) return;
    this.#sentStep = step;
    this.#target.tell('change');
  }

  #lookAtSteps() {
    if (!this.#state.isResting) return;
    const steps = textOf(this.#state);
    if (steps !== this.#steps) {
      this.#steps = steps;
      ++this.#step;
      if (this.#isOpened) this.#sentStep = this.#step;
      this.#isOpened = false;
      this.#target.tell('change');
    }
    if (this.#sendingStep === null) this.#sendingStep = this.#step;
  }

  #lookAtSelection() {
    const { selectionCount: count, firstSelected } = this.#state;
    const selection = `${count},${firstSelected}`;
    if (selection === this.#selection) return;
    this.#selection = selection;
    this.#target.tell('select', { count });
  }

  // The first pen of all is no change.
  #lookAtTool() {
    const { tool } = this.#state;
    if (!tool) return;
    const before = this.#tool;
    this.#tool = tool;
    const isOther = before && Object.keys(tool).some((name) => tool[name] !== before[name]);
    if (isOther) this.#target.tell('tool', tool);
  }
}
