import './canvas.mjs';
import './device.mjs';
import './scenarios.mjs';
