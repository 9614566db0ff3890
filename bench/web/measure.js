import * as peers from './peers.js';
import { photoFile, steps } from './scene.js';

const median = (values) => [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];

// Reading a pixel waits until everything that was asked of a canvas is drawn.
function rasterise(canvases) {
  for (const canvas of canvases) canvas.getContext('2d').getImageData(0, 0, 1, 1);
}

// Runs the work; the milliseconds of the script, and of script and raster.
function timed(work, canvases) {
  const start = performance.now();
  work();
  const script = performance.now() - start;
  rasterise(canvases());
  return { script, all: performance.now() - start };
}

// Drags with the peer of this name and answers with milliseconds, the medians of the steps.
window.measure = async (name) => {
  const stage = await peers[name](document.getElementById('stage'), await photoFile());
  rasterise(stage.canvases());
  const moves = [];
  for (let step = 6; step <= steps; ++step) {
    // One step a frame, as a display has it.
    await new Promise(requestAnimationFrame);
    moves.push(timed(() => stage.move(step), stage.canvases));
  }
  const drop = timed(() => stage.drop(), stage.canvasesOfDrop ?? stage.canvases);
  return {
    script: median(moves.map((move) => move.script)),
    all: median(moves.map((move) => move.all)),
    drop: drop.all,
  };
};
