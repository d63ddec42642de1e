/** How far genes stand apart from all others in a column, by ranks (Mann and Whitney 1947). */

/** The first place in ascending `values` that is not before `value`; with `past`, the first after all equals. */
function placeOf(values, value, past) {
  let low = 0;
  let high = values.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (values[middle] < value || (past && values[middle] === value)) low = middle + 1;
    else high = middle;
  }
  return low;
}

/**
 * Ranks values from the least, 1, on; equal ones share the mean of their ranks.
 *
 * @param {Float64Array} values NaN where missing
 * @returns `ranks` (NaN where missing), `known` (how many are not) and `ties` (the sum of t^3 - t over groups of
 *   t equal values)
 */
export function rankValues(values) {
  const sorted = values.filter((value) => !Number.isNaN(value)).sort();
  const ranks = new Float64Array(values.length).fill(NaN);
  values.forEach((value, row) => {
    if (!Number.isNaN(value)) ranks[row] = (placeOf(sorted, value, false) + placeOf(sorted, value, true) + 1) / 2;
  });
  let ties = 0;
  for (let first = 0; first < sorted.length;) {
    const next = placeOf(sorted, sorted[first], true);
    ties += (next - first) ** 3 - (next - first);
    first = next;
  }
  return { ranks, known: sorted.length, ties };
}

/**
 * Compares some rows with all others.
 *
 * @param ranking as of `rankValues`
 * @param {Int32Array} rows
 * @returns `u` (pairs of a row and another in which the row has the larger value, equal ones count half), `auc`
 *   (the share of such pairs) and `z` (how many standard deviations `u` lies above what random rows would give,
 *   with the correction for ties; 0 if all values are equal); null unless both sides have a known value
 */
export function rankStatistic({ ranks, known, ties }, rows) {
  let sum = 0;
  let inside = 0;
  for (const row of rows) {
    if (!Number.isNaN(ranks[row])) {
      sum += ranks[row];
      inside += 1;
    }
  }
  const pairs = inside * (known - inside);
  if (pairs === 0) return null;
  const u = sum - (inside * (inside + 1)) / 2;
  const variance = (pairs / 12) * (known + 1 - ties / (known * (known - 1)));
  return { u, auc: u / pairs, z: variance > 0 ? (u - pairs / 2) / Math.sqrt(variance) : 0 };
}
