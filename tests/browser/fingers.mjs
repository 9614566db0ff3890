// Fingers on a page, real touches through the browser's own input.
export class Fingers {
  #session;

  constructor(session) {
    this.#session = session;
  }

  static async on(page) {
    return new Fingers(await page.context().newCDPSession(page));
  }

  // Points of all fingers that are down, [x, y] in pixels of the page.
  async #send(type, points) {
    await this.#session.send('Input.dispatchTouchEvent', {
      type,
      touchPoints: points.map(([x, y], id) => ({ x, y, id })),
    });
  }

  async tap(point) {
    await this.#send('touchStart', [point]);
    await this.#send('touchEnd', []);
  }

  // One finger through all points.
  async drag(points) {
    await this.#send('touchStart', [points[0]]);
    for (const point of points.slice(1)) await this.#send('touchMove', [point]);
    await this.#send('touchEnd', []);
  }

  // Two fingers, the second a little later; paths(t) is where they are, t from 0 to 1.
  async together(paths, steps = 20) {
    await this.#send('touchStart', [paths(0)[0]]);
    await this.#send('touchStart', paths(0));
    for (let i = 1; i <= steps; ++i) await this.#send('touchMove', paths(i / steps));
    await this.#send('touchEnd', [paths(1)[1]]);
    await this.#send('touchEnd', []);
  }

  // As an input method does: what it shows on the way, and what becomes of it.
  async compose(onTheWay, text) {
    for (const shown of onTheWay) {
      await this.#session.send('Input.imeSetComposition', {
        text: shown,
        selectionStart: shown.length,
        selectionEnd: shown.length,
      });
    }
    await this.#session.send('Input.insertText', { text });
  }
}
