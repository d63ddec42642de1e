/**
 * What a heat map shows: values as they are or less the mean of their gene, a line for each gene or for the mean
 * of several.
 */

import { meanOf } from './profiles.js';

const MOST_LOOKED_AT = 2000;
/** The share of values that the colours tell apart; those farther out have the colours of the ends. */
const SHARE_WITHIN = 0.98;

function* someProfiles(expression) {
  const step = Math.max(1, Math.ceil(expression.rows / MOST_LOOKED_AT));
  for (let gene = 0; gene < expression.rows; gene += step) yield expression.profile(gene);
}

/** Whether 0 is the middle of the values: whether there are any below it. */
export function isAroundZero(expression) {
  for (const profile of someProfiles(expression)) if (profile.some((value) => value < 0)) return true;
  return false;
}

/** `value` with its first two digits. */
function rounded(value) {
  return Number(value.toPrecision(2));
}

/**
 * How far from 0 the colours reach, the same for any selection.
 *
 * @param {boolean} centred whether values are less the mean of their gene
 */
export function colourReach(expression, centred) {
  const sizes = [];
  for (const profile of someProfiles(expression)) {
    const middle = centred ? meanOf(profile) : 0;
    for (const value of profile) if (!Number.isNaN(value)) sizes.push(Math.abs(value - middle));
  }
  const sorted = Float64Array.from(sizes).sort();
  const reach = rounded(sorted[Math.floor((sorted.length - 1) * SHARE_WITHIN)] ?? 0);
  return reach > 0 ? reach : 1;
}

/**
 * The values of the lines from `from` to before `to`.
 *
 * @param {Int32Array} genes in the order of the lines
 * @param {{perLine: number, centred: boolean}} how the number of genes whose mean a line is, and whether values
 *   are less the mean of their gene
 * @returns {Float32Array} row-major, lines x columns, NaN where no gene of the line has a value
 */
export function lineValues(expression, genes, { perLine, centred }, from, to) {
  const width = expression.columns.length;
  const values = new Float32Array((to - from) * width);
  const counts = new Int32Array(width);
  for (let line = from; line < to; line += 1) {
    const row = values.subarray((line - from) * width, (line - from + 1) * width);
    counts.fill(0);
    for (const gene of genes.subarray(line * perLine, (line + 1) * perLine)) {
      const profile = expression.profile(gene);
      const middle = centred ? meanOf(profile) : 0;
      for (let column = 0; column < width; column += 1) {
        if (!Number.isNaN(profile[column])) {
          row[column] += profile[column] - middle;
          counts[column] += 1;
        }
      }
    }
    for (let column = 0; column < width; column += 1) row[column] = counts[column] > 0 ? row[column] / counts[column] : NaN;
  }
  return values;
}
