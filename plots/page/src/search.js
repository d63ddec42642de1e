/** Finding genes by name or by the words of their function. */

import { button, dataText, debounced, el } from './dom.js';
import { counted, formatCount } from './format.js';
import { nameOf } from './dataset.js';

const MOST_LISTED = 50;
const PAUSE_MILLISECONDS = 120;

/**
 * Makes the search.
 *
 * @returns a function from a query to the genes whose name and function together hold every word of
 *   it, whatever the case: all of them ascending, and the `first` to list, with those ahead whose name
 *   is or begins with the query. Null for an empty query.
 */
function createFinder(dataset) {
  let texts = null;
  return (query) => {
    const wanted = query.trim().toLowerCase();
    if (wanted === '') return null;
    texts ??= Array.from({ length: dataset.count }, (_, gene) => {
      const known = dataset.functions[gene] ?? '';
      return `${nameOf(dataset, gene)}\n${known === 'NULL' ? '' : known}\n${dataset.genes[gene] ?? ''}`.toLowerCase();
    });
    const words = wanted.split(/\s+/);
    const found = [];
    texts.forEach((text, gene) => {
      if (words.every((word) => text.includes(word))) found.push(gene);
    });
    const isNamed = (gene) => texts[gene].startsWith(`${wanted}\n`);
    const startsSo = (gene) => texts[gene].startsWith(wanted);
    const rank = (gene) => (isNamed(gene) ? 0 : startsSo(gene) ? 1 : 2);
    return { genes: Int32Array.from(found), first: found.sort((a, b) => rank(a) - rank(b) || a - b).slice(0, MOST_LISTED) };
  };
}

function hitRow(dataset, gene, choose) {
  const known = dataset.functions[gene] ?? '';
  const hit = button('', () => choose(gene), { class: 'hit' });
  hit.replaceChildren(
    dataText(nameOf(dataset, gene), 'hit-name'),
    dataText(known === 'NULL' ? '' : known, 'hit-function'),
  );
  return el('li', {}, hit);
}

/** Fills the search's element. `choose(gene)` is called for the gene that the reader picks. */
export function showSearch(element, model, store, choose) {
  const find = createFinder(model.dataset);
  let found = null;
  const input = el('input', {
    id: 'search',
    type: 'search',
    placeholder: 'Name, or words of its function',
    autocomplete: 'off',
    spellcheck: 'false',
    'aria-describedby': 'search-count',
  });
  const count = el('p', { id: 'search-count', class: 'counts' });
  const hits = el('ul', { class: 'hits', 'aria-label': 'Genes found' });
  const selectAll = button('Select matches', () => store.set({ selection: found.genes }), { hidden: true });

  function search() {
    found = find(input.value);
    const total = found?.genes.length ?? 0;
    hits.replaceChildren(...(found?.first ?? []).map((gene) =>
      hitRow(model.dataset, gene, choose)));
    count.textContent = found
      ? counted(total, 'match', 'matches') + (total > MOST_LISTED ? `, the first ${formatCount(MOST_LISTED)} listed` : '')
      : '';
    selectAll.hidden = total === 0;
    store.set({ matches: found ? found.genes : null });
  }

  const searchSoon = debounced(search, PAUSE_MILLISECONDS);
  input.addEventListener('input', searchSoon);
  input.addEventListener('keydown', (event) => {
    if (event.key === 'Enter') {
      searchSoon.cancel();
      search();
      if (found && found.first.length > 0) choose(found.first[0]);
    } else if (event.key === 'Escape') {
      input.value = '';
      search();
    } else if (event.key === 'ArrowDown' && hits.firstChild) {
      event.preventDefault();
      hits.firstChild.firstChild.focus();
    }
  });
  element.append(
    el('label', { for: 'search' }, 'Find genes'),
    input,
    el('div', { class: 'search-foot' }, count, selectAll),
    hits,
  );
}
