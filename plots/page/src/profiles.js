/**
 * Arithmetic on the profiles of genes. `expression` has `columns`, `rows` and `profile(gene)`, which holds a
 * number per column and NaN where it is missing.
 */

/** The mean of some genes in each column, NaN where none of them has a value. */
export function meanProfile(expression, genes) {
  const width = expression.columns.length;
  const sums = new Float64Array(width);
  const counts = new Int32Array(width);
  for (const gene of genes) {
    const profile = expression.profile(gene);
    for (let column = 0; column < width; column += 1) {
      if (!Number.isNaN(profile[column])) {
        sums[column] += profile[column];
        counts[column] += 1;
      }
    }
  }
  return sums.map((sum, column) => (counts[column] > 0 ? sum / counts[column] : NaN));
}

/** The mean of the known values, NaN without any. */
export function meanOf(values) {
  let sum = 0;
  let count = 0;
  for (const value of values) {
    if (!Number.isNaN(value)) {
      sum += value;
      count += 1;
    }
  }
  return count > 0 ? sum / count : NaN;
}

/** The columns of the least and the most value, `{least, most}`; null without a known value. */
export function extremesOf(values) {
  let found = null;
  values.forEach((value, column) => {
    if (Number.isNaN(value)) return;
    found ??= { least: column, most: column };
    if (value < values[found.least]) found.least = column;
    if (value > values[found.most]) found.most = column;
  });
  return found;
}

/**
 * Profiles centred and scaled to length 1, so that products of them are Pearson correlations; a missing value
 * counts as the mean of its gene, and a gene that does not vary becomes zeros.
 *
 * @returns {Float32Array} row-major, genes x columns
 */
export function unitProfiles(expression, genes) {
  const width = expression.columns.length;
  const units = new Float32Array(genes.length * width);
  genes.forEach((gene, row) => {
    const profile = expression.profile(gene);
    const mean = meanOf(profile);
    let square = 0;
    for (let column = 0; column < width; column += 1) {
      if (!Number.isNaN(profile[column])) square += (profile[column] - mean) ** 2;
    }
    if (!(square > 0)) return;
    const scale = 1 / Math.sqrt(square);
    for (let column = 0; column < width; column += 1) {
      const value = profile[column];
      units[row * width + column] = Number.isNaN(value) ? 0 : (value - mean) * scale;
    }
  });
  return units;
}
