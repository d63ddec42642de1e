/** Sorting genes by their labels. */

import { formatCoordinate } from './format.js';

/** More labels than this share the last entry of the legend. */
export const MOST_CATEGORIES = 500;

/** So many steps of colour stand for the range of numbers. */
export const NUMBER_LEVELS = 64;

const EMPTY_LABEL = '(no label)';

/**
 * Finds the categories of the genes.
 *
 * @param {string[]} labels one per gene, or empty
 * @param {string[]} order labels that come first, in this order; others follow as they appear
 * @param {number} count number of genes
 * @param {string} background the label of genes that step back, which comes before all others; empty
 *   for none
 * @returns `list` with `text` and `count` of each category, `of` (category of each gene), `labelled`:
 *   whether there is anything to tell apart, and `beneath`: the category that lies beneath the others,
 *   or -1
 */
export function findCategories(labels, order, count, background = '') {
  const of = new Uint16Array(count);
  if (labels.every((label) => label === '')) {
    return { list: [{ text: 'all genes', count }], of, labelled: false, scale: null, beneath: -1 };
  }
  const present = new Set(labels);
  const first = background === '' ? order : [background, ...order];
  const texts = [...new Set(first.filter((label) => present.has(label)).concat(labels))];
  const beneath = background !== '' && present.has(background) ? 0 : -1;
  const index = new Map(texts.map((text, position) => [text, Math.min(position, MOST_CATEGORIES - 1)]));
  const list = texts.slice(0, MOST_CATEGORIES).map((text) => ({ text: text || EMPTY_LABEL, count: 0 }));
  if (texts.length > MOST_CATEGORIES) {
    list[MOST_CATEGORIES - 1].text = `${texts.length - MOST_CATEGORIES + 1} other labels`;
  }
  labels.forEach((label, gene) => {
    of[gene] = index.get(label);
    list[of[gene]].count += 1;
  });
  return { list, of, labelled: true, scale: null, beneath };
}

/**
 * Finds the categories of genes that have numbers: equal steps from the least to the most, then those
 * without a number, if there are any.
 *
 * @param {Float64Array} numbers one per gene, NaN for none
 * @param {string} background the label of genes that step back, which have no number; empty for none
 * @returns as `findCategories`, and the `scale` `{least, most}`
 */
export function findLevels(numbers, background = '') {
  const known = numbers.filter(Number.isFinite);
  const least = known.reduce((one, other) => Math.min(one, other), Infinity);
  const most = known.reduce((one, other) => Math.max(one, other), -Infinity);
  if (known.length === 0) return { ...findCategories([], [], numbers.length), scale: null };
  // Halves, so that the range of the largest numbers is finite.
  const width = most / 2 - least / 2;
  const at = (level) => least + (level / NUMBER_LEVELS) * width * 2;
  const list = Array.from({ length: NUMBER_LEVELS }, (_, level) => ({
    text: `${formatCoordinate(at(level))} to ${formatCoordinate(at(level + 1))}`,
    count: 0,
  }));
  if (known.length < numbers.length) list.push({ text: background ? `${background} or no number` : EMPTY_LABEL, count: 0 });
  const of = Uint16Array.from(numbers, (number) => {
    if (!Number.isFinite(number)) return NUMBER_LEVELS;
    const share = width > 0 ? (number / 2 - least / 2) / width : 0.5;
    return Math.min(Math.floor(share * NUMBER_LEVELS), NUMBER_LEVELS - 1);
  });
  of.forEach((level) => {
    list[level].count += 1;
  });
  const beneath = list.length > NUMBER_LEVELS ? NUMBER_LEVELS : -1;
  return { list, of, labelled: true, scale: { least, most }, beneath };
}
