// Saves one picture beside the page, see run.js. Tells first that it is there.

import { runSaving } from './run.js';

self.onmessage = async ({ data }) => {
  try {
    const saved = await runSaving(data);
    self.postMessage({ saved }, [saved.bytes.buffer]);
  } catch (error) {
    // The page goes on with the pixels.
    self.postMessage({ error: error.message, result: data.result }, [data.result.pixels.buffer]);
  }
};
self.postMessage({});
