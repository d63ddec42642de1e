/** The profile of the focused gene, beside the mean of the selection. */

import { dataText, el, svg } from './dom.js';
import { counted } from './format.js';
import { meanProfile } from './profiles.js';
import { nameOf } from './dataset.js';
import { profileChart, profileSentence } from './profile_chart.js';

const CLASSES = ['profile-own', 'profile-mean'];

function keyEntry({ title, className }) {
  return el('span', { class: 'profile-entry' },
    svg('svg', { class: 'profile-sample', viewBox: '0 0 20 8', 'aria-hidden': 'true' },
      svg('path', { class: `profile-line ${className}`, d: 'M2 4H18' })),
    dataText(title));
}

function valueTable(columns, lines, format) {
  const head = ['Condition', ...lines.map(({ title }) => title)].map((title) => el('th', { scope: 'col' }, dataText(title)));
  const row = (name, column) => el('tr', {}, el('th', { scope: 'row' }, dataText(name)),
    ...lines.map(({ values }) => el('td', { class: 'number' }, format(values[column]))));
  return el('div', { class: 'table-frame', tabindex: 0, role: 'region', 'aria-label': 'Values of the profile' },
    el('table', {}, el('thead', {}, el('tr', {}, ...head)), el('tbody', {}, ...columns.map(row))));
}

/** Fills the element and keeps it true; without a focused gene it is empty. `format(value)` writes a value. */
export function showGeneProfile(element, model, store, format) {
  const { expression } = model.dataset;
  const { columns } = expression;
  let isOpen = false;
  let mean = { of: null, values: null };

  function meanOfSelection(selection) {
    if (mean.of !== selection) mean = { of: selection, values: meanProfile(expression, selection) };
    return mean.values;
  }

  function linesOf({ focus, selection }) {
    const own = { title: nameOf(model.dataset, focus), values: expression.profile(focus) };
    const others = selection.length > 0
      ? [{ title: `mean of ${counted(selection.length, 'selected gene')}`, values: meanOfSelection(selection) }]
      : [];
    return [own, ...others].map((line, index) => ({ ...line, className: CLASSES[index] }));
  }

  function unfolding(lines) {
    const table = el('details', {}, el('summary', {}, 'Values'));
    table.open = isOpen;
    const fill = () => {
      isOpen = table.open;
      if (isOpen && table.childElementCount === 1) table.append(valueTable(columns, lines, format));
    };
    table.addEventListener('toggle', fill);
    fill();
    return table;
  }

  function update(state) {
    if (state.focus < 0) {
      element.replaceChildren();
      return;
    }
    const lines = linesOf(state);
    const label = lines.map(({ title, values }) => `${title}: ${profileSentence(columns, values, format)}`).join('; ');
    const readout = el('p', { class: 'counts profile-readout', 'aria-hidden': 'true' });
    const tell = (column) => readout.replaceChildren(...(column < 0 ? [profileSentence(columns, lines[0].values, format)]
      : [dataText(`${columns[column]}: ${lines.map(({ values }) => format(values[column])).join(' and ')}`)]));
    tell(-1);
    element.replaceChildren(
      el('h3', {}, `Profile over ${counted(columns.length, 'condition')}`),
      profileChart(columns, lines, `Profile over ${counted(columns.length, 'condition')}. ${label}.`, { format, point: tell }),
      el('p', { class: 'profile-key' }, ...lines.map(keyEntry)),
      readout,
      unfolding(lines),
    );
  }

  store.listen(['focus', 'selection'], update);
  update(store.get());
}
