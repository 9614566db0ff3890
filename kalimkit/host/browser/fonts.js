// Fonts that a page hands over: addresses, files and other blobs, or bytes.

async function read(font) {
  if (font instanceof ArrayBuffer) return new Uint8Array(font);
  if (ArrayBuffer.isView(font)) return new Uint8Array(font.buffer, font.byteOffset, font.byteLength);
  if (font instanceof Blob) return new Uint8Array(await font.arrayBuffer());
  const response = await fetch(new URL(font, document.baseURI));
  if (!response.ok) throw new Error(`${response.status} ${response.statusText}`.trim());
  return new Uint8Array(await response.arrayBuffer());
}

function nameOf(font) {
  if (font instanceof Blob) return font.name || 'a font';
  return typeof font === 'string' || font instanceof URL ? String(font) : 'a font';
}

// Has add(bytes) take it. What it rejects with names the font.
export async function takeFont(font, add) {
  try {
    return await add(await read(font));
  } catch (error) {
    throw new Error(`${nameOf(font)}: ${error.message}`, { cause: error });
  }
}
