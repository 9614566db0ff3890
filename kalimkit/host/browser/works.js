// Works that survive the page: what is drawn is kept in IndexedDB step by step, and removed once it was sent or
// discarded. The database `kalimkit` holds in `works` what each began with, { id, key, name, mediaType, file,
// setUp, began }, and in `steps` one text a step, { work, number, text }, beside them with the number -1 how often
// it was tried to go on with the work without knowing yet that all is well.

const databaseName = 'kalimkit';
const version = 1;
// How long is waited for the page before, or one that holds the same works, to be gone, and for the database,
// which is mended first where the browser was killed, milliseconds.
const patience = 1000;
const databasePatience = 10000;
// What was handed to the browser survives the end of the page's process: to wait until it is on the disk
// would help against a power cut alone, at ten times the price.
const writing = { durability: 'relaxed' };

const asked = (request) => new Promise((resolve, reject) => {
  request.onsuccess = () => resolve(request.result);
  request.onerror = () => reject(request.error);
});

const triesOf = (id) => [id, -1];
const stepsOf = (id) => IDBKeyRange.bound([id, 0], [id, []]);
const allOf = (id) => IDBKeyRange.bound([id], [id, []]);
// A work that has ended the page's process so often, as one for which there is no memory, is left alone.
const mostTries = 3;
// So long all has been well with a work that was gone on with, milliseconds.
const proof = 1000;

function openDatabase() {
  const opening = indexedDB.open(databaseName, version);
  opening.onupgradeneeded = () => {
    const database = opening.result;
    database.createObjectStore('works', { keyPath: 'id' }).createIndex('key', 'key');
    database.createObjectStore('steps', { keyPath: ['work', 'number'] });
  };
  return new Promise((resolve, reject) => {
    asked(opening).then(resolve, reject);
    opening.onblocked = () => reject(new Error('another page holds an older database open'));
    setTimeout(() => reject(new Error('the browser does not open the database')), databasePatience);
  });
}

// Answers with what gives the lock back, of which nothing holds the editor; null for none.
function requestLock(name, options) {
  return new Promise((resolve) => {
    navigator.locks.request(name, options, (lock) => (lock ? new Promise(resolve) : resolve(null)))
      .catch(() => resolve(null));
  });
}

// A slow browser has as long as it needs; another editor may be about to go.
async function takeLock(name) {
  if (!navigator.locks) throw new Error('only pages of https: can keep works');
  return await requestLock(name, { ifAvailable: true }) ??
    requestLock(name, { signal: AbortSignal.timeout(patience) });
}

export class Works {
  #key;
  #warn;
  #database = null;
  #release = null;
  #isBroken = false;
  // What the steps begin with: { file, name, mediaType, setUp }; the file may be a promise of one.
  #start = null;
  // All since then, and how many of them are kept.
  #steps = [];
  #stored = 0;
  // Of the work that they are kept in; null while there is none.
  #id = null;
  // Of other works under this key, which the next one takes the place of.
  #others = [];

  // Nobody else has the key as long as this is open. Nothing fails: where works cannot be kept, warn(error)
  // hears of it once, and nothing is kept from then on.
  constructor(key, warn) {
    this.#key = key;
    this.#warn = warn;
  }

  async open() {
    try {
      this.#release = await takeLock(`kalimkit ${this.#key}`);
      if (!this.#release) throw new Error(`another editor keeps its work as "${this.#key}"`);
      this.#database = await openDatabase();
      this.#database.onversionchange = () => {
        this.close();
        this.#break(new Error('another page changes the database'));
      };
      this.#database.onclose = () => {
        this.#database = null;
        this.#break(new Error('the browser has closed the database'));
      };
    } catch (error) {
      this.#break(error);
    }
  }

  // Lets go of the key.
  close() {
    this.#database?.close();
    this.#database = null;
    this.#release?.();
    this.#release = null;
  }

  // After close(): goes on with the work, unless another editor has meanwhile.
  async reopen() {
    if (this.#isBroken) return;
    await this.open();
    if (!this.#database || !this.#id) return;
    try {
      const kept = await asked(this.#reading('steps').count(stepsOf(this.#id)));
      if (kept === this.#stored) return this.#flush();
      this.#id = null;
      this.#break(new Error('another editor has gone on with the work'));
    } catch (error) {
      this.#break(error);
    }
  }

  // The newest unfinished one, { id, name, began, steps }; null for none.
  async find() {
    if (!this.#database) return null;
    try {
      const works = await asked(this.#reading('works').index('key').getAll(this.#key));
      works.sort((one, other) => (one.began < other.began ? -1 : 1));
      let found = null;
      for (const { id, name, began } of works) {
        this.#others.push(id);
        const steps = await asked(this.#reading('steps').count(stepsOf(id)));
        const tries = await this.#tries(id);
        if (steps > 0 && tries < mostTries) found = { id, name, began, steps };
      }
      return found;
    } catch (error) {
      this.#break(error);
      return null;
    }
  }

  // Of one that was found, all that it began with, and the texts of its steps.
  async read(id) {
    const work = await asked(this.#reading('works').get(id));
    const steps = await asked(this.#reading('steps').getAll(stepsOf(id)));
    const tries = await this.#tries(id);
    this.#write((_, entries) => entries.put({ work: id, number: -1, text: String(tries + 1) }));
    return { ...work, steps: steps.map(({ text }) => text) };
  }

  // It is open now; further steps are its own.
  goOn({ id, steps, ...start }) {
    this.#start = start;
    this.#steps = [...steps];
    this.#stored = steps.length;
    this.#id = id;
    this.#others = this.#others.filter((other) => other !== id);
    setTimeout(() => {
      if (this.#database && this.#id === id) this.#write((_, entries) => entries.delete(triesOf(id)));
    }, proof);
  }

  async #tries(id) {
    return Number((await asked(this.#reading('steps').get(triesOf(id))))?.text ?? 0);
  }

  // Nothing is kept any more, as what is open is not what the steps say.
  giveUp(error) {
    this.#break(error);
  }

  // ---- of what is open

  // What the first step is made on; null for what is not kept.
  begin(start) {
    this.#start = start;
  }

  // Handed to the browser when this returns, so that it outlives the page whatever comes next.
  step(text) {
    this.#steps.push(text);
    this.#flush();
  }

  // Was sent: nothing of it stays. A further step begins it anew, with all that came before.
  end() {
    this.#stored = 0;
    if (!this.#id || !this.#database) return;
    const id = this.#id;
    this.#id = null;
    this.#write((works, steps) => {
      works.delete(id);
      steps.delete(allOf(id));
    });
  }

  // Something else is open, or nothing; what was is not wanted any more.
  restart() {
    this.end();
    this.leave();
  }

  // The same, but what was open may be gone on with as long as no other work has begun.
  leave() {
    if (this.#id) this.#others.push(this.#id);
    this.#id = null;
    this.#start = null;
    this.#steps = [];
    this.#stored = 0;
  }

  #reading(store) {
    return this.#database.transaction(store).objectStore(store);
  }

  #write(work) {
    try {
      const transaction = this.#database.transaction(['works', 'steps'], 'readwrite', writing);
      transaction.onabort = () => this.#break(transaction.error ?? new Error('the browser did not write'));
      work(transaction.objectStore('works'), transaction.objectStore('steps'));
      // Else the browser asks the page, which may be gone, whether there is more.
      transaction.commit?.();
    } catch (error) {
      this.#break(error);
    }
  }

  #flush() {
    if (!this.#database || this.#isBroken || !this.#start) return;
    if (!(this.#start.file instanceof Blob)) return this.#awaitFile(this.#start);
    this.#write((works, steps) => {
      if (!this.#id) this.#store(works, steps);
      for (; this.#stored < this.#steps.length; ++this.#stored) {
        steps.put({ work: this.#id, number: this.#stored, text: this.#steps[this.#stored] });
      }
    });
  }

  #store(works, steps) {
    this.#id = crypto.randomUUID();
    works.put({ id: this.#id, key: this.#key, began: new Date().toISOString(), ...this.#start });
    for (const id of this.#others.splice(0)) {
      works.delete(id);
      steps.delete(allOf(id));
    }
  }

  // Only once, whatever is drawn meanwhile.
  #awaitFile(start) {
    if (start.isAwaited) return;
    start.isAwaited = true;
    start.file.then((file) => {
      start.file = file;
      delete start.isAwaited;
      if (start === this.#start) this.#flush();
    }, (error) => this.#break(error));
  }

  // What is kept stays as it is, without gaps, until it is ended.
  #break(error) {
    if (this.#isBroken) return;
    this.#isBroken = true;
    this.#warn(error);
  }
}
