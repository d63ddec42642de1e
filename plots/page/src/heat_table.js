/** The numbers of the heat map as a table. */

import { button, dataText, el } from './dom.js';
import { formatCount } from './format.js';
import { lineValues } from './heat_lines.js';

const MOST_LISTED = 100;

/** @returns `element`, a part that unfolds, and `show()`, which brings it up to date; folded it holds nothing */
export function heatTable(model, scene, choose) {
  const frame = el('div', { class: 'table-frame', tabindex: 0, role: 'region', 'aria-label': 'Values of the selection' });
  const cut = el('p', { class: 'counts' });
  const element = el('details', { class: 'heat-table' }, el('summary', {}, 'As a table'), cut, frame);

  function geneRow({ expression, columns, genes, geneNames, centred, format }, line) {
    const values = lineValues(expression, genes, { perLine: 1, centred }, line, line + 1);
    const name = button('', () => choose(genes[line]), { class: 'quiet gene-link' });
    name.append(dataText(geneNames[line]));
    return el('tr', {}, el('th', { scope: 'row' }, name),
      ...columns.map((_, column) => el('td', { class: 'number' }, format(values[column]))));
  }

  function show() {
    const now = scene.get();
    const listed = Math.min(element.open ? MOST_LISTED : 0, now.genes.length);
    cut.textContent = listed > 0 && listed < now.genes.length ? `The first ${formatCount(listed)} genes.` : '';
    if (listed === 0) {
      frame.replaceChildren();
      return;
    }
    const head = el('tr', {}, el('th', { scope: 'col' }, 'Name'),
      ...now.columns.map((column) => el('th', { scope: 'col' }, dataText(column))));
    frame.replaceChildren(el('table', {}, el('thead', {}, head),
      el('tbody', {}, ...Array.from({ length: listed }, (_, line) => geneRow(now, line)))));
  }

  element.addEventListener('toggle', show);
  return { element, show };
}
