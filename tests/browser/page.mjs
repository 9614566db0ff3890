// A page in a browser as its user has it: real fingers, a mouse, keys, an input method.

import { mkdtemp, readFile, readdir, rm, stat } from 'node:fs/promises';
import { join } from 'node:path';
import { env } from 'node:process';
import { setTimeout as pause } from 'node:timers/promises';

import { build, fonts, serve } from './server.mjs';
import { launch, until } from './webdriver.mjs';

export const browserName = env.KALIM_BROWSER ?? 'chromium';
// WebKitGTK's driver knows neither: there the first finger is the mouse.
export const hasFingers = browserName !== 'webkit';

const phone = { width: 390, height: 844 };
const density = 3;
const keys = {
  Control: '\ue009', Escape: '\ue00c', Backspace: '\ue003', ArrowLeft: '\ue012', Delete: '\ue017', Enter: '\ue007',
  Tab: '\ue004', Shift: '\ue008', ArrowRight: '\ue014', End: '\ue010',
};

const moveTo = ([x, y]) => ({ type: 'pointerMove', duration: 0, x: Math.round(x), y: Math.round(y) });
const down = { type: 'pointerDown', button: 0 };
const up = { type: 'pointerUp', button: 0 };
const wait = { type: 'pause', duration: 0 };

function pointer(id, pointerType, actions) {
  return { type: 'pointer', id, parameters: { pointerType }, actions };
}

// Two actions for each step: to a place, and down or up there.
function fingerActions(steps, finger) {
  return [...steps, []].flatMap((step, i) => {
    const wasDown = Boolean(steps[i - 1]?.[finger]);
    if (!step[finger]) return [wasDown ? up : wait, wait];
    return [moveTo(step[finger]), wasDown ? wait : down];
  });
}

export class Page {
  // One of its own, emptied in the end.
  folder;
  #browser;
  #server;

  // Starts a browser with a page as large as a phone's, where that is possible.
  // said(text) hears what its pages fetch from /said/.
  static async open(said) {
    const page = new Page();
    page.folder = await mkdtemp(join(build, `${browserName}-`));
    page.#browser = await launch(browserName, { folder: page.folder, fonts });
    page.#server = await serve(said);
    await page.resize(phone.width, phone.height);
    return page;
  }

  // Kills the browser, and starts it again with what it has kept.
  async restart() {
    await this.#browser.kill();
    this.#browser = await launch(browserName, { folder: this.folder, fonts });
    await this.resize(phone.width, phone.height);
  }

  // The browser reaches nothing any more that it has not kept.
  stopServer() {
    this.#server.close();
  }

  async close() {
    await this.#browser.end();
    this.#server.close();
    await rm(this.folder, { recursive: true, maxRetries: 10 });
  }

  async resize(width, height, scale = density) {
    if (browserName !== 'chromium') return this.#browser.send('SetWindowRect', { width, height });
    const screen = { width, height, deviceScaleFactor: scale, mobile: true };
    await this.#sendToChromium('Emulation.setDeviceMetricsOverride', screen);
    await this.#sendToChromium('Emulation.setTouchEmulationEnabled', { enabled: true });
  }

  // As a desktop's window, with a mouse, that looks so: { 'prefers-color-scheme': 'dark' }.
  async widen(width, height, scale, looks = {}) {
    const screen = { width, height, deviceScaleFactor: scale, mobile: false };
    const features = Object.entries(looks).map(([name, value]) => ({ name, value }));
    await this.#sendToChromium('Emulation.setTouchEmulationEnabled', { enabled: false });
    await this.#sendToChromium('Emulation.setDeviceMetricsOverride', screen);
    await this.#sendToChromium('Emulation.setEmulatedMedia', { features });
  }

  // A PNG of what is seen.
  async screenshot() {
    return Buffer.from(await this.#browser.send('TakeScreenshot', {}), 'base64');
  }

  // Points by side that a phone's camera and corners take up, in pages that are opened from now on.
  setSafeArea(insets) {
    return this.#sendToChromium('Emulation.setSafeAreaInsetsOverride', { insets });
  }

  // Of all that nothing refers to any more.
  collectGarbage() {
    return this.#sendToChromium('HeapProfiler.collectGarbage', {});
  }

  goto(path) {
    return this.#browser.send('Navigate', { url: this.#server.url + path });
  }

  // Calls the function in the page with these values, which go as JSON, as its answer does.
  async evaluate(work, ...values) {
    const script = `const [values, done] = arguments;
      Promise.resolve(values).then((all) => (${work})(...all))
        .then((value) => done({ value }), (error) => done({ error: error + '\\n' + error.stack }));`;
    const { value, error } =
      await this.#browser.send('ExecuteAsyncScript', { script, args: [values] });
    if (error) throw new Error(error);
    return value;
  }

  waitFor(question, ...values) {
    return until(() => this.evaluate(question, ...values), question);
  }

  // Role, name and states of all that Chromium tells an assistive technology, but for mere texts.
  async accessibilityTree() {
    await this.#sendToChromium('Accessibility.enable', {});
    const { nodes } = await this.#sendToChromium('Accessibility.getFullAXTree', {});
    const byId = new Map(nodes.map((node) => [node.nodeId, node]));
    const states = ['checked', 'disabled', 'pressed'];
    const lines = [];
    const walk = ({ ignored, role, name, properties = [], childIds = [] }) => {
      if (!ignored && !['generic', 'none', 'StaticText', 'InlineTextBox'].includes(role.value)) {
        const held = properties.filter((state) => states.includes(state.name) &&
          ![false, 'false'].includes(state.value.value));
        lines.push([role.value, name.value, held.map((state) => state.name).join()]);
      }
      for (const child of childIds) if (byId.has(child)) walk(byId.get(child));
    };
    walk(nodes[0]);
    return lines;
  }

  // What has gone wrong without anybody asking, since the last time.
  complaints() {
    return this.evaluate(() => window.watched.complaints.splice(0));
  }

  // ---- what the user does; places are [x, y] in pixels of the page

  // Steps say where all fingers are, in their order; those that a step has no more have lifted.
  touch(...steps) {
    if (!hasFingers) return this.#act(pointer('mouse', 'mouse', fingerActions(steps, 0)));
    const count = Math.max(...steps.map((step) => step.length));
    return this.#act(...Array.from({ length: count }, (_, finger) =>
      pointer(`finger ${finger}`, 'touch', fingerActions(steps, finger))));
  }

  // A pen in Chromium, which comes down at the first step and lifts at the last: { x, y, force, tiltX, tiltY, at }, the
  // last in milliseconds since the first.
  async pen(steps) {
    const { send, close } = await this.#browser.devtools();
    const sent = [];
    const report = (type, { at, ...step }) => sent.push(send('Input.dispatchMouseEvent',
      { type, ...step, button: 'left', buttons: type === 'mouseReleased' ? 0 : 1, clickCount: 1, pointerType: 'pen' }));
    report('mousePressed', steps[0]);
    const start = performance.now();
    for (const step of steps.slice(1)) {
      while (performance.now() - start < step.at) await pause(1);
      report('mouseMoved', step);
    }
    report('mouseReleased', steps.at(-1));
    await Promise.all(sent);
    close();
  }

  // With a button of the mouse, through these places.
  drag(button, ...places) {
    const press = (type) => ({ type, button: ['main', 'middle'].indexOf(button) });
    return this.#act(pointer('mouse', 'mouse',
      [moveTo(places[0]), press('pointerDown'), ...places.slice(1).map(moveTo), press('pointerUp')]));
  }

  // The mouse, pressed or not, goes there.
  hover(place) {
    return this.#act(pointer('mouse', 'mouse', [moveTo(place)]));
  }

  hold(place) {
    return this.#act(pointer('mouse', 'mouse', [moveTo(place), down]));
  }

  letGo() {
    return this.#act(pointer('mouse', 'mouse', [up]));
  }

  // Pixels, downwards. Chromium takes the driver's for those of the screen that it pretends to have.
  wheel([x, y], deltaY) {
    const place = { x: Math.round(x), y: Math.round(y) };
    const turn = { type: 'scroll', ...place, deltaX: 0, deltaY: deltaY * density, duration: 0 };
    return this.#act({ type: 'wheel', id: 'wheel', actions: [turn] });
  }

  type(text) {
    const strokes = [...text].flatMap((value) =>
      [{ type: 'keyDown', value }, { type: 'keyUp', value }]);
    return this.#act({ type: 'key', id: 'keys', actions: strokes });
  }

  // As "Control+z".
  press(combination) {
    const values = combination.split('+').map((name) => keys[name] ?? name);
    const strokes = (type, all) => all.map((value) => ({ type, value }));
    return this.#act({
      type: 'key',
      id: 'keys',
      actions: [...strokes('keyDown', values), ...strokes('keyUp', values.reverse())],
    });
  }

  // As an input method does: what it shows on the way, and what becomes of it, nothing for not yet. In
  // Chromium it may begin with a part of the text that is there.
  async compose(onTheWay, text, replaced = []) {
    if (browserName === 'firefox') return this.#composeInFirefox(onTheWay, text);
    if (browserName === 'webkit') return this.type(text);
    const [replacementStart, replacementEnd] = replaced;
    for (const [i, shown] of onTheWay.entries()) {
      const range = i === 0 && replaced.length ? { replacementStart, replacementEnd } : {};
      await this.#sendToChromium('Input.imeSetComposition',
        { text: shown, selectionStart: shown.length, selectionEnd: shown.length, ...range });
    }
    if (text !== undefined) await this.#sendToChromium('Input.insertText', { text });
  }

  // The function finds the field in the page.
  async chooseFile(find, file) {
    const element = await this.evaluate(find);
    await this.#browser.send('ElementSendKeys', { element, text: file });
  }

  // Takes the file of this name that the page has given the user, as soon as it is there.
  async download(name) {
    const place = join(this.folder, 'downloads');
    const file = join(place, name);
    // Some browsers make it empty at first, and write one with another name beside it.
    await until(async () => (await readdir(place)).join() === name && (await stat(file)).size > 0, name);
    const bytes = await readFile(file);
    await rm(file);
    return bytes;
  }

  #act(...actions) {
    return this.#browser.send('PerformActions', { actions });
  }

  #sendToChromium(cmd, params) {
    return this.#browser.send('Chromium:Send', { cmd, params });
  }

  async #composeInFirefox(onTheWay, text) {
    await this.#browser.send('Marionette:SetContext', { value: 'chrome' });
    await this.#browser.send('ExecuteScript', {
      script: `const [onTheWay, text] = arguments;
        const method = Cc['@mozilla.org/text-input-processor;1'].createInstance(Ci.nsITextInputProcessor);
        method.beginInputTransactionForTests(window);
        for (const shown of onTheWay) {
          method.setPendingCompositionString(shown);
          method.appendClauseToPendingComposition(shown.length, method.ATTR_RAW_CLAUSE);
          method.setCaretInPendingComposition(shown.length);
          method.flushPendingComposition();
        }
        if (text !== null) method.commitCompositionWith(text);`,
      args: [onTheWay, text ?? null],
    });
    await this.#browser.send('Marionette:SetContext', { value: 'content' });
  }
}
