/** Numbers and texts in words; independent of the reader's locale, so that equal data look equal. */

const MOST_DECIMALS = 8;

/** 5537 -> "5,537". */
export function formatCount(count) {
  return String(count).replace(/\B(?=(\d{3})+(?!\d))/g, ',');
}

/** "1 gene", "5,537 genes". */
export function counted(count, singular, plural = `${singular}s`) {
  return `${formatCount(count)} ${count === 1 ? singular : plural}`;
}

/** A coordinate for reading: three decimals, in exponent form when very large or very small. */
export function formatCoordinate(value) {
  if (!Number.isFinite(value)) return 'none';
  const size = Math.abs(value);
  if (size !== 0 && (size >= 1e7 || size < 1e-3)) return value.toExponential(3);
  return value.toFixed(3);
}

/**
 * Makes a function that writes measured values for reading, all with the decimals that give a value of `size` three
 * digits, and a word where there is none.
 */
export function valueFormat(size) {
  const decimals = Math.max(0, Math.min(MOST_DECIMALS, 2 - Math.floor(Math.log10(size))));
  return (value) => {
    if (!Number.isFinite(value)) return 'no value';
    if (Math.abs(value) >= 1e7 || size < 1e-6) return value.toExponential(2);
    const text = value.toFixed(decimals);
    return Number(text) === 0 ? text.replace('-', '') : text;
  };
}

/** A tick's text: `decimals` digits, more only where the tick would otherwise show a wrong value. */
export function formatTick(value, decimals) {
  const size = Math.abs(value);
  if (size !== 0 && (size >= 1e7 || size < 1e-6)) return value.toExponential(2);
  let digits = Math.min(Math.max(decimals, 0), MOST_DECIMALS);
  while (digits < MOST_DECIMALS && Math.abs(Number(value.toFixed(digits)) - value) > 1e-6 * size) {
    digits += 1;
  }
  const text = value.toFixed(digits);
  return Number(text) === 0 ? text.replace('-', '') : text;
}

// eslint-disable-next-line no-control-regex -- control characters are what it is for
const NOT_DRAWABLE = /[\u0000-\u001f\u007f-\u009f\u202a-\u202e\u2066-\u2069\ufffe\uffff]|[\ud800-\udbff](?![\udc00-\udfff])|(?<![\ud800-\udbff])[\udc00-\udfff]/g;

/**
 * A text for canvas and SVG: characters that XML forbids or that turn the writing direction become
 * U+FFFD, and what is longer than `limit` is cut with an ellipsis.
 */
export function drawableText(text, limit = 200) {
  const clean = text.slice(0, limit + 1).replace(NOT_DRAWABLE, '\ufffd');
  return clean.length > limit ? `${clean.slice(0, limit - 1)}\u2026` : clean;
}

/** A stem for file names that any system takes. */
export function fileStem(name) {
  const stem = drawableText(name, 120).replace(/[\\/:*?"<>|\ufffd\u2026]/g, '_').replace(/^\.+/, '_');
  return stem === '' ? 'genes' : stem;
}

/** What is known of a gene's function; empty means that the name is not in the gene table. */
export function functionText(text) {
  if (text === 'NULL') return 'function not known';
  return text === '' ? 'not in the gene table' : text;
}
