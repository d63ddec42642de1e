/** What is said of a gene, in words. */

import { formatCoordinate, functionText } from './format.js';
import { nameOf } from './dataset.js';
import { textOf } from './colourings.js';

/** Label, if there are any, and group of a gene. */
export function categoryText(model, state, gene) {
  const group = model.pairOf(state)?.group ?? '';
  const label = textOf(model.colouringOf(state), gene);
  return [label, group].filter((part) => part !== '').join(' \u00b7 ');
}

/** Coordinates in the pair that is drawn. */
export function coordinatesText(model, state, gene) {
  if (!model.isPlaced(state, gene)) return 'no position in these components';
  const pair = model.pairOf(state);
  return `${formatCoordinate(pair.x[gene])}, ${formatCoordinate(pair.y[gene])}`;
}

/** One sentence, for screen readers. */
export function geneSentence(model, state, gene) {
  return [
    nameOf(model.dataset, gene),
    categoryText(model, state, gene),
    functionText(model.dataset.functions[gene] ?? ''),
    coordinatesText(model, state, gene),
  ].filter((part) => part !== '').join('; ');
}

/** Address of a gene's public page; empty where the gene table does not know the name. */
export function databaseAddress(dataset, gene) {
  if ((dataset.functions[gene] ?? '') === '') return '';
  // A lone surrogate has no encoding.
  const name = (dataset.genes[gene] || nameOf(dataset, gene)).replace(/\p{Cs}/gu, '\ufffd');
  return `https://www.yeastgenome.org/locus/${encodeURIComponent(name)}`;
}
