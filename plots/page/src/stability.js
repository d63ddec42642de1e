/** How far the map stays as it is with other seeds and with other columns. */

import { columnOf, readColumns } from './reliability.js';

/** A gene does not stay where it is where it keeps less than this share of its nearest genes on the map; most genes of noise do. */
export const LEAST_STAYING = 0.1;

/** A group of fewer genes is too small to speak of most of it. */
const FEWEST_GENES = 3;

const isShare = (value) => value === null || (typeof value === 'number' && value >= 0 && value <= 1);

const isPair = (pair) => Array.isArray(pair) && pair.length === 6 && pair.slice(0, 2).every(Number.isInteger)
  && pair.slice(2, 5).every(isShare) && typeof pair[5] === 'boolean';

/**
 * Reads with what the run compared its map.
 *
 * @param raw `seeds` and `draws` (how many maps), `neighbours` (how many were compared), `columns` as of `readColumns`,
 *   and `pairs` of clusters: their numbers from 1, separation, the shares of maps of other seeds and of other columns on which
 *   they are apart, and whether they stay so
 * @param {number} count of genes
 * @returns null if there is nothing; else `seeds`, `draws`, `neighbours`, `columns` and `pairs` (`labels`, `stays`)
 */
export function readStability(raw, count) {
  if (count === 0 || !Array.isArray(raw?.columns) || !Array.isArray(raw.pairs)) return null;
  const columns = readColumns(raw.columns, count);
  if (columns.length === 0) return null;
  return {
    seeds: Number(raw.seeds),
    draws: Number(raw.draws),
    neighbours: Number(raw.neighbours),
    columns,
    pairs: raw.pairs.filter(isPair).map(([first, second, , , , stays]) => ({ labels: [`${first}`, `${second}`], stays })),
  };
}

/** The share of nearest genes that each keeps with other columns, or with other seeds where that is all there is. */
export function stayingOf(stability) {
  const name = (kind) => `shared_${stability.neighbours}_${kind}`;
  return columnOf(stability, name('columns')) ?? columnOf(stability, name('seeds'));
}

/**
 * Whether some genes stay together.
 *
 * @returns `leaving`: how many keep less than `LEAST_STAYING` of their nearest genes, and `isDoubtful`: whether these are
 *   most of three genes or more
 */
export function stabilityOf(stability, genes) {
  const staying = stayingOf(stability);
  const leaving = genes.filter((gene) => staying[gene] < LEAST_STAYING).length;
  return { leaving, isDoubtful: genes.length >= FEWEST_GENES && 2 * leaving > genes.length };
}

/** The labels of the clusters from which one does not stay apart, in their order. */
export function notApartFrom({ pairs }, label) {
  return pairs.filter(({ labels, stays }) => !stays && labels.includes(label))
    .map(({ labels: [first, second] }) => (first === label ? second : first))
    .sort((one, other) => Number(one) - Number(other));
}
