/** The panel of chosen genes: a table, and ways to take it along. */

import { button, dataText, el } from './dom.js';
import { copyAndTell, copyRow, kindsOf, namesText } from './copies.js';
import { counted, fileStem, formatCoordinate, formatCount, functionText } from './format.js';
import { createNote } from './note.js';
import { difference } from './sets.js';
import { download } from './files.js';
import { nameOf } from './dataset.js';
import { textOf } from './colourings.js';
import { toCsv } from './csv.js';

const MOST_LISTED = 1000;

/** The chosen genes that are not drawn because their label is switched off, ascending. */
export function hiddenGenes(model, state) {
  const { of } = model.categoriesOf(state);
  return state.selection.filter((gene) => state.shown[of[gene]] !== 1);
}

/** The choice of labels that shows these genes, too. */
function showingGenes(model, state, genes) {
  const { of } = model.categoriesOf(state);
  const shown = state.shown.slice();
  for (const gene of genes) shown[of[gene]] = 1;
  return shown;
}

function geneRow(model, state, gene, isHidden, choose) {
  const { dataset } = model;
  const pair = model.pairOf(state);
  const name = button('', () => choose(gene), { class: 'quiet gene-link' });
  name.append(dataText(nameOf(dataset, gene)));
  const cells = [el('th', { scope: 'row' }, name, ...(isHidden ? [el('span', { class: 'counts' }, ' hidden')] : []))];
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

function geneTable(model, state, hidden, choose) {
  const label = model.categoriesOf(state).labelled ? [model.colouringOf(state).title || 'Label'] : [];
  const titles = ['Name', 'Function', ...label, 'x', 'y'];
  const isHidden = new Set(hidden);
  const rows = Array.from(state.selection.slice(0, MOST_LISTED), (gene) =>
    geneRow(model, state, gene, isHidden.has(gene), choose));
  return el('div', { class: 'table-frame', tabindex: 0, role: 'region', 'aria-label': 'Chosen genes' },
    el('table', {},
      el('thead', {}, el('tr', {}, ...titles.map((title) => el('th', { scope: 'col' }, title)))),
      el('tbody', {}, ...rows)));
}

/** What there is to say of hidden genes, and what can be done about them. */
function hiddenNotice(model, store, hidden) {
  const text = `${formatCount(hidden.length)} of them hidden: ${hidden.length === 1 ? 'its label is' : 'their labels are'} switched off. `
    + 'Copies and files hold them, too.';
  return el('div', { class: 'hidden-genes' },
    el('p', {}, text),
    el('div', { class: 'row' },
      button('Leave hidden out', () => store.set({ selection: difference(store.get().selection, hidden) })),
      button('Show them', () => store.set({ shown: showingGenes(model, store.get(), hidden) }))));
}

/** Buttons that go back and forth. */
function historyRow(store, history) {
  const undo = button('Undo', history.undo, { title: 'Undo the last change of selection or sets (Ctrl+Z)' });
  const redo = button('Redo', history.redo, { title: 'Do it again (Shift+Ctrl+Z)' });
  function update() {
    // Not disabled: the button in use would lose the keyboard.
    undo.setAttribute('aria-disabled', String(!history.canUndo()));
    redo.setAttribute('aria-disabled', String(!history.canRedo()));
  }
  store.listen(['selection', 'sets'], update);
  update();
  return el('div', { class: 'row history', role: 'group', 'aria-label': 'Undo and redo' }, undo, redo);
}

/**
 * Fills the panel and keeps it true.
 *
 * @param {function} choose called for a gene picked from the table
 * @param {object} tools `say(text)`, `history` as of `createHistory`, `saveSet()`: makes the selection a set
 */
export function showSelection(element, model, store, choose, { say, history, saveSet }) {
  const { dataset } = model;
  const heading = el('h2', {}, 'Selection');
  const body = el('div');
  const note = createNote(say);
  element.append(el('div', { class: 'panel-head' }, heading, historyRow(store, history)), body);

  const csv = () => toCsv(model, store.get(), store.get().selection);

  /** Copies, and says what the copy holds of what is not seen. */
  function copyChosen(text, words) {
    const hidden = hiddenGenes(model, store.get()).length;
    return copyAndTell(text, hidden > 0 ? `${words}, ${formatCount(hidden)} of them hidden` : words, note);
  }

  function copyNames(kind) {
    const { text, words } = namesText(dataset, store.get().selection, kind);
    return copyChosen(text, words);
  }

  const tools = [
    el('div', { class: 'row small' },
      button('Save as set', saveSet, { title: 'Keep these genes as a set with a name and a colour' }),
      button('Download CSV', () => download(
        new Blob([csv()], { type: 'text/csv' }),
        `${fileStem(dataset.name)}_selection.csv`,
      )),
      button('Clear', () => store.set({ selection: new Int32Array(0) }))),
    copyRow([
      ...kindsOf(dataset).map((kind) => ({ ...kind, action: () => copyNames(kind) })),
      {
        key: 'csv', short: 'CSV', title: 'CSV',
        action: () => copyChosen(csv(), `Table of ${counted(store.get().selection.length, 'gene')} copied`),
      },
    ]),
  ];
  const hint = el('p', { class: 'hint' },
    'Draw a box or a lasso in the chart, or press Enter on a gene, to collect genes here.');

  function update(state) {
    const total = state.selection.length;
    const hidden = hiddenGenes(model, state);
    heading.textContent = total === 0 ? 'Selection' : `Selection: ${counted(total, 'gene')}`;
    if (total === 0) {
      body.replaceChildren(hint);
      return;
    }
    const cut = total > MOST_LISTED
      ? [el('p', { class: 'counts' }, `The first ${formatCount(MOST_LISTED)} are listed; copies and files hold all.`)]
      : [];
    const notice = hidden.length > 0 ? [hiddenNotice(model, store, hidden)] : [];
    body.replaceChildren(...notice, ...tools, note.element, ...cut, geneTable(model, state, hidden, choose));
  }

  store.listen(['selection', 'shown'], note.clear);
  store.listen(['selection', 'pair', 'colouring', 'shown'], update);
  update(store.get());
}
