/** What there is to say of the clusters of the genes. */

import { enrich } from './enrichment.js';

/** As the run names it. */
const MODULARITY = 'Modularity of the clusters';

/** Terms of a higher rate of false discoveries say nothing of a cluster. */
const MOST_FALSE = 0.05;

/** The middle of some numbers; NaN of none. */
export function medianOf(numbers) {
  if (numbers.length === 0) return NaN;
  const sorted = Float64Array.from(numbers).sort();
  const half = sorted.length >> 1;
  return sorted.length % 2 === 1 ? sorted[half] : (sorted[half - 1] + sorted[half]) / 2;
}

/**
 * The clusters of the genes: those that the run found, or else a column of labels that is called so.
 *
 * @param {object} model
 * @returns null if there are none; else `colouring`, the index of what colours by them, `isOfRun`, and `list`, of
 *   `label` and `genes` (ascending) of each, the largest first, of equally large ones by the label
 */
export function clustersOf({ dataset, colourings }) {
  const titles = dataset.colourings.map(({ title }) => title);
  // A run that finds clusters tells their modularity, and puts them behind the labels that it is given.
  const isOfRun = dataset.quality?.numbers.some(({ name }) => name === MODULARITY) ?? false;
  const colouring = isOfRun ? titles.lastIndexOf('Cluster') : titles.findIndex((title) => /^clusters?$/i.test(title));
  const labels = colouring < 0 ? [] : colourings.at(colouring).labels;
  const members = new Map();
  labels.forEach((label, gene) => {
    if (label === '') return;
    if (!members.has(label)) members.set(label, []);
    members.get(label).push(gene);
  });
  if (members.size === 0) return null;
  const list = Array.from(members, ([label, genes]) => ({ label, genes: Int32Array.from(genes) }));
  list.sort((one, other) => other.genes.length - one.genes.length
    || Number(one.label) - Number(other.label) || (one.label < other.label ? -1 : 1));
  return { colouring, isOfRun, list };
}

/** The terms that a cluster has more of than chance gives, by number and name, the least likely first. */
export function topTerms(dataset, genes, most) {
  const likely = enrich(dataset, genes).filter(({ q, fold }) => q <= MOST_FALSE && fold > 1);
  return likely.slice(0, most).map(({ term, q, fold, hits }) => ({ term, name: dataset.terms.list[term].name, q, fold, hits }));
}

/**
 * The middle of a cluster on the map: the gene that is nearest to the medians of the coordinates, so that it
 * lies among the cluster.
 *
 * @param {{x: Float64Array, y: Float64Array}} pair NaN where a gene has no place
 * @returns {number} the gene; -1 if none has a place
 */
export function middleGene({ x, y }, genes) {
  const placed = Array.from(genes).filter((gene) => Number.isFinite(x[gene]) && Number.isFinite(y[gene]));
  const middle = [x, y].map((places) => medianOf(placed.map((gene) => places[gene])));
  let nearest = -1;
  let least = Infinity;
  for (const gene of placed) {
    const distance = Math.hypot(x[gene] - middle[0], y[gene] - middle[1]);
    if (distance < least) [nearest, least] = [gene, distance];
  }
  return nearest;
}
