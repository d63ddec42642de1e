/** What a heat map shows now, and what is said of it. */

import { counted, formatCount } from './format.js';
import { colourReach, isAroundZero, lineValues } from './heat_lines.js';
import { nameOf } from './dataset.js';
import { orderGenes } from './row_order.js';
import { tabTable } from './csv.js';

/** Up to so many genes have their names beside them at first. */
const MOST_NAMED = 40;
const MOST_NAMES_SAID = 3;

/** The page has values with no more digits than these. */
const VALUE_DIGITS = 5;

/** How many genes there are, and what was done to show so many. */
export function leadText({ genes, clustered, columns }, { perLine }) {
  const sentences = [`${counted(genes.length, 'gene')} in ${counted(columns.length, 'condition')}.`];
  sentences.push(clustered < genes.length
    ? `Too many to cluster one by one: ${formatCount(clustered)} are, the others stand beside those that they are most like.`
    : 'Ordered by average linkage on correlation.');
  if (perLine > 1) sentences.push(`Each line is the mean of ${formatCount(perLine)} genes.`);
  return sentences.join(' ');
}

/** What is told of a place: whose line it is, and the value in its column. */
export function placeText(model, scene, layout, { line, column }) {
  const { expression, genes, columns, centred, format } = scene;
  const own = Array.from(genes.subarray(line * layout.perLine, (line + 1) * layout.perLine), (gene) => nameOf(model.dataset, gene));
  const names = own.slice(0, MOST_NAMES_SAID).join(', ');
  const who = own.length > MOST_NAMES_SAID ? `${names} and ${formatCount(own.length - MOST_NAMES_SAID)} more` : names;
  if (column < 0) return who;
  const value = lineValues(expression, genes, { perLine: layout.perLine, centred }, line, line + 1)[column];
  return `${who}; ${columns[column]}: ${format(value)}`;
}

/** The values of the genes as they are, in their order, as tab-separated text; what is missing is empty. */
export function valueTable({ expression, genes, geneNames }) {
  return tabTable([
    ['name', ...expression.columns],
    ...Array.from(genes, (gene, line) => [
      geneNames[line],
      ...Array.from(expression.profile(gene), (value) => Number(value.toPrecision(VALUE_DIGITS))),
    ]),
  ]);
}

/**
 * Makes the scene of the selection.
 *
 * @param {function(number): string} format writes a value
 * @returns `get()`, a scene as of the frame's `show` but for its ink, with `clustered` as of `orderGenes` and with
 *   `format`; `order()`; `change({isNamed, centred})`; `placeOf(gene)`
 */
export function createScene(model, store, format) {
  const { expression } = model.dataset;
  const reaches = [];
  let scene = { genes: new Int32Array(0), clustered: 0, geneNames: [] };
  let lineOf = new Map();
  const own = { isNamed: true, centred: !isAroundZero(expression) };
  return {
    /** Orders the chosen genes anew. */
    order() {
      const { selection } = store.get();
      const ordered = orderGenes(expression, selection);
      scene = { ...ordered, geneNames: Array.from(ordered.genes, (gene) => nameOf(model.dataset, gene)) };
      lineOf = new Map(Array.from(scene.genes, (gene, line) => [gene, line]));
      own.isNamed = selection.length <= MOST_NAMED;
    },
    change: (patch) => Object.assign(own, patch),
    /** The number of a gene in the order; undefined if it is not shown. */
    placeOf: (gene) => lineOf.get(gene),
    get() {
      const which = Number(own.centred);
      reaches[which] ??= colourReach(expression, own.centred);
      return { ...scene, ...own, expression, columns: expression.columns, format, reach: reaches[which] };
    },
  };
}
