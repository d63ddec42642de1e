/** Sets of genes as ascending Int32Arrays. */

/** Whether `genes` holds `gene`, by bisection. */
export function includes(genes, gene) {
  let low = 0;
  let high = genes.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (genes[middle] < gene) low = middle + 1;
    else high = middle;
  }
  return genes[low] === gene;
}

/** The genes of either set. */
export function union(first, second) {
  return Int32Array.from(new Set([...first, ...second])).sort();
}

/** The genes of both sets. */
export const intersection = (first, second) => first.filter((gene) => includes(second, gene));

/** The genes of the first set that are not in the second. */
export const difference = (first, second) => first.filter((gene) => !includes(second, gene));

/** Whether two sets hold the same genes. */
export const areEqual = (first, second) =>
  first.length === second.length && first.every((gene, index) => gene === second[index]);

/** The set with `gene` added, or removed if it was in. */
export function toggled(genes, gene) {
  return includes(genes, gene) ? genes.filter((other) => other !== gene) : union(genes, [gene]);
}
