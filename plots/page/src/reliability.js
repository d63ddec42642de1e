/** What is known of how far the place of each gene can be trusted. */

const isNumber = (value) => value === null || (typeof value === 'number' && Number.isFinite(value));

const isColumn = (count) => (column) => typeof column?.name === 'string' && typeof column.title === 'string'
  && Array.isArray(column.values) && column.values.length === count && column.values.every(isNumber);

const areLists = (lists, count) => Array.isArray(lists) && lists.length === count
  && lists.every((list) => Array.isArray(list) && list.every((gene) => Number.isInteger(gene) && gene >= 0 && gene < count));

/** Columns of numbers of the genes: `name`, `title` and `values` as Float64Array, NaN for null. */
export function readColumns(columns, count) {
  return columns.filter(isColumn(count)).map(({ name, title, values }) => ({
    name,
    title,
    values: Float64Array.from(values, (value) => value ?? NaN),
  }));
}

/**
 * Reads what the run tells of each gene.
 *
 * @param raw `columns` (`name`, `title` and `values`, one per gene, null for none), `near`, `far`, and for each gene lists
 *   of others, `falselyNear` and `torn`
 * @param {number} count of genes
 * @returns null if there is nothing; else the same with `values` as Float64Array, NaN for none
 */
export function readReliability(raw, count) {
  if (count === 0 || !areLists(raw?.falselyNear, count) || !areLists(raw.torn, count) || !Array.isArray(raw.columns)) return null;
  return {
    columns: readColumns(raw.columns, count),
    near: Number(raw.near),
    far: Number(raw.far),
    falselyNear: raw.falselyNear,
    torn: raw.torn,
  };
}

/** The numbers of a column; null if there is none of the name. */
export function columnOf({ columns }, name) {
  return columns.find((column) => column.name === name)?.values ?? null;
}

/** A line in pieces with gaps between them, as segments. */
export function dashes([x0, y0, x1, y1], piece = 5, gap = 4) {
  const length = Math.hypot(x1 - x0, y1 - y0);
  const at = (distance) => [x0 + ((x1 - x0) * distance) / length, y0 + ((y1 - y0) * distance) / length];
  const segments = [];
  for (let from = 0; from < length; from += piece + gap) {
    segments.push([...at(from), ...at(Math.min(from + piece, length))]);
  }
  return segments;
}
