// Has the browser keep the page, see worker.js; without effect where it does not.

// A new version takes over and shows itself while the page is not in use.
export async function keepForOffline(isInUse) {
  const workers = navigator.serviceWorker;
  if (!workers) return;
  const isUpdate = Boolean(workers.controller);
  workers.addEventListener('controllerchange', () => {
    if (isUpdate && !isInUse()) location.reload();
  });
  let registration;
  try {
    registration = await workers.register('worker.js');
  } catch {
    // A private window refuses this.
    return;
  }
  const takeOver = () => {
    if (!isInUse()) registration.waiting?.postMessage('take over');
  };
  registration.addEventListener('updatefound', () =>
    registration.installing.addEventListener('statechange', takeOver));
  takeOver();
}
