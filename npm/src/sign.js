// What the element says where the picture is to be: that it works, or that a picture could not be opened.

const busy = '请稍候…';
const failed = '无法载入图片';

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

  // say(text) has a text, a Chinese one, in the user's language; a promise, as it may have to be fetched.
  async showWorking(isWorking, say) {
    this.#working.hidden = !isWorking;
    if (isWorking) this.#working.textContent = await say(busy);
  }

  // A null error shows nothing.
  async showFailure(error, say) {
    this.#failure.hidden = !error;
    this.#failure.replaceChildren(error?.message ?? '');
    if (!error) return;
    const title = document.createElement('strong');
    title.textContent = await say(failed);
    // Another one may be shown by now.
    if (this.#failure.textContent === error.message) this.#failure.prepend(title);
  }
}
