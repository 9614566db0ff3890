import './scenarios.mjs';
