/** The panel of conditions in which the selection differs most from all other genes. */

import { button, dataText, debounced, el } from './dom.js';
import { createContrasts } from './condition_contrasts.js';
import { counted, formatCount } from './format.js';

const MOST_LISTED = 100;
const PAUSE_MILLISECONDS = 40;

const CIRCLE = 'A selection made on the map was made by these same values, so that it differs is no test of anything: '
  + 'the numbers describe it, and there are no p-values.';

function conditionRow(columns, { column, inside, outside, auc, z }, { colourBy, format }) {
  const name = button('', () => colourBy(column), { class: 'quiet gene-link', title: 'Colour the map by this condition' });
  name.append(dataText(columns[column]));
  return el('tr', {}, el('th', { scope: 'row' }, name),
    ...[format(inside), format(outside), auc.toFixed(3), z.toFixed(1)].map((text) => el('td', { class: 'number' }, text)));
}

function headRow() {
  const titles = [
    ['Condition', ''],
    ['Mean', 'Mean of the selection'],
    ['Rest', 'Mean of all other genes'],
    ['AUC', 'Chance that a selected gene has a larger value than another one; 0.5 is no difference'],
    ['z', 'Mann and Whitney: standard deviations from no difference, corrected for ties'],
  ];
  return el('tr', {}, ...titles.map(([text, title], index) =>
    el('th', { scope: 'col', class: index > 0 && 'number', title: title || undefined }, text)));
}

/** Fills the panel and keeps it true. `format(value)` writes a value. */
export function showConditions(element, model, store, format) {
  const { expression } = model.dataset;
  const contrasts = createContrasts(expression);
  const hint = el('p', { class: 'hint' }, 'Select genes to see in which conditions they differ most from all others.');
  const lead = el('p', { class: 'counts' });
  const rows = el('tbody');
  const table = el('div', { class: 'table-frame', tabindex: 0, role: 'region', 'aria-label': 'Differences by condition' },
    el('table', { class: 'conditions' }, el('thead', {}, headRow()), rows));
  const body = el('div', {},
    lead,
    table,
    el('p', { class: 'caution' }, CIRCLE));
  const heading = el('h2', {}, 'Where the selection differs');

  const colourBy = (column) => store.set(model.colouredBy(model.colourings.condition(column)));

  function leadText(selected, found) {
    if (found.length === 0) return 'There is nothing to compare: the selection or the rest has no values.';
    const rest = expression.rows - selected;
    const cut = found.length > MOST_LISTED ? ` The first ${formatCount(MOST_LISTED)} of ${counted(found.length, 'condition')}.` : '';
    return `${counted(selected, 'gene')} against ${counted(rest, 'other')}, the clearest difference first.${cut}`;
  }

  function update() {
    const { selection } = store.get();
    const shown = selection.length > 0 ? body : hint;
    if (!shown.isConnected) element.replaceChildren(heading, shown);
    if (shown === hint) return;
    const found = contrasts(selection);
    lead.textContent = leadText(selection.length, found);
    table.hidden = found.length === 0;
    rows.replaceChildren(...found.slice(0, MOST_LISTED).map((each) => conditionRow(expression.columns, each, { colourBy, format })));
  }

  store.listen(['selection'], debounced(update, PAUSE_MILLISECONDS));
  update();
}
