/** Finding genes by name, by lists of names, by the words of their function, and by their labels. */

import { button, dataText, debounced, el } from './dom.js';
import { counted, formatCount } from './format.js';
import { createNameIndex } from './name_index.js';
import { nameOf } from './dataset.js';
import { readQuery } from './query.js';

const MOST_LISTED = 50;
const MOST_MISSING_NAMED = 12;
const PAUSE_MILLISECONDS = 120;

const functionOf = (dataset, gene) => {
  const known = dataset.functions[gene] ?? '';
  return known === 'NULL' ? '' : known;
};

/** What a gene is called besides its name in the data. */
function otherNames(dataset, gene) {
  const known = dataset.aliases?.[gene];
  const names = [dataset.genes[gene] ?? '', ...(known ? [known.systematic, known.sgd, ...known.aliases] : [])];
  return names.filter((name) => name !== '' && name !== nameOf(dataset, gene));
}

/** Its labels; numbers are no words. */
const labelsOf = (dataset, gene) => dataset.colourings
  .filter(({ numbers }) => numbers === null)
  .map(({ labels }) => labels[gene] ?? '')
  .filter((label) => label !== '');

/** All that is searched, in small letters: names between line ends, then the other texts. */
function searchText(dataset, gene) {
  const names = [nameOf(dataset, gene), ...otherNames(dataset, gene)];
  return `\n${names.join('\n')}\n\0${[functionOf(dataset, gene), ...labelsOf(dataset, gene)].join('\0')}`.toLowerCase();
}

/**
 * Makes the search.
 *
 * @returns a function from a query to what is found; null for an empty query. `genes` are all of it,
 *   ascending: those whose names, function and labels together hold every word and phrase, whatever the
 *   case, or those of a `list` of names, which is null for words. `first` are those to list, with genes
 *   ahead of which a name is or begins with the query; those of a list in its order.
 */
export function createFinder(dataset) {
  const find = createNameIndex(dataset);
  let texts = null;

  function genesWith(words, wanted) {
    texts ??= Array.from({ length: dataset.count }, (_, gene) => searchText(dataset, gene));
    const found = [];
    texts.forEach((text, gene) => {
      if (words.every((word) => text.includes(word))) found.push(gene);
    });
    const rank = (gene) => (texts[gene].includes(`\n${wanted}\n`) ? 0 : texts[gene].includes(`\n${wanted}`) ? 1 : 2);
    const ranks = new Map(found.map((gene) => [gene, rank(gene)]));
    return {
      genes: Int32Array.from(found),
      first: found.sort((a, b) => ranks.get(a) - ranks.get(b) || a - b).slice(0, MOST_LISTED),
      words,
      list: null,
    };
  }

  const genesOf = (list, words) => ({
    genes: Int32Array.from(list.genes).sort(),
    first: list.genes.slice(0, MOST_LISTED),
    words,
    list,
  });

  return (query) => {
    const { words, list, isList } = readQuery(query, find);
    if (words.length === 0) return null;
    if (isList) return genesOf(list, words);
    const found = genesWith(words, query.trim().toLowerCase());
    return found.genes.length === 0 && list ? genesOf(list, words) : found;
  };
}

/** The name or label by which a gene was found, unless its name and function say so themselves. */
function reasonFor(dataset, gene, words) {
  const shown = `${nameOf(dataset, gene)}\n${functionOf(dataset, gene)}`.toLowerCase();
  const unseen = words.filter((word) => !shown.includes(word));
  return [...otherNames(dataset, gene), ...labelsOf(dataset, gene)]
    .find((text) => unseen.some((word) => text.toLowerCase().includes(word))) ?? '';
}

function hitRow(dataset, gene, words, choose) {
  const hit = button('', () => choose(gene), { class: 'hit' });
  const texts = [reasonFor(dataset, gene, words), functionOf(dataset, gene)].filter((text) => text !== '');
  hit.replaceChildren(
    dataText(nameOf(dataset, gene), 'hit-name'),
    dataText(texts.join(' \u00b7 '), 'hit-function'),
  );
  return el('li', {}, hit);
}

/** "17 of 20 found, missing A, B and C". */
export function listText({ names, missing }) {
  const found = `${formatCount(names.length - missing.length)} of ${formatCount(names.length)} found`;
  if (missing.length === 0) return found;
  const rest = missing.length - MOST_MISSING_NAMED;
  return `${found}, missing ${missing.slice(0, MOST_MISSING_NAMED).join(', ')}${rest > 0 ? ` and ${formatCount(rest)} more` : ''}`;
}

function countText(found) {
  if (!found) return '';
  const total = found.genes.length;
  const text = found.list ? listText(found.list) : counted(total, 'match', 'matches');
  return text + (total > MOST_LISTED ? `; the first ${formatCount(MOST_LISTED)} are listed` : '');
}

/** A field of one line drops line ends: names of a pasted column are set apart by commas instead. */
function pasteLines(event) {
  const text = event.clipboardData?.getData('text/plain') ?? '';
  const field = event.target;
  if (!/[\r\n\t]/.test(text.trim())) return;
  event.preventDefault();
  field.setRangeText(text.trim().replace(/\s*[\r\n\t]+\s*/g, ', '), field.selectionStart, field.selectionEnd, 'end');
  field.dispatchEvent(new Event('input'));
}

/** Fills the search's element. `choose(gene)` is called for the gene that the reader picks. */
export function showSearch(element, model, store, choose) {
  const find = createFinder(model.dataset);
  let found = null;
  const input = el('input', {
    id: 'search',
    type: 'search',
    placeholder: 'Names, words, "a phrase", labels',
    autocomplete: 'off',
    spellcheck: 'false',
    'aria-describedby': 'search-count',
  });
  const count = el('p', { id: 'search-count', class: 'counts data-text' });
  const hits = el('ul', { class: 'hits', 'aria-label': 'Genes found' });
  const selectAll = button('Select matches', () => store.set({ selection: found.genes }), { hidden: true });

  function search() {
    found = find(input.value);
    hits.replaceChildren(...(found?.first ?? []).map((gene) => hitRow(model.dataset, gene, found.words, choose)));
    count.textContent = countText(found);
    selectAll.hidden = !found || found.genes.length === 0;
    store.set({ matches: found ? found.genes : null });
  }

  const searchSoon = debounced(search, PAUSE_MILLISECONDS);
  input.addEventListener('input', searchSoon);
  input.addEventListener('paste', pasteLines);
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
