/** Rows brought into a form whose Euclidean distances are those of a metric, and correlations. */

/** Ranks from 1; equal values share the mean of their places. */
function ranksOf(values) {
  const order = Array.from(values.keys()).sort((a, b) => values[a] - values[b]);
  const ranks = new Float64Array(values.length);
  for (let first = 0; first < order.length;) {
    let end = first;
    while (end < order.length && values[order[end]] === values[order[first]]) end += 1;
    for (let i = first; i < end; i += 1) ranks[order[i]] = (first + 1 + end) / 2;
    first = end;
  }
  return ranks;
}

function centred(values) {
  const mean = values.reduce((sum, value) => sum + value, 0) / values.length;
  return values.map((value) => value - mean);
}

function scaled(values) {
  const norm = Math.sqrt(values.reduce((sum, value) => sum + value * value, 0));
  return values.map((value) => value / norm);
}

const FORMS = {
  euclidean: (values) => values,
  pearson: (values) => scaled(centred(values)),
  cosine: scaled,
  spearman: (values) => scaled(centred(ranksOf(values))),
};

/** The metrics whose distances the page can tell. */
export const METRICS = Object.keys(FORMS);

/**
 * A row in the form that a metric asks for: half the squared distance of two such rows is one less
 * their correlation, or the cosine of their angle. Euclid's rows stay as they are.
 *
 * @param {Float64Array} values all finite
 * @param {string} metric one of `METRICS`
 */
export function formOf(values, metric) {
  return FORMS[metric](values);
}

/** The Euclidean distance of two rows of equal length. */
export function distanceOf(one, other) {
  let sum = 0;
  for (let i = 0; i < one.length; i += 1) sum += (one[i] - other[i]) ** 2;
  return Math.sqrt(sum);
}

const FEWEST_PAIRS = 3;

/**
 * Pearson's correlation of two rows over the places where both have a number; NaN where these are
 * fewer than three or one of the rows does not vary there.
 */
export function correlationOf(one, other) {
  let [count, sumX, sumY] = [0, 0, 0];
  for (let i = 0; i < one.length; i += 1) {
    if (!Number.isNaN(one[i] + other[i])) {
      count += 1;
      sumX += one[i];
      sumY += other[i];
    }
  }
  if (count < FEWEST_PAIRS) return NaN;
  const [meanX, meanY] = [sumX / count, sumY / count];
  let [xx, yy, xy] = [0, 0, 0];
  for (let i = 0; i < one.length; i += 1) {
    if (!Number.isNaN(one[i] + other[i])) {
      const [x, y] = [one[i] - meanX, other[i] - meanY];
      xx += x * x;
      yy += y * y;
      xy += x * y;
    }
  }
  // A square root of the product would be 0 or infinite for very small and very large values.
  const correlation = xy / Math.sqrt(xx) / Math.sqrt(yy);
  return Number.isFinite(correlation) ? Math.min(Math.max(correlation, -1), 1) : NaN;
}
