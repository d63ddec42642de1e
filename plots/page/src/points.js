/**
 * Finding genes by place. `points` is `{x, y, genes}`: the coordinates of all genes and the ascending
 * numbers of those that are drawn. A walk over 200,000 points takes under a millisecond, so there is
 * no index to keep up to date.
 */

import { contain } from 'zrender/lib/contain/polygon.js';
import { contains } from './windows.js';

/** The genes of a pair that have a position and a category that is shown, ascending. */
export function drawnGenes(pair, categories, shown) {
  const genes = new Int32Array(pair.placed);
  let count = 0;
  for (let gene = 0; gene < pair.x.length; gene += 1) {
    const placed = Number.isFinite(pair.x[gene]) && Number.isFinite(pair.y[gene]);
    if (placed && shown[categories.of[gene]]) {
      genes[count] = gene;
      count += 1;
    }
  }
  return genes.subarray(0, count);
}

/** The drawn gene nearest to a place and at most `reach` data units away, or -1; of equals the last,
 *  which is drawn on top. */
export function nearestGene({ x, y, genes }, atX, atY, reach = Infinity) {
  let best = -1;
  let least = reach * reach;
  for (const gene of genes) {
    const distance = (x[gene] - atX) ** 2 + (y[gene] - atY) ** 2;
    if (distance <= least) {
      least = distance;
      best = gene;
    }
  }
  return best;
}

/**
 * The next gene from `start` in a direction, or -1. Genes to the side count as farther away, and those
 * outside a right angle around the direction not at all. Genes on the very same place follow each other
 * by number, so that each can be reached.
 *
 * @param {number} right 1, 0 or -1
 * @param {number} up 1, 0 or -1; exactly one of the two is 0
 */
export function nextGene({ x, y, genes }, start, right, up) {
  let best = -1;
  let least = Infinity;
  for (const gene of genes) {
    const dx = x[gene] - x[start];
    const dy = y[gene] - y[start];
    const along = dx * right + dy * up;
    const aside = Math.abs(dx * up + dy * right);
    const follows = along === 0 && aside === 0
      ? (gene - start) * (right + up) > 0
      : along > 0 && aside <= along;
    // A later gene of the same place is not nearer: the smallest step in number comes first.
    const cost = along === 0 ? Math.abs(gene - start) * Number.MIN_VALUE : along + 2 * aside;
    if (follows && cost < least) {
      least = cost;
      best = gene;
    }
  }
  return best;
}

/** The drawn genes within a window, ascending. */
export function genesInWindow({ x, y, genes }, view) {
  return genes.filter((gene) => contains(view, x[gene], y[gene]));
}

/** How many drawn genes lie in a window. */
export function countInWindow({ x, y, genes }, view) {
  let count = 0;
  for (const gene of genes) if (contains(view, x[gene], y[gene])) count += 1;
  return count;
}

/** The drawn genes within a polygon of [x, y] corners, ascending. */
export function genesInPolygon(points, corners) {
  const xs = corners.map((corner) => corner[0]);
  const ys = corners.map((corner) => corner[1]);
  const box = { x0: Math.min(...xs), x1: Math.max(...xs), y0: Math.min(...ys), y1: Math.max(...ys) };
  return genesInWindow(points, box).filter((gene) => contain(corners, points.x[gene], points.y[gene]));
}
