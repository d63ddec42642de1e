/** An order of rows in which those that behave alike stand together. */

import { unitProfiles } from './profiles.js';

/** At most so many rows are clustered one by one; of more, a sample is, and the others follow it. */
export const MOST_CLUSTERED = 1000;

const MOST_SAMPLED = 256;
const FEWEST_SAMPLED = 16;
/** How many products of values the comparison of rows, with each other or with the sample, may take. */
const MOST_PRODUCTS = 4e7;

/** The product of two rows; two sums side by side, which processors form faster than one. */
function product(units, width, one, other) {
  let [first, second] = [0, 0];
  let at = one * width;
  let beside = other * width;
  const end = at + width;
  for (; at + 1 < end; at += 2, beside += 2) {
    first += units[at] * units[beside];
    second += units[at + 1] * units[beside + 1];
  }
  return at < end ? first + second + units[at] * units[beside] : first + second;
}

/** 1 - correlation of all pairs, row-major, count x count. */
function allDistances(units, width, count) {
  const distances = new Float64Array(count * count);
  for (let one = 0; one < count; one += 1) {
    for (let other = one + 1; other < count; other += 1) {
      const distance = 1 - product(units, width, one, other);
      distances[one * count + other] = distance;
      distances[other * count + one] = distance;
    }
  }
  return distances;
}

/** The cluster nearest to `top`; of equals `previous`, else the first. */
function nearestCluster(distances, count, alive, top, previous) {
  let best = previous;
  let least = previous >= 0 ? distances[top * count + previous] : Infinity;
  for (let other = 0; other < count; other += 1) {
    if (alive[other] && other !== top && distances[top * count + other] < least) {
      least = distances[top * count + other];
      best = other;
    }
  }
  return best;
}

/**
 * Hierarchical clustering with average linkage, by chains of nearest neighbours.
 *
 * @param {Float64Array} distances finite, symmetric, row-major, count x count; overwritten
 * @returns {[number, number][]} the merges; rows are nodes 0 to count - 1, and the i-th merge makes node
 *   count + i of two nodes before it
 */
export function averageLinkage(distances, count) {
  const alive = new Uint8Array(count).fill(1);
  const sizes = new Int32Array(count).fill(1);
  const nodes = Int32Array.from({ length: count }, (_, row) => row);
  const merges = [];
  const chain = [];
  while (merges.length < count - 1) {
    if (chain.length === 0) chain.push(alive.indexOf(1));
    const top = chain.at(-1);
    const previous = chain.length > 1 ? chain.at(-2) : -1;
    const nearest = nearestCluster(distances, count, alive, top, previous);
    if (nearest !== previous) {
      chain.push(nearest);
      continue;
    }
    const [kept, gone] = [Math.min(top, previous), Math.max(top, previous)];
    const total = sizes[kept] + sizes[gone];
    for (let other = 0; other < count; other += 1) {
      if (alive[other] && other !== kept && other !== gone) {
        const mean = (sizes[kept] * distances[kept * count + other] + sizes[gone] * distances[gone * count + other]) / total;
        distances[kept * count + other] = mean;
        distances[other * count + kept] = mean;
      }
    }
    merges.push([nodes[kept], nodes[gone]]);
    nodes[kept] = count + merges.length - 1;
    sizes[kept] = total;
    alive[gone] = 0;
    // Rounding may have brought either of the two into the chain before: it begins anew there.
    chain.length = Math.min(chain.indexOf(kept), chain.indexOf(gone));
  }
  return merges;
}

/** The leaves of the tree from left to right; `flips[node]` says which nodes are turned round. */
function leavesOf(merges, flips, count) {
  const leaves = new Int32Array(count);
  const waiting = [[2 * count - 2, 0]];
  let found = 0;
  while (waiting.length > 0) {
    const [node, turned] = waiting.pop();
    if (node < count) {
      leaves[found] = node;
      found += 1;
    } else {
      const isTurned = turned ^ flips[node];
      const [first, second] = merges[node - count];
      waiting.push([isTurned ? first : second, isTurned], [isTurned ? second : first, isTurned]);
    }
  }
  return leaves;
}

/** Lays out a tree: of each two parts, the ends that are most alike come together. */
function layOut(merges, count, likeness) {
  const flips = new Uint8Array(2 * count - 1);
  const ends = Array.from({ length: count }, (_, row) => [row, row]);
  merges.forEach(([first, second], merge) => {
    const [one, other] = [ends[first], ends[second]];
    let best = -Infinity;
    let chosen = [0, 0];
    for (const turns of [[0, 0], [0, 1], [1, 0], [1, 1]]) {
      const alike = likeness(one[turns[0] ? 0 : 1], other[turns[1] ? 1 : 0]);
      if (alike > best) {
        best = alike;
        chosen = turns;
      }
    }
    flips[first] ^= chosen[0];
    flips[second] ^= chosen[1];
    ends[count + merge] = [one[chosen[0] ? 1 : 0], other[chosen[1] ? 0 : 1]];
  });
  const leaves = leavesOf(merges, flips, count);
  return leaves[0] <= leaves[count - 1] ? leaves : leaves.reverse();
}

function clusteredOrder(units, width, count) {
  if (count < 3) return Int32Array.from({ length: count }, (_, row) => row);
  const merges = averageLinkage(allDistances(units, width, count), count);
  return layOut(merges, count, (one, other) => product(units, width, one, other));
}

/** Puts each row beside the sampled row that it is most like, on the side of the neighbour that it is more like. */
function followSample(units, width, count, sample) {
  const likeness = new Float32Array(sample.length);
  const places = new Int32Array(count);
  const leanings = new Float32Array(count);
  for (let row = 0; row < count; row += 1) {
    let best = 0;
    sample.forEach((other, place) => {
      likeness[place] = product(units, width, row, other);
      if (likeness[place] > likeness[best]) best = place;
    });
    places[row] = best;
    leanings[row] = (likeness[best + 1] ?? -1) - (likeness[best - 1] ?? -1);
  }
  return Int32Array.from({ length: count }, (_, row) => row)
    .sort((one, other) => places[one] - places[other] || leanings[one] - leanings[other] || one - other);
}

/**
 * Orders genes by hierarchical clustering: average linkage on 1 - Pearson correlation, in which a missing value
 * counts as the mean of its gene. The same genes come in the same order each time.
 *
 * @param {object} expression as in `profiles.js`
 * @param {Int32Array} genes
 * @returns `genes` in order, and how many of them were `clustered`; if fewer than all, the others stand beside
 *   those that they are most like
 */
export function orderGenes(expression, genes) {
  const width = expression.columns.length;
  const count = genes.length;
  const units = unitProfiles(expression, genes);
  const arranged = (rows) => Int32Array.from(rows, (row) => genes[row]);
  const isFew = count <= MOST_CLUSTERED && (count * count * width) / 2 <= MOST_PRODUCTS;
  if (isFew || count <= FEWEST_SAMPLED) return { genes: arranged(clusteredOrder(units, width, count)), clustered: count };
  const affordable = Math.floor(MOST_PRODUCTS / (count * Math.max(width, 1)));
  const size = Math.max(FEWEST_SAMPLED, Math.min(MOST_SAMPLED, affordable));
  const sampled = Int32Array.from({ length: size }, (_, place) => Math.floor((place * count) / size));
  const sample = clusteredOrder(unitProfiles(expression, arranged(sampled)), width, size).map((row) => sampled[row]);
  return { genes: arranged(followSample(units, width, count, sample)), clustered: size };
}
