/** The tools above the maps. */

import { button, el } from '../dom.js';
import { colouringTitles } from './colours.js';

const TOOLS = [
  ['look', 'Look', 'Point at genes; touch scrolls the page'],
  ['lasso', 'Lasso', 'Draw around genes to select them; Shift adds'],
  ['box', 'Box', 'Draw a box around genes to select them; Shift adds'],
];

const SIZES = [['small', 'small'], ['medium', 'medium'], ['large', 'large']];

function choice(id, text, options, chosen, onChange) {
  const select = el('select', { id, on: { change: () => onChange(select.value) } },
    ...options.map(([value, label]) => el('option', { value, selected: value === chosen }, label)));
  return el('div', { class: 'group' }, el('label', { for: id }, text), select);
}

/**
 * Fills the toolbar and keeps it true. `root` is the element by whose attributes the style sheet knows the
 * size of the maps, the tool, and whether genes are chosen: then paper shows the maps as they are, in the
 * place of the pictures of the runs.
 */
export function showTools(element, comparison, store, root) {
  const tools = TOOLS.map(([tool, text, title]) =>
    [tool, button(text, () => store.set({ tool }), { title })]);
  const theme = button('', () => store.set({ theme: store.get().theme === 'dark' ? 'light' : 'dark' }), { id: 'theme' });
  const resize = (size) => {
    root.dataset.size = size;
  };
  resize('medium');
  element.append(
    el('div', { class: 'group', role: 'group', 'aria-label': 'What dragging does' }, ...tools.map(([, node]) => node)),
    choice('colouring', 'Colour by', colouringTitles(comparison).map((title, index) => [index, title]), 0,
      (index) => store.set({ colouring: Number(index) })),
    choice('size', 'Maps', SIZES, 'medium', resize),
    theme,
  );

  function update(state) {
    for (const [tool, node] of tools) node.setAttribute('aria-pressed', String(state.tool === tool));
    theme.textContent = state.theme === 'dark' ? 'Light' : 'Dark';
    root.dataset.tool = state.tool;
    root.toggleAttribute('data-chosen', state.selection.length > 0);
  }

  store.listen(['tool', 'theme', 'selection'], update);
  update(store.get());
}
