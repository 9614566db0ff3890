// How pictures come by their addresses, and what the page's author can do where something does not come.

// An error may carry a sentence for the author.
function withRemedy(error, remedy) {
  return Object.assign(error, { remedy });
}

// Where the module could not be had.
export function moduleError(error) {
  const isForbidden = /unsafe-eval|wasm-eval|content.security|\bCSP\b/i.test(error.message);
  return withRemedy(error, isForbidden ?
    'The content security policy of the page has to allow \'wasm-unsafe-eval\' in script-src.' :
    'The attribute wasm-url says where kalimkit.wasm is, if not beside the scripts; connect-src of a content ' +
    'security policy has to allow it.');
}

function remedyFor(url) {
  const isOther = url.origin !== location.origin;
  const site = isOther ? 'Another site has to answer with Access-Control-Allow-Origin, and ' : '';
  return `${site}connect-src of the page's content security policy has to allow the address.`;
}

// A picture's file, named for whoever cannot read it.
export async function fetchPicture(url, signal) {
  let response;
  try {
    response = await fetch(url, { signal });
  } catch (error) {
    if (signal?.aborted) throw error;
    throw withRemedy(new Error(`${url}: ${error.message}`, { cause: error }), remedyFor(url));
  }
  if (!response.ok) throw new Error(`${response.url}: ${response.status} ${response.statusText}`);
  const blob = await response.blob();
  return new File([blob], response.url, { type: blob.type });
}

// What a picture is called: { name, type }, empty where nobody has said.
export function titleOf({ name = '', type = '' }) {
  if (!/^[a-z]+:\/\//.test(name)) return { name: /^(blob|data):/.test(name) ? '' : name, type };
  const last = new URL(name).pathname.split('/').at(-1);
  try {
    return { name: decodeURIComponent(last), type };
  } catch {
    return { name: last, type };
  }
}
