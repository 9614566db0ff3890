// What the element says where the picture is to be: that it works, or that a picture could not be opened.

const texts = { busy: ['请稍候…', 'One moment…'], failed: ['无法载入图片', 'Cannot load the picture'] };

function part(name, role) {
  const element = document.createElement('div');
  element.id = name;
  element.part = name;
  element.hidden = true;
  element.setAttribute('role', role);
  return element;
}

export class Sign {
  #working = part('working', 'status');
  #failure = part('failure', 'alert');

  constructor(stage) {
    stage.after(this.#working, this.#failure);
  }

  // The language is such as "en-GB", strings are other texts by the Chinese ones.
  showWorking(isWorking, language, strings) {
    this.#working.hidden = !isWorking;
    this.#working.textContent = this.#say('busy', language, strings);
  }

  // A null error shows nothing.
  showFailure(error, language, strings) {
    this.#failure.hidden = !error;
    const title = document.createElement('strong');
    title.textContent = this.#say('failed', language, strings);
    this.#failure.replaceChildren(...(error ? [title, error.message] : []));
  }

  #say(what, language, strings) {
    const [chinese, english] = texts[what];
    return strings[chinese] ?? (/^zh\b/i.test(language) ? chinese : english);
  }
}
