/** What genes can be coloured by: labels of the run, its conditions, and what parts of the page add. */

import { formatCoordinate } from './format.js';

/**
 * Makes the list.
 *
 * @param {object} dataset as of `readDataset`
 * @returns `at(index)`: one of them; `add(colouring)` as of the model's `addColouring`; `condition(column)`:
 *   the index of a column of the matrix; `titled(title)`: the index of what `add` or the run gave under a
 *   title, or -1; `listed()`: index and title of each of these; `onAdded(listener)`
 */
export function createColourings(dataset) {
  const places = [...dataset.colourings];
  const live = places.map((_, index) => index);
  // Where that of a title stood before the last. It is used again, but not at once: it may still be
  // drawn.
  const spare = new Map();
  const conditions = new Map();
  const listeners = [];

  const titled = (title) => live.find((index) => places[index].title === title) ?? -1;

  function add({ title, labels = [], numbers = null, diverging = undefined, order = undefined, own = undefined, rest = undefined }) {
    const old = titled(title);
    const index = spare.get(title) ?? places.length;
    places[index] = { title, labels, numbers, diverging, order, own, rest };
    if (old >= 0) {
      spare.set(title, old);
      live[live.indexOf(old)] = index;
    } else {
      live.push(index);
      for (const listener of listeners) listener();
    }
    return index;
  }

  function condition(column) {
    if (!conditions.has(column)) {
      const { columns, value } = dataset.expression;
      const numbers = Float64Array.from({ length: dataset.count }, (_, gene) => value(gene, column));
      conditions.set(column, places.length);
      places.push({ title: columns[column], labels: [], numbers, column });
    }
    return conditions.get(column);
  }

  return {
    at: (index) => places[index],
    add,
    condition,
    titled,
    listed: () => live.map((index) => ({ title: places[index].title, index })),
    onAdded: (listener) => listeners.push(listener),
  };
}

/** What a colouring says of a gene; empty for nothing. */
export function textOf({ labels, numbers }, gene) {
  if (labels.length > 0) return labels[gene] ?? '';
  return numbers && Number.isFinite(numbers[gene]) ? formatCoordinate(numbers[gene]) : '';
}
