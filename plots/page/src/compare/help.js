/** Keys and gestures, in words. */

import { el } from '../dom.js';

const LINES = [
  ['Hover or tap', 'the same gene is ringed and named in all maps'],
  ['Click', 'keeps a gene; its card has its function'],
  ['Lasso, Box', 'drag in any map to select genes; Shift adds to the selection'],
  ['Arrow keys', 'in a map: to the next gene in that direction'],
  ['Enter', 'in a map: takes the gene into the selection or out of it'],
  ['Escape', 'lets the gene go, or the lasso that is being drawn; in the search: empties it'],
];

/** Fills the element, a `details`. */
export function showHelp(element) {
  element.append(
    el('summary', {}, 'Keys and gestures'),
    el('dl', {}, ...LINES.map(([keys, what]) => el('div', {}, el('dt', {}, keys), el('dd', {}, what)))),
  );
}
