/** The panel of chosen genes: a table, and ways to take it along. */

import { button, dataText, el } from './dom.js';
import { counted, fileStem, formatCoordinate, formatCount, functionText } from './format.js';
import { nameOf } from './dataset.js';
import { textOf } from './colourings.js';
import { copy, download } from './files.js';
import { toCsv } from './csv.js';

const MOST_LISTED = 1000;

function geneRow(model, state, gene, choose) {
  const { dataset } = model;
  const pair = model.pairOf(state);
  const name = button('', () => choose(gene), { class: 'quiet gene-link' });
  name.append(dataText(nameOf(dataset, gene)));
  const cells = [el('th', { scope: 'row' }, name)];
  cells.push(el('td', { class: 'function' }, dataText(functionText(dataset.functions[gene] ?? ''))));
  if (model.categoriesOf(state).labelled) {
    cells.push(el('td', { class: 'label' }, dataText(textOf(model.colouringOf(state), gene))));
  }
  cells.push(
    el('td', { class: 'number' }, formatCoordinate(pair?.x[gene] ?? NaN)),
    el('td', { class: 'number' }, formatCoordinate(pair?.y[gene] ?? NaN)),
  );
  return el('tr', {}, ...cells);
}

function geneTable(model, state, choose) {
  const label = model.categoriesOf(state).labelled ? [model.colouringOf(state).title || 'Label'] : [];
  const titles = ['Name', 'Function', ...label, 'x', 'y'];
  const rows = Array.from(state.selection.slice(0, MOST_LISTED), (gene) => geneRow(model, state, gene, choose));
  return el('div', { class: 'table-frame', tabindex: 0, role: 'region', 'aria-label': 'Chosen genes' },
    el('table', {},
      el('thead', {}, el('tr', {}, ...titles.map((title) => el('th', { scope: 'col' }, title)))),
      el('tbody', {}, ...rows)));
}

/** Fills the panel and keeps it true. `choose(gene)` is called for a gene picked from the table. */
export function showSelection(element, model, store, choose, say) {
  const heading = el('h2', {}, 'Selection');
  const body = el('div');
  element.append(heading, body);

  const csv = () => toCsv(model, store.get(), store.get().selection);
  const names = () => Array.from(store.get().selection, (gene) => nameOf(model.dataset, gene)).join('\n');
  async function copyAndSay(text, what) {
    say((await copy(text)) ? `${what} copied` : 'The browser did not allow copying');
  }
  const tools = el('div', { class: 'row' },
    button('Copy names', () => copyAndSay(names(), 'Names')),
    button('Copy CSV', () => copyAndSay(csv(), 'Table')),
    button('Download CSV', () => download(
      new Blob([csv()], { type: 'text/csv' }),
      `${fileStem(model.dataset.name)}_selection.csv`,
    )),
    button('Clear', () => store.set({ selection: new Int32Array(0) })));
  const hint = el('p', { class: 'hint' },
    'Draw a box or a lasso in the chart, or press Enter on a gene, to collect genes here.');

  function update(state) {
    const total = state.selection.length;
    heading.textContent = total === 0 ? 'Selection' : `Selection: ${counted(total, 'gene')}`;
    if (total === 0) {
      body.replaceChildren(hint);
      return;
    }
    const cut = total > MOST_LISTED
      ? [el('p', { class: 'counts' }, `The first ${formatCount(MOST_LISTED)} are listed; copies and files hold all.`)]
      : [];
    body.replaceChildren(tools, ...cut, geneTable(model, state, choose));
  }

  store.listen(['selection', 'pair', 'colouring'], update);
  update(store.get());
}
