/** The values of the genes that the map was made of, as far as the page has them. */

import { bytesOf } from './base64.js';
import { correlationOf, distanceOf, formOf, METRICS } from './directions.js';

/** The code of a value that is not known, for each number of bits. */
const UNKNOWN = { 8: 0xff, 16: 0xffff };

const isNumbers = (list, count) => Array.isArray(list) && list.length === count
  && list.every((value) => typeof value === 'number');

/** The codes, or null if the bytes are not those of as many values. */
function codesOf(text, bits, count) {
  const bytes = typeof text === 'string' ? bytesOf(text) : null;
  if (bytes?.length !== count * (bits / 8)) return null;
  if (bits === 8) return bytes;
  const codes = new Uint16Array(count);
  for (let i = 0; i < count; i += 1) codes[i] = bytes[2 * i] + 256 * bytes[2 * i + 1];
  return codes;
}

/** One bit for each value, set where the run filled it in; null if the bytes are not as many. */
function filledOf(text, count) {
  const length = Math.ceil(count / 8);
  if (text === '' || text === undefined) return new Uint8Array(length);
  const bytes = typeof text === 'string' ? bytesOf(text) : null;
  return bytes?.length === length ? bytes : null;
}

/** What the run compared of a gene: the values with those that were filled in. */
function rowReader({ codes, lows, steps, unknown }) {
  const count = lows.length;
  return (gene) => {
    const row = new Float64Array(count);
    for (let column = 0; column < count; column += 1) {
      const code = codes[gene * count + column];
      row[column] = code === unknown ? NaN : lows[column] + code * steps[column];
    }
    return row;
  };
}

/** Distances of rows some of whose values are not known: over the others, and scaled up to all. */
function distanceOfParts(one, other, metric) {
  const both = Array.from(one.keys()).filter((column) => !Number.isNaN(one[column] + other[column]));
  const parts = [one, other].map((row) => formOf(Float64Array.from(both, (column) => row[column]), metric));
  return distanceOf(...parts) * (metric === 'euclidean' ? Math.sqrt(one.length / both.length) : 1);
}

/** Distances between genes; rows are brought into the metric's form once all of them are asked for. */
function createDistance(rows, count, metric, isComplete) {
  if (!isComplete) return (a, b) => distanceOfParts(rows(a), rows(b), metric);
  const forms = new Array(count);
  const form = (gene) => {
    forms[gene] ??= formOf(rows(gene), metric);
    return forms[gene];
  };
  return (a, b) => distanceOf(form(a), form(b));
}

/** The `k` of `count` genes that are nearest to one, by distance; of equals the first. */
function nearestBy(distance, count, gene, k) {
  const distances = Float64Array.from({ length: count }, (_, other) => distance(gene, other));
  const others = Array.from(distances.keys()).filter((other) => other !== gene && !Number.isNaN(distances[other]));
  others.sort((a, b) => distances[a] - distances[b] || a - b);
  return others.slice(0, Math.max(k, 0)).map((other) => ({ gene: other, distance: distances[other] }));
}

function isSound({ columns, bits, lows, steps, metric }) {
  return Array.isArray(columns) && columns.length > 0 && bits in UNKNOWN && METRICS.includes(metric)
    && isNumbers(lows, columns.length) && isNumbers(steps, columns.length);
}

/**
 * Reads the matrix of the page's data.
 *
 * A value is low + code * step of its column, so that it differs from the run's by half a step at most.
 *
 * @param {object} raw `columns`, `bits` (16 or 8), `lows` and `steps` (one per column), `values` (base64
 *   of the codes, row after row, the low byte first; the highest code is of a value that is not known),
 *   `filled` (base64 of a bit per value, lowest first, or empty) and `metric`
 * @param {number} count number of genes
 * @returns null if there is none, or it is damaged; else `columns` (texts), `rows`, `metric`,
 *   `value(gene, column)` and `profile(gene)` (Float32Array, not to be changed), NaN where a value was
 *   missing, even if the run filled it in; `distance(a, b)` in the metric of the run, with what it
 *   filled in; `correlation(a, b)`: Pearson's of what both have; `nearest(gene, k)`: the nearest others,
 *   `{gene, distance, correlation}` by distance
 */
export function readExpression(raw, count) {
  if (raw === null || typeof raw !== 'object' || !isSound(raw) || count === 0) return null;
  const { bits, lows, steps, metric } = raw;
  const columns = raw.columns.map(String);
  const codes = codesOf(raw.values, bits, count * columns.length);
  const filled = filledOf(raw.filled, count * columns.length);
  if (codes === null || filled === null) return null;
  const unknown = UNKNOWN[bits];
  const rows = rowReader({ codes, lows, steps, unknown });
  const distance = createDistance(rows, count, metric, !codes.includes(unknown));
  const profiles = new Array(count);

  const isMissing = (at) => codes[at] === unknown || ((filled[at >> 3] >> (at & 7)) & 1) === 1;
  function value(gene, column) {
    const at = gene * columns.length + column;
    return isMissing(at) ? NaN : lows[column] + codes[at] * steps[column];
  }
  function profile(gene) {
    if (profiles[gene] === undefined) {
      profiles[gene] = new Float32Array(columns.length);
      for (let column = 0; column < columns.length; column += 1) profiles[gene][column] = value(gene, column);
    }
    return profiles[gene];
  }
  const correlation = (a, b) => correlationOf(profile(a), profile(b));
  return {
    columns,
    rows: count,
    metric,
    value,
    profile,
    distance,
    correlation,
    nearest: (gene, k) => nearestBy(distance, count, gene, k).map((each) => ({
      ...each,
      correlation: correlation(gene, each.gene),
    })),
  };
}
