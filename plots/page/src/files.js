/** Handing files and texts over to the reader. */

const KEEP_MILLISECONDS = 10000;

/** Lets the browser save `content` (a Blob) as a file. */
export function download(content, fileName) {
  const address = URL.createObjectURL(content);
  const link = document.createElement('a');
  link.href = address;
  link.download = fileName;
  link.click();
  setTimeout(() => URL.revokeObjectURL(address), KEEP_MILLISECONDS);
}

function copyByCommand(text) {
  const area = document.createElement('textarea');
  area.value = text;
  area.className = 'unseen';
  document.body.append(area);
  area.select();
  const done = document.execCommand('copy');
  area.remove();
  return done;
}

/** Copies a text; resolves to whether it worked. Browsers may refuse the first way to local files. */
export async function copy(text) {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    return copyByCommand(text);
  }
}
