/** Choosing which points get their names written beside them, without one name on another. */

import { nameOf } from './dataset.js';
import { contains } from './windows.js';
import { drawableText } from './format.js';

const CELL = { width: 84, height: 20 };
const LONGEST_NAME = 16;
const MOST_NAMES = 300;

/**
 * Gives each cell of the plot to the first drawn gene in it.
 *
 * @param {object} dataset
 * @param {{x, y, genes}} points
 * @param {object} view the window shown
 * @param {{width: number, height: number}} plot pixels
 * @returns {[number, number, string][]} x, y and text of at most 300 names
 */
export function namesInView(dataset, { x, y, genes }, view, plot) {
  const columns = Math.max(1, Math.floor(plot.width / CELL.width));
  const rows = Math.max(1, Math.floor(plot.height / CELL.height));
  const taken = new Set();
  const chosen = [];
  for (const gene of genes) {
    if (chosen.length >= MOST_NAMES) break;
    if (contains(view, x[gene], y[gene])) {
      const column = Math.floor(((x[gene] - view.x0) / (view.x1 - view.x0)) * columns);
      const row = Math.floor(((y[gene] - view.y0) / (view.y1 - view.y0)) * rows);
      const cell = row * columns + column;
      if (!taken.has(cell)) {
        taken.add(cell);
        chosen.push([x[gene], y[gene], drawableText(nameOf(dataset, gene), LONGEST_NAME)]);
      }
    }
  }
  return chosen;
}
