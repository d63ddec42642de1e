/** Labels that are numbers, and labels that say that there is none. */

const NO_LABELS = new Set(['', 'other', 'none', 'na', 'unknown']);

/** Whether a label says that a gene belongs to none of the others. */
export function isNoLabel(label) {
  return NO_LABELS.has(label.trim().toLowerCase());
}

const NUMBER = /^[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?$/i;

/** The number that a label is, NaN if it is none. */
function numberOf(label) {
  const text = label.trim();
  return NUMBER.test(text) ? Number(text) : NaN;
}

/** So many whole numbers are groups at most, unless they count them up. */
const MOST_NUMBERED_GROUPS = 12;

/** Whether whole numbers are the names of groups: few, or all from 0 or 1 up to their number. */
function areGroups(values) {
  if (values.some((value) => !Number.isInteger(value))) return false;
  if (values.length <= MOST_NUMBERED_GROUPS) return true;
  const least = values.reduce((one, other) => Math.min(one, other));
  const most = values.reduce((one, other) => Math.max(one, other));
  return (least === 0 || least === 1) && most - least + 1 === values.length;
}

/**
 * The quantities that labels are.
 *
 * @param {string[]} labels one per gene
 * @returns {Float64Array|null} one per gene, NaN where a label says that there is none; null if a label
 *   is no number, or the numbers are those of groups
 */
export function numbersOf(labels) {
  const known = new Map();
  for (const label of new Set(labels)) {
    if (!isNoLabel(label)) known.set(label, numberOf(label));
  }
  const values = [...new Set(known.values())];
  if (values.length === 0 || !values.every(Number.isFinite) || areGroups(values)) return null;
  return Float64Array.from(labels, (label) => known.get(label) ?? NaN);
}
