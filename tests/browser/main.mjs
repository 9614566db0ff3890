import './device.mjs';
import './scenarios.mjs';
