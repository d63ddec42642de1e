/** Genes as comma-separated text. */

import { nameOf } from './dataset.js';


function field(value) {
  const text = String(value);
  return /[",\r\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
}

/**
 * A header line and a line per gene (RFC 4180, lines end in LF). Coordinates have all their digits and
 * are empty where there are none; texts are as in the data.
 */
export function toCsv(model, state, genes) {
  const { dataset } = model;
  const pair = model.pairOf(state);
  const titles = dataset.colourings.map(({ title }) => title || 'label');
  const number = (value) => (Number.isFinite(value) ? value : '');
  const lines = Array.from(genes, (gene) => [
    nameOf(dataset, gene),
    ...dataset.colourings.map(({ labels }) => labels[gene] ?? ''),
    pair?.group ?? '',
    number(pair?.x[gene]),
    number(pair?.y[gene]),
    dataset.functions[gene] ?? '',
  ].map(field).join(','));
  const header = ['name', ...titles, 'group', 'x', 'y', 'function'].map(field).join(',');
  return `${[header, ...lines].join('\n')}\n`;
}
