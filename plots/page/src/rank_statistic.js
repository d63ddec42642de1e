/** How far genes stand apart from all others in a column, by ranks (Mann and Whitney 1947). */

/** The place of `value` among ascending ones, which hold it. */
function placeOf(values, value) {
  let low = 0;
  let high = values.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (values[middle] < value) low = middle + 1;
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
  const distinct = [];
  const shared = [];
  let ties = 0;
  for (let first = 0; first < sorted.length;) {
    let next = first + 1;
    while (next < sorted.length && sorted[next] === sorted[first]) next += 1;
    distinct.push(sorted[first]);
    shared.push((first + next + 1) / 2);
    ties += (next - first) ** 3 - (next - first);
    first = next;
  }
  const ranks = values.map((value) => (Number.isNaN(value) ? NaN : shared[placeOf(distinct, value)]));
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
