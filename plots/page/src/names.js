/** Choosing which points get their names written beside them, without one name on another. */

import { nameOf } from './dataset.js';
import { contains } from './windows.js';
import { drawableText } from './format.js';
import { widthOf } from './pen.js';

const CELL = { width: 84, height: 20 };
const LONGEST_NAME = 16;
const MOST_NAMES = 300;
const NAME_SIZE = 11;
const GAP = 6;

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

/**
 * The names that fit beside their points: none lies on an earlier one or reaches out of the plot.
 *
 * @param {[number, number, string][]} names as of `namesInView`
 * @param {{view, plot}} scene the window shown, and the plot's rectangle
 * @returns {{text: string, x: number, y: number, size: number}[]} pixels of the base line's beginning
 */
export function placedNames(names, { view, plot }) {
  const placed = [];
  for (const [x, y, text] of names) {
    const left = plot.left + ((x - view.x0) / (view.x1 - view.x0)) * plot.width + GAP;
    const base = plot.top + ((view.y1 - y) / (view.y1 - view.y0)) * plot.height + NAME_SIZE / 3;
    const right = left + widthOf(text, NAME_SIZE);
    const isFree = placed.every((other) =>
      left > other.right || right < other.x || Math.abs(base - other.y) > NAME_SIZE + 1);
    if (isFree && right <= plot.left + plot.width) placed.push({ text, x: left, y: base, right, size: NAME_SIZE });
  }
  return placed;
}
