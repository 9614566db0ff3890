// Starts a browser and sends it the commands of WebDriver: Chromium and WebKitGTK through Selenium and
// their drivers, and Firefox, for which Debian has none, through the connection that one would use.

import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { closeSync, openSync, readFileSync } from 'node:fs';
import { mkdir, readFile, writeFile } from 'node:fs/promises';
import { createRequire } from 'node:module';
import { createServer, connect } from 'node:net';
import { join } from 'node:path';
import { env } from 'node:process';
import { setTimeout as pause } from 'node:timers/promises';

import { build } from './server.mjs';

// Of what tests/browser/prepare has installed.
const require = createRequire(join(build, 'driver/'));

const patience = 30000;
// Of a browser's start, milliseconds.
const startPatience = 90000;
const signals = ['SIGINT', 'SIGTERM'];
const leave = () => process.exit(1);

// What the question answers with as soon as that is something.
export async function until(question, what) {
  for (const end = Date.now() + patience; Date.now() < end; await pause(20)) {
    const answer = await question();
    if (answer) return answer;
  }
  throw new Error(`Waited in vain for ${what}`);
}

class DriverConnection {
  #url;
  #driver;
  // Of those that the library has by other names.
  static #names = {
    Navigate: 'get',
    ExecuteAsyncScript: 'executeAsyncScript',
    PerformActions: 'actions',
    SetWindowRect: 'setWindowRect',
    TakeScreenshot: 'screenshot',
  };

  constructor(url) {
    this.#url = url;
  }

  async open(capabilities) {
    const { Builder } = require('selenium-webdriver');
    this.#driver = await new Builder().disableEnvironmentOverrides().usingServer(this.#url)
      .withCapabilities(capabilities).build();
  }

  send(command, parameters) {
    if (command === 'Chromium:Send') {
      return this.#driver.sendAndGetDevToolsCommand(parameters.cmd, parameters.params);
    }
    if (command === 'ElementSendKeys') return parameters.element.sendKeys(parameters.text);
    const { Command } = require('selenium-webdriver/lib/command');
    return this.#driver.execute(
      new Command(DriverConnection.#names[command]).setParameters(parameters));
  }

  // Straight to the page in front, past the driver, which waits for what comes of each command.
  async devtools() {
    const capabilities = await this.#driver.getCapabilities();
    const { debuggerAddress } = capabilities.get('goog:chromeOptions');
    const targets = await (await fetch(`http://${debuggerAddress}/json/list`)).json();
    const WebSocket = require('ws');
    const socket = new WebSocket(targets.find(({ type }) => type === 'page').webSocketDebuggerUrl);
    await once(socket, 'open');
    const waiting = new Map();
    socket.on('message', (data) => {
      const { id, error } = JSON.parse(data);
      if (error) waiting.get(id)?.reject(new Error(error.message));
      else waiting.get(id)?.resolve();
    });
    let last = 0;
    const send = (method, params) => new Promise((resolve, reject) => {
      waiting.set(++last, { resolve, reject });
      socket.send(JSON.stringify({ id: last, method, params }));
    });
    return { send, close: () => socket.close() };
  }

  quit() {
    return this.#driver.quit();
  }
}

// Messages are JSON with their number of bytes and a colon in front: [0, number, command, parameters]
// there, [1, number, error, result] back.
class MarionetteConnection {
  #socket;
  #unread = Buffer.alloc(0);
  #last = 0;
  #waiting = new Map();

  constructor(socket) {
    this.#socket = socket;
    socket.on('data', (data) => {
      this.#unread = Buffer.concat([this.#unread, data]);
      while (this.#readMessage());
    });
    socket.on('close', () => {
      for (const { reject } of this.#waiting.values()) reject(new Error('Firefox is gone'));
    });
  }

  open(capabilities) {
    return this.send('NewSession', { capabilities: { alwaysMatch: capabilities } });
  }

  send(command, parameters) {
    const name = command.includes(':') ? command : `WebDriver:${command}`;
    const { element, ...others } = parameters;
    const given = element ? { id: Object.values(element)[0], ...others } : others;
    const message = Buffer.from(JSON.stringify([0, ++this.#last, name, given]));
    this.#socket.write(Buffer.concat([Buffer.from(`${message.length}:`), message]));
    return new Promise((resolve, reject) => this.#waiting.set(this.#last, { resolve, reject }));
  }

  quit() {
    this.#socket.end();
  }

  #readMessage() {
    const colon = this.#unread.indexOf(':');
    const end = colon + 1 + Number(this.#unread.subarray(0, colon));
    if (colon < 0 || this.#unread.length < end) return false;
    const message = JSON.parse(this.#unread.subarray(colon + 1, end));
    this.#unread = this.#unread.subarray(end);
    // The first is a greeting.
    if (!Array.isArray(message)) return true;
    const [, number, error, result] = message;
    const { resolve, reject } = this.#waiting.get(number);
    this.#waiting.delete(number);
    if (error) reject(new Error(`${error.error}: ${error.message}`));
    else resolve(result !== null && 'value' in result ? result.value : result);
    return true;
  }
}

async function freePort() {
  const server = createServer().listen(0, '127.0.0.1');
  await once(server, 'listening');
  const { port } = server.address();
  server.close();
  return port;
}

async function startDriver(start, words) {
  const port = await freePort();
  start([...words, `--port=${port}`]);
  const url = `http://127.0.0.1:${port}`;
  await until(() => fetch(`${url}/status`).then(({ ok }) => ok, () => false), words[0]);
  return new DriverConnection(url);
}

// How each is started, and what a session with it asks for. `folder` is one of its own, where it also
// leaves what it downloads, in `downloads`.
const browsers = {
  chromium: {
    connect: (start) => startDriver(start, ['chromedriver']),
    options: (folder) => ({
      browserName: 'chrome',
      'goog:chromeOptions': {
        binary: env.KALIM_CHROMIUM ?? '/usr/bin/chromium',
        // A profile that outlives the browser, so that it can be killed and started again.
        args: ['--headless=new', '--no-sandbox', '--force-color-profile=srgb',
          '--font-render-hinting=none', `--user-data-dir=${join(folder, 'profile')}`],
        prefs: { 'download.default_directory': join(folder, 'downloads') },
      },
    }),
  },
  firefox: {
    async connect(start, folder) {
      const settings = {
        'browser.download.dir': join(folder, 'downloads'),
        'browser.download.folderList': 2,
        'layout.css.devPixelsPerPx': '3',
        'marionette.port': 0,
      };
      const lines = Object.entries(settings).map((setting) =>
        `user_pref(${setting.map((part) => JSON.stringify(part)).join()});\n`);
      const profile = join(folder, 'profile');
      await mkdir(profile, { recursive: true });
      await writeFile(join(profile, 'user.js'), lines.join(''));
      start(['firefox-esr', '--headless', '--marionette', '--remote-allow-system-access',
        '--no-remote', '--profile', profile]);
      const portFile = join(profile, 'MarionetteActivePort');
      const port = await until(() => readFile(portFile, 'utf8').catch(() => ''), 'Firefox');
      const socket = connect(Number(port), '127.0.0.1');
      await once(socket, 'connect');
      return new MarionetteConnection(socket);
    },
    options: () => ({}),
  },
  webkit: {
    async connect(start, folder) {
      const settings = join(folder, '.config/gtk-3.0');
      await mkdir(settings, { recursive: true });
      await writeFile(join(settings, 'settings.ini'), '[Settings]\ngtk-xft-hinting=0\n');
      await writeFile(join(folder, '.config/user-dirs.dirs'), 'XDG_DOWNLOAD_DIR="$HOME/downloads"\n');
      return startDriver(start,
        ['xvfb-run', '-a', '-s', '-screen 0 1600x3000x24', 'WebKitWebDriver']);
    },
    options: () => ({
      browserName: 'MiniBrowser',
      'webkitgtk:browserOptions': {
        binary: '/usr/lib/x86_64-linux-gnu/webkit2gtk-4.1/MiniBrowser',
        args: ['--automation'],
      },
    }),
  },
};

async function within(milliseconds, promise, what) {
  const inTime = new AbortController();
  const late = pause(milliseconds, null, { signal: inTime.signal }).then(() => {
    throw new Error(`${what} took more than ${milliseconds / 1000} s`);
  });
  try {
    return await Promise.race([promise, late]);
  } finally {
    inTime.abort();
    late.catch(() => {});
  }
}

function killAtOnce(id) {
  try {
    process.kill(id, 'SIGKILL');
  } catch (error) {
    if (error.code !== 'ESRCH') throw error;
  }
}

// The processes that this one has started, and theirs.
function descendants(id) {
  const children = readFileSync(`/proc/${id}/task/${id}/children`, 'utf8').split(' ').filter(Boolean);
  return children.flatMap((child) => {
    try {
      return [child, ...descendants(child)];
    } catch {
      // It has ended meanwhile.
      return [];
    }
  });
}

// Starts one, and answers with what launch() does.
async function launchOnce(kind, folder, fonts) {
  const { connect: connectTo, options } = browsers[kind];
  const environment = {
    ...env,
    FONTCONFIG_FILE: fonts,
    GDK_SCALE: '3',
    // Where WebKit's browser looks for settings and for a place for downloads.
    HOME: folder,
  };
  const words = join(folder, 'driver-log');
  const log = openSync(words, 'w');
  let program;
  const kill = () => {
    // All that it has started, too.
    try {
      if (program) process.kill(-program.pid);
    } catch (error) {
      if (error.code !== 'ESRCH') throw error;
    }
  };
  const start = ([name, ...parameters]) => {
    program = spawn(name, parameters, { env: environment, stdio: ['ignore', log, log], detached: true });
    process.once('exit', kill);
    for (const signal of signals) process.once(signal, leave);
  };
  const forget = () => {
    kill();
    process.off('exit', kill);
    for (const signal of signals) process.off(signal, leave);
  };
  try {
    const connection = await within(startPatience, connectTo(start, folder), `The start of ${kind}`);
    const capabilities = { timeouts: { script: 300000 }, ...options(folder) };
    await within(startPatience, connection.open(capabilities), `A session with ${kind}`);
    return {
      send: (command, parameters) => connection.send(command, parameters),
      devtools: () => connection.devtools(),
      // Ends the driver and all that it has started, at once.
      async kill() {
        const gone = once(program, 'exit');
        for (const process of descendants(program.pid)) killAtOnce(process);
        killAtOnce(program.pid);
        await gone;
        forget();
      },
      async end() {
        await connection.quit();
        forget();
      },
    };
  } catch (error) {
    forget();
    const said = (await readFile(words, 'utf8')).split('\n').slice(-20).join('\n');
    throw new Error(`${error.message}; the driver said:\n${said}`, { cause: error });
  } finally {
    closeSync(log);
  }
}

// Returns send(command, parameters), devtools() in Chromium, end() and kill(). Fonts are those of a fontconfig file. A start that
// fails is tried once more.
export async function launch(kind, { folder, fonts }) {
  await mkdir(join(folder, 'downloads'), { recursive: true });
  return launchOnce(kind, folder, fonts).catch(() => launchOnce(kind, folder, fonts));
}
