/** Which groups of genes a selection has more of than chance gives. */

import { falseDiscoveryRates, upperTail } from './overlap_chance.js';

/** Groups of fewer genes are not tested: one gene is not together with others. */
export const FEWEST_GENES = 2;

/**
 * Ways to group genes: terms, labels, words.
 *
 * @typedef {object} Groups
 * @property {Array} list what the groups are
 * @property {(gene: number) => ArrayLike<number>} of the groups of a gene, ascending, as places in `list`
 * @property {(gene: number) => boolean} annotated whether anything is known of a gene; the others are
 *   left out, of selection and background
 * @property {(gene: number) => number} firstOf the first row of the same gene; a gene counts once
 */

/** The genes of which something is known, each once, ascending. */
function knownGenes(groups, genes) {
  const known = new Set();
  for (const gene of genes) if (groups.annotated(gene)) known.add(groups.firstOf(gene));
  return Int32Array.from(known).sort();
}

function sizesOf(groups, genes) {
  const sizes = new Int32Array(groups.list.length);
  for (const gene of genes) for (const group of groups.of(gene)) sizes[group] += 1;
  return sizes;
}

/** The genes of each group. */
function membersOf(groups, genes) {
  const members = new Map();
  for (const gene of genes) {
    for (const group of groups.of(gene)) {
      if (!members.has(group)) members.set(group, []);
      members.get(group).push(gene);
    }
  }
  return members;
}

function everyGene(count) {
  return Int32Array.from({ length: count }, (_, gene) => gene);
}

/**
 * Tests every group of two or more genes.
 *
 * @param {Groups} groups
 * @param {ArrayLike<number>} genes the selection; genes that are not in the background are left out
 * @param {ArrayLike<number>} background what it might have been drawn from
 * @returns `results`, the groups that have any of the genes, likeliest by chance last: `term` (place in
 *   `groups.list`), `hits`, `size`, `drawn`, `total`, `fold`, `p`, `q` and `genes` (ascending); `tested`, the number
 *   of groups; `drawn` and `total`, how many genes of selection and background are annotated
 */
export function testGroups(groups, genes, background) {
  const from = knownGenes(groups, background);
  const within = new Set(from);
  const chosen = knownGenes(groups, genes).filter((gene) => within.has(gene));
  const sizes = sizesOf(groups, from);
  const [drawn, total] = [chosen.length, from.length];
  const results = [];
  for (const [term, members] of membersOf(groups, chosen)) {
    const [hits, size] = [members.length, sizes[term]];
    if (size >= FEWEST_GENES) {
      results.push({
        term, hits, size, drawn, total,
        fold: (hits * total) / (size * drawn),
        p: upperTail(hits, size, drawn, total),
        q: 1,
        genes: members,
      });
    }
  }
  results.sort((one, other) => one.p - other.p || other.hits - one.hits || one.term - other.term);
  const tested = sizes.filter((size) => size >= FEWEST_GENES).length;
  const rates = falseDiscoveryRates(results.map(({ p }) => p), tested);
  results.forEach((result, place) => {
    result.q = rates[place];
  });
  return { results, tested, drawn, total };
}

/**
 * The terms of a selection, best first, as the `results` of `testGroups`; none where the data have no terms.
 *
 * @param {object} dataset as of `readDataset`
 * @param {ArrayLike<number>} genes
 * @param {ArrayLike<number>|null} [background] all genes of the data if null
 */
export function enrich(dataset, genes, background = null) {
  if (dataset.terms === null) return [];
  return testGroups(dataset.terms, genes, background ?? everyGene(dataset.count)).results;
}
