/** Choosing what genes are coloured by: labels and numbers of the run, or a condition of its matrix. */

import { debounced, el } from './dom.js';
import { formatCount } from './format.js';

/** More conditions than this are searched for. */
const MOST_UNSEARCHED = 40;
/** So many of them are offered at once. */
const MOST_OFFERED = 1000;

const PAUSE_MILLISECONDS = 150;

function group(label, options) {
  return options.length > 0 ? [el('optgroup', { label }, ...options)] : [];
}

/** The conditions whose names hold a text, whatever its case. */
function conditionOptions(columns, query) {
  const wanted = query.trim().toLowerCase();
  const found = [...columns.keys()].filter((column) => columns[column].toLowerCase().includes(wanted));
  const offered = found.slice(0, MOST_OFFERED).map((column) => el('option', { value: `c${column}` }, columns[column]));
  const rest = found.length - offered.length;
  return rest > 0 ? [...offered, el('option', { disabled: true }, `and ${formatCount(rest)} more`)] : offered;
}

function titleOf({ title, labels, numbers }) {
  if (title !== '') return title;
  if (numbers) return 'Numbers';
  return labels.some((label) => label !== '') ? 'Labels' : 'Nothing';
}

/** Makes the choice; it is hidden while there is only one. */
export function colourChoice(model, store) {
  const { colourings, dataset } = model;
  const columns = dataset.expression?.columns ?? [];
  const select = el('select', { id: 'colouring' });
  const filter = el('input', { id: 'condition', type: 'search', placeholder: 'Find a condition', 'aria-label': 'Find a condition' });
  const element = el('div', { class: 'group pair-choice' },
    el('label', { for: 'colouring' }, 'Colour by'), select,
    ...(columns.length > MOST_UNSEARCHED ? [filter] : []));

  /** The value of what is shown now; a condition is offered even where it is filtered out. */
  const valueOf = ({ colouring }) => {
    const { column } = colourings.at(colouring);
    return column === undefined ? `${colouring}` : `c${column}`;
  };

  function update(state) {
    const listed = colourings.listed();
    const options = (isNumeric) => listed
      .filter(({ index }) => (colourings.at(index).numbers !== null) === isNumeric)
      .map(({ index }) => el('option', { value: index }, titleOf(colourings.at(index))));
    const offered = conditionOptions(columns, filter.value);
    const value = valueOf(state);
    const { column, title } = colourings.at(state.colouring);
    if (column !== undefined && !offered.some((option) => option.value === value)) {
      offered.unshift(el('option', { value }, title));
    }
    select.replaceChildren(
      ...(columns.length === 0 && listed.every(({ index }) => colourings.at(index).numbers === null)
        ? options(false)
        : [...group('Labels', options(false)), ...group('Numbers', options(true)), ...group('Conditions', offered)]),
    );
    select.value = value;
    element.hidden = listed.length + columns.length < 2;
  }

  select.addEventListener('change', () => {
    const { value } = select;
    const isCondition = value.startsWith('c');
    store.set(model.colouredBy(isCondition ? colourings.condition(Number(value.slice(1))) : Number(value)));
  });
  filter.addEventListener('input', debounced(() => update(store.get()), PAUSE_MILLISECONDS));
  colourings.onAdded(() => update(store.get()));
  store.listen(['colouring'], update);
  update(store.get());
  return element;
}
