/** The genes that were chosen, in all maps at once. */

import { button, dataText, el } from '../dom.js';
import { copy } from '../files.js';
import { counted, formatCount } from '../format.js';
import { nameOf } from '../dataset.js';

const MOST_LISTED = 1000;

/** Fills the panel and keeps it true. */
export function showSelection(element, comparison, store, say) {
  const heading = el('h2', {}, 'Selection');
  const body = el('div');
  element.append(heading, body);
  const note = el('span', { class: 'counts' });

  async function copyNames() {
    const names = Array.from(store.get().selection, (gene) => nameOf(comparison, gene));
    const done = await copy(names.join('\n'));
    note.textContent = done ? `${counted(names.length, 'name')} copied` : 'The browser did not allow copying';
    say(note.textContent);
  }

  const tools = el('div', { class: 'row' },
    button('Copy names', copyNames),
    button('Clear', () => store.set({ selection: new Int32Array(0) })),
    note);
  const hint = el('p', { class: 'hint' },
    'Draw a lasso or a box in any map, choose a label, or select what a search found: the same genes light up in all maps.');

  function nameItem(gene) {
    const name = button('', () => store.set({ focus: gene, hover: -1 }), { class: 'quiet gene-link' });
    name.append(dataText(nameOf(comparison, gene)));
    name.addEventListener('pointerenter', () => store.set({ hover: gene }));
    name.addEventListener('pointerleave', () => store.set({ hover: -1 }));
    return el('li', {}, name);
  }

  function update({ selection }) {
    note.textContent = '';
    heading.textContent = selection.length === 0 ? 'Selection' : `Selection: ${counted(selection.length, 'gene')}`;
    if (selection.length === 0) {
      body.replaceChildren(hint);
      return;
    }
    const cut = selection.length > MOST_LISTED
      ? [el('p', { class: 'counts' }, `The first ${formatCount(MOST_LISTED)} are listed; the copy holds all.`)]
      : [];
    const list = el('ul', { class: 'chosen', tabindex: 0, 'aria-label': 'Chosen genes' },
      ...Array.from(selection.slice(0, MOST_LISTED), nameItem));
    body.replaceChildren(tools, ...cut, list);
  }

  store.listen(['selection'], update);
  update(store.get());
}
