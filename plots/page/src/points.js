/**
 * Finding genes by place. `points` is `{x, y, genes}`: the coordinates of all genes and the ascending
 * numbers of those that are drawn.
 */

import { countInBox, indexOf, visitNear } from './grid_index.js';
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

/** The nearest gene within a square around a place, and its squared distance. */
function nearestWithin(index, { x, y }, atX, atY, reach, isAbove) {
  let best = -1;
  let least = reach * reach;
  visitNear(index, { x0: atX - reach, x1: atX + reach, y0: atY - reach, y1: atY + reach }, (gene) => {
    const distance = (x[gene] - atX) ** 2 + (y[gene] - atY) ** 2;
    if (distance < least || (distance === least && (best < 0 || isAbove(gene, best)))) {
      least = distance;
      best = gene;
    }
  });
  return best;
}

const isLater = (gene, other) => gene > other;

/**
 * The drawn gene nearest to a place and at most `reach` data units away, or -1.
 *
 * @param {function(number, number): boolean} [isAbove] whether a gene is drawn above another one: of
 *   equally near ones that is found; without it the one of the higher number
 */
export function nearestGene(points, atX, atY, reach = Infinity, isAbove = isLater) {
  const index = indexOf(points);
  if (!index) return -1;
  // The answer within a small square is the answer, if there is one.
  for (let tried = index.step; tried < reach; tried *= 4) {
    const gene = nearestWithin(index, points, atX, atY, tried, isAbove);
    if (gene >= 0) return gene;
    if (tried > 4 * index.step * Math.max(index.columns, index.rows)) break;
  }
  return nearestWithin(index, points, atX, atY, reach, isAbove);
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
export function countInWindow(points, view) {
  const index = indexOf(points);
  return index ? countInBox(index, points, view) : 0;
}

/** Whether a place lies within a polygon; where its line crosses itself, by the even-odd rule. */
function isInPolygon(corners, atX, atY) {
  let inside = false;
  for (let i = 0, last = corners.length - 1; i < corners.length; last = i, i += 1) {
    const [x0, y0] = corners[last];
    const [x1, y1] = corners[i];
    if (y0 > atY !== y1 > atY && atX <= x0 + ((atY - y0) / (y1 - y0)) * (x1 - x0)) inside = !inside;
  }
  return inside;
}

/** The drawn genes within a polygon of [x, y] corners, ascending. */
export function genesInPolygon(points, corners) {
  const box = { x0: Infinity, x1: -Infinity, y0: Infinity, y1: -Infinity };
  for (const [x, y] of corners) {
    box.x0 = Math.min(box.x0, x);
    box.x1 = Math.max(box.x1, x);
    box.y0 = Math.min(box.y0, y);
    box.y1 = Math.max(box.y1, y);
  }
  return genesInWindow(points, box).filter((gene) => isInPolygon(corners, points.x[gene], points.y[gene]));
}
