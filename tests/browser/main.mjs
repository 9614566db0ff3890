import './canvas.mjs';
import './device.mjs';
import './phone.mjs';
import './scenarios.mjs';
