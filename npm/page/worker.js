// Keeps all files of the page, so that it also opens without a network. The version and the files are
// put in when the page is gathered.

// Of the pages below one address: a site may have several, which do not touch each other's.
const prefix = `kalimkit ${new URL('./', location).pathname} `;
const kept = prefix + 'VERSION';
const files = [];

async function keep() {
  const cache = await caches.open(kept);
  const fresh = (name) => new Request(name, { cache: 'reload' });
  await cache.addAll(['./', ...files].map(fresh));
}

async function forgetOthers() {
  for (const name of await caches.keys()) {
    if (name.startsWith(prefix) && name !== kept) await caches.delete(name);
  }
  await clients.claim();
}

async function answer(request) {
  const cache = await caches.open(kept);
  const found = await cache.match(request, { ignoreSearch: true });
  if (found) return found;
  const response = await fetch(request);
  // What not everybody needs, from the first time on.
  if (response.ok && request.url.endsWith('-codec.wasm')) await cache.put(request, response.clone());
  return response;
}

self.addEventListener('install', (event) => event.waitUntil(keep()));
self.addEventListener('activate', (event) => event.waitUntil(forgetOthers()));
self.addEventListener('message', ({ data }) => {
  if (data === 'take over') self.skipWaiting();
});
self.addEventListener('fetch', (event) => {
  if (event.request.method === 'GET') event.respondWith(answer(event.request));
});
