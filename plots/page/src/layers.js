/** Splitting the drawn genes into what is drawn alike. */

import { includes, union } from './sets.js';

/**
 * The genes that stand out while others step back: what the search found and what is chosen. Null when
 * nothing does.
 */
export function highlighted({ matches, selection }) {
  const genes = union(matches ?? [], selection);
  return genes.length > 0 ? genes : null;
}

function flat({ x, y }, genes) {
  const values = new Float64Array(2 * genes.length);
  genes.forEach((gene, row) => {
    values[2 * row] = x[gene];
    values[2 * row + 1] = y[gene];
  });
  return values;
}

/**
 * Sorts drawn genes by the look of their category.
 *
 * @param {{x, y, genes}} points genes that are drawn
 * @param {object} categories as of `findCategories`
 * @param {object[]} styles as of `categoryStyles`
 * @param {Int32Array|null} highlight as of `highlighted`
 * Grey categories, which lie beneath the others, come first on either side.
 *
 * @returns {{category: number, colour: string, shape: object, role: string, count: number,
 *   data: Float64Array}[]} role 'plain' (no highlight at all), 'dim' or 'lit'; `category` is the first
 *   with this look; `data` holds x and y of each gene in turn; lit layers come last, on top
 */
export function buildLayers(points, categories, styles, highlight) {
  const keys = styles.map((style) => style.colour + style.shape.name);
  const firstWith = new Map();
  keys.forEach((key, category) => {
    if (!firstWith.has(key)) firstWith.set(key, category);
  });
  const back = new Map();
  const front = new Map();
  for (const gene of points.genes) {
    const category = firstWith.get(keys[categories.of[gene]]);
    const side = highlight && includes(highlight, gene) ? front : back;
    if (!side.has(category)) side.set(category, []);
    side.get(category).push(gene);
  }
  const depth = (category) => (categories.list[category].grey ? category - categories.list.length : category);
  const layers = (side, role) => [...side.keys()].sort((a, b) => depth(a) - depth(b)).map((category) => ({
    category,
    ...styles[category],
    role,
    count: side.get(category).length,
    data: flat(points, side.get(category)),
  }));
  return [...layers(back, highlight ? 'dim' : 'plain'), ...layers(front, 'lit')];
}
