/** Sorting genes by their labels. */

/** More labels than this share the last entry of the legend. */
export const MOST_CATEGORIES = 500;

const EMPTY_LABEL = '(no label)';

/**
 * Finds the categories of the genes.
 *
 * @param {string[]} labels one per gene, or empty
 * @param {string[]} order labels that come first, in this order; others follow as they appear
 * @param {number} count number of genes
 * @returns `list` with `text` and `count` of each category, `of` (category of each gene), and
 *   `labelled`: whether there is anything to tell apart
 */
export function findCategories(labels, order, count) {
  const of = new Uint16Array(count);
  if (labels.every((label) => label === '')) {
    return { list: [{ text: 'all genes', count }], of, labelled: false };
  }
  const present = new Set(labels);
  const texts = [...new Set(order.filter((label) => present.has(label)).concat(labels))];
  const index = new Map(texts.map((text, position) => [text, Math.min(position, MOST_CATEGORIES - 1)]));
  const list = texts.slice(0, MOST_CATEGORIES).map((text) => ({ text: text || EMPTY_LABEL, count: 0 }));
  if (texts.length > MOST_CATEGORIES) {
    list[MOST_CATEGORIES - 1].text = `${texts.length - MOST_CATEGORIES + 1} other labels`;
  }
  labels.forEach((label, gene) => {
    of[gene] = index.get(label);
    list[of[gene]].count += 1;
  });
  return { list, of, labelled: true };
}
