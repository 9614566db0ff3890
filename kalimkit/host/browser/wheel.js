// What a wheel or a touchpad does: it zooms, or moves what is below the pointer.

// A wheel's pixels and lines that are a notch, how much a notch enlarges, and how many points it moves.
const notches = { 0: 100, 1: 3, 2: 1 };
const notchFactor = 1.15;
const notchDistance = 60;
// The least part of a notch that a wheel turns at once.
const smallestNotch = 0.4;
// How long, in milliseconds, what has begun as a touchpad's scrolling goes on without an event.
const mostPause = 200;
let lastOfTouchpad = -Infinity;

// Only a touchpad goes two ways at once, or begins with less than a notch.
function isTouchpad({ deltaMode, deltaX, deltaY, shiftKey, timeStamp }) {
  if (deltaMode !== 0 || shiftKey) return false;
  const begins = deltaX !== 0 || Math.abs(deltaY) < smallestNotch * notches[0];
  const goesOn = timeStamp - lastOfTouchpad < mostPause;
  if (begins || goesOn) lastOfTouchpad = timeStamp;
  return begins || goesOn;
}

// Answers with { factor, distance }: how much larger things become, 1 for none, and by how many points they move, to
// the right and down, which is null for a pinch.
export function readWheel(event) {
  const hasKey = event.ctrlKey || event.metaKey;
  const turned = event.deltaY / notches[event.deltaMode];
  // A touchpad's pinch arrives as a wheel with the control key, in small steps.
  const isPinch = event.ctrlKey && Math.abs(turned) < smallestNotch;
  if (isPinch) return { factor: Math.exp(-turned), distance: null };
  const unit = event.deltaMode === 0 ? 1 : notchDistance / notches[event.deltaMode];
  // Some browsers turn a wheel with the shift key sideways by themselves.
  const isSideways = event.shiftKey && !event.deltaX;
  const distance = isSideways ? { x: -event.deltaY * unit, y: 0 } :
    { x: -event.deltaX * unit, y: -event.deltaY * unit };
  const zooms = hasKey || !(event.shiftKey || isTouchpad(event));
  return { factor: zooms ? notchFactor ** -turned : 1, distance };
}
