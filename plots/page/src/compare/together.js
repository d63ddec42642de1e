/** How closely chosen genes lie together in a map. */

/** So many nearest genes of each chosen one are looked at, or as many as there are other chosen ones. */
const MOST_NEIGHBOURS = 10;

/** With more pairs to look at than this, the page would falter. */
const MOST_PAIRS = 3e7;

/** Puts a distance and its gene into short ascending lists that are full; the last falls out. */
function insert(distances, genes, distance, gene) {
  let at = distances.length - 1;
  while (at > 0 && distances[at - 1] > distance) {
    distances[at] = distances[at - 1];
    genes[at] = genes[at - 1];
    at -= 1;
  }
  distances[at] = distance;
  genes[at] = gene;
}

/**
 * The share of the nearest genes of each chosen one in a map that are chosen, too.
 *
 * @param {{x: Float64Array, y: Float64Array, genes: Int32Array}} map
 * @param {Int32Array} chosen ascending
 * @returns `neighbours`, how many nearest are looked at, `share` and `chance` (the share to be expected
 *   of genes chosen blindly), 0 to 1, and `placed`, how many chosen genes the map has; null where fewer
 *   than two have a place, or too many for the page to count
 */
export function shareTogether({ x, y, genes }, chosen) {
  const placed = chosen.filter((gene) => Number.isFinite(x[gene]));
  if (placed.length < 2 || placed.length * genes.length > MOST_PAIRS) return null;
  const isChosen = new Uint8Array(x.length);
  for (const gene of placed) isChosen[gene] = 1;
  const neighbours = Math.min(MOST_NEIGHBOURS, placed.length - 1);
  const distances = new Float64Array(neighbours);
  const nearest = new Int32Array(neighbours);
  let together = 0;
  for (const gene of placed) {
    distances.fill(Infinity);
    for (const other of genes) {
      const distance = (x[other] - x[gene]) ** 2 + (y[other] - y[gene]) ** 2;
      if (distance < distances[neighbours - 1] && other !== gene) insert(distances, nearest, distance, other);
    }
    for (const other of nearest) together += isChosen[other];
  }
  return {
    neighbours,
    share: together / (placed.length * neighbours),
    chance: (placed.length - 1) / (genes.length - 1),
    placed: placed.length,
  };
}

function percent(share) {
  return `${Math.round(100 * share)}\u00a0%`;
}

/** What `shareTogether` found, in a sentence; empty for nothing. */
export function togetherText(found) {
  if (found === null) return '';
  const { neighbours, share, chance } = found;
  const nearest = neighbours === 1 ? 'The gene' : `Of the ${neighbours} genes`;
  const rest = neighbours === 1
    ? `nearest to a chosen one is chosen, too, for ${percent(share)} of them`
    : `nearest to each chosen one ${percent(share)} are chosen, too`;
  return `${nearest} ${rest} (by chance ${percent(chance)}).`;
}
