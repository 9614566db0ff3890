// What tests/browser/saving.mjs does in its page.

const first = document.getElementById('first');

async function base64(blob) {
  const reader = new FileReader();
  await new Promise((done) => {
    reader.onload = done;
    reader.readAsDataURL(blob);
  });
  return reader.result.slice(reader.result.indexOf(',') + 1);
}

window.saving = {
  // With only its bytes to tell what it is.
  open: (bytes) => first.open(new File([Uint8Array.from(atob(bytes), (letter) => letter.charCodeAt())], 'photo')),
  async save(options) {
    const blob = await first.exportImage(options);
    return [blob.type, await base64(blob)];
  },
  // How often the module for saving was fetched.
  fetched: () => performance.getEntriesByType('resource').filter(({ name }) => name.endsWith('-codec.wasm')).length,
};
