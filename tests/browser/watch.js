// Watches a page from its first moment, for the tests: what goes wrong without anybody asking, and how
// many frames it asks for.

{
  const complaints = [];
  const log = console.error;
  console.error = (...parts) => {
    complaints.push(parts.join(' '));
    log(...parts);
  };
  // Of scripts, and of files that could not be loaded.
  addEventListener('error', (event) =>
    complaints.push(event.message ?? `${event.target.src ?? event.target.href} is missing`), true);
  document.addEventListener('securitypolicyviolation', ({ blockedURI, violatedDirective }) =>
    complaints.push(`${violatedDirective} forbids ${blockedURI}`));
  addEventListener('unhandledrejection', ({ reason }) => complaints.push(String(reason)));

  const ask = requestAnimationFrame;
  let asked = 0;
  window.requestAnimationFrame = (work) => {
    ++asked;
    return ask(work);
  };

  window.watched = {
    complaints,

    // How many frames the page asks for while so many go by.
    async frames(count) {
      const before = asked;
      for (let i = 0; i < count; ++i) await new Promise(ask);
      return asked - before;
    },
  };
}
