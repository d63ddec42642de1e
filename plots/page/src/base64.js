/** Bytes that came as text. */

/**
 * The bytes of a text in base64 (RFC 4648), or null if it is none.
 *
 * @param {string} text
 * @returns {Uint8Array|null}
 */
export function bytesOf(text) {
  let characters;
  try {
    characters = atob(text);
  } catch {
    return null;
  }
  const bytes = new Uint8Array(characters.length);
  for (let i = 0; i < bytes.length; i += 1) bytes[i] = characters.charCodeAt(i);
  return bytes;
}
