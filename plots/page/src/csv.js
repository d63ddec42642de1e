/** Tables as text that spreadsheets and programs read. */

import { nameOf } from './dataset.js';

// What spreadsheets take for the start of a formula. Some of them leave out a leading tab or line end.
const OPENS_FORMULA = /^[=+\-@\t\r\n]/;
const NUMBER = /^[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?$/i;

/**
 * The text of a cell. Numbers have all their digits, and are empty where they are not finite. A text
 * that a spreadsheet would take for a formula gets an apostrophe in front, unless it is a number.
 */
function cellText(value) {
  if (typeof value === 'number') return Number.isFinite(value) ? String(value) : '';
  const text = String(value);
  return OPENS_FORMULA.test(text) && !NUMBER.test(text) ? `'${text}` : text;
}

function commaField(value) {
  const text = cellText(value);
  return /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
}

/** Tabs and line ends within a cell become blanks: fields are not quoted. */
const tabField = (value) => cellText(value).replace(/[\t\r\n]+/g, ' ');

const tableOf = (rows, field, separator) => `${rows.map((row) => Array.from(row, field).join(separator)).join('\n')}\n`;

/** Rows of texts and numbers as comma-separated text (RFC 4180, lines end in LF), harmless in spreadsheets. */
export const commaTable = (rows) => tableOf(rows, commaField, ',');

/** Rows of texts and numbers as tab-separated text, harmless in spreadsheets. */
export const tabTable = (rows) => tableOf(rows, tabField, '\t');

/** A header line and a line per gene, with the coordinates of the pair that is drawn. */
export function toCsv(model, state, genes) {
  const { dataset } = model;
  const pair = model.pairOf(state);
  const titles = dataset.colourings.map(({ title }) => title || 'label');
  return commaTable([
    ['name', ...titles, 'group', 'x', 'y', 'function'],
    ...Array.from(genes, (gene) => [
      nameOf(dataset, gene),
      ...dataset.colourings.map(({ labels }) => labels[gene] ?? ''),
      pair?.group ?? '',
      pair?.x[gene] ?? NaN,
      pair?.y[gene] ?? NaN,
      dataset.functions[gene] ?? '',
    ]),
  ]);
}
