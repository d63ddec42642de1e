/** What a test of groups gave, as a table and in words. */

import { nameOf } from './dataset.js';
import { tabTable } from './csv.js';

const HEADER = ['term', 'name', 'aspect', 'hits', 'size', 'drawn', 'total', 'fold', 'p', 'q', 'genes'];

/** All results with all digits as tab-separated text, in the columns of the command's table. */
export function enrichmentTable(dataset, groups, results) {
  return tabTable([HEADER, ...results.map(({ term, hits, size, drawn, total, fold, p, q, genes }) => {
    const { id, name, aspect } = groups.list[term];
    return [id, name, aspect, hits, size, drawn, total, fold, p, q, genes.map((gene) => nameOf(dataset, gene)).join(' ')];
  })]);
}

/** A chance for reading: "0.031", "2.4e-30". */
export function formatChance(chance) {
  if (chance === 0) return 'below 1e-300';
  return chance < 0.001 ? chance.toExponential(1) : String(Number(chance.toPrecision(2)));
}

/** A multiple for reading: "67", "2.4". */
export function formatFold(fold) {
  return fold >= 10 ? String(Math.round(fold)) : fold.toFixed(1);
}
