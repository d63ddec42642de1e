/** The panel that says what chosen genes do: what they have more of than chance gives. */

import { button, el } from './dom.js';
import { counted, fileStem, formatCount } from './format.js';
import { enrichmentTable, formatChance } from './enrichment_table.js';
import { everyGene, testGroups } from './enrichment.js';
import { labelGroups, wordGroups } from './gene_groups.js';
import { download } from './files.js';
import { termRow } from './term_list.js';

const STANDS_OUT = 0.05;
const FEW = 8;
const MOST = 300;

/** Works a value out when it is first asked for. */
function lazily(make) {
  let value;
  return () => {
    value ??= make();
    return value;
  };
}

/**
 * What selections can be tested for: `title`, as what its genes are known (`known`), what is counted (`unit`), and
 * `groups()`.
 */
function kindsOf(dataset) {
  const kinds = [];
  const add = (title, known, unit, make) => kinds.push({ title, known, unit, groups: lazily(make) });
  if (dataset.terms) add('GO terms', 'annotated', 'term', () => dataset.terms);
  for (const { title, labels, numbers } of dataset.colourings) {
    const isTestable = !numbers && new Set(labels).size > 1;
    if (isTestable) add(title === '' ? 'Labels' : `Labels: ${title}`, 'labelled', 'label', () => labelGroups(labels));
  }
  if (dataset.functions.some((text) => text !== '' && text !== 'NULL')) {
    add('Words of the functions', 'described', 'word', () => wordGroups(dataset.functions));
  }
  return kinds;
}

function kindChooser(kinds, onChange) {
  const choice = el('select', { 'aria-label': 'What the selection is tested for', on: { change: () => onChange(kinds[choice.value]) } },
    ...kinds.map(({ title }, index) => el('option', { value: index }, title)));
  return choice;
}

/** What was compared with what. */
function backgroundText({ known, unit }, chosen, { drawn, total, tested }) {
  return `${formatCount(drawn)} of ${counted(chosen, 'chosen gene')} ${drawn === 1 ? 'is' : 'are'} ${known}. They are compared with all `
    + `${counted(total, `${known} gene`)} of this map, in ${counted(tested, unit)}.`;
}

function aboutNumbers() {
  return el('details', { class: 'about-numbers' }, el('summary', {}, 'What the numbers mean'),
    el('p', { class: 'counts' }, 'The bar is the share of the selection, the mark in it the share of all genes. \u201c3 of 10\u201d: of '
      + '10 genes of the map, 3 are chosen. \u201cTimes\u201d: how many times as many as chance gives on average. q: of all '
      + 'results with this q or a lower one, about this share is expected to be chance (Benjamini and Hochberg; upper tail of '
      + 'the hypergeometric distribution). A selection from a map is a choice of alike genes: q says what they are, not that '
      + 'the map is right.'));
}

/**
 * Fills the panel and keeps it true; it stays empty where there is nothing to test for.
 *
 * @param {function} choose called for a gene that is picked
 * @param {object} colours as of `createTermColours`
 */
export function showTerms(element, model, store, choose, colours) {
  const { dataset } = model;
  const kinds = kindsOf(dataset);
  if (kinds.length === 0) return;
  const everyOne = everyGene(dataset.count);
  let [kind, isWhole] = [kinds[0], false];

  const heading = el('h2', { tabindex: -1 }, 'What these genes do');
  const body = el('div');
  const chooser = kindChooser(kinds, (chosen) => {
    [kind, isWhole] = [chosen, false];
    update();
  });
  const hint = el('p', { class: 'hint' }, 'Select genes to see which terms, labels and words they share more often than chance gives.');

  const actions = {
    choose,
    colour: (term) => colours.toggle(kind.groups(), term),
    select: (genes) => store.set({ selection: Int32Array.from(genes) }),
    membersOf: (term) => everyOne.filter((gene) => kind.groups().of(gene).includes(term)),
  };

  function save(results) {
    const table = enrichmentTable(dataset, kind.groups(), results);
    download(new Blob([table], { type: 'text/tab-separated-values' }), `${fileStem(dataset.name)}_enrichment.tsv`);
  }

  function listOf(results) {
    const standing = results.filter(({ q }) => q <= STANDS_OUT);
    const listed = isWhole ? results.slice(0, MOST) : standing.slice(0, FEW);
    const rows = listed.map((result) => termRow(result, kind.groups().list[result.term], dataset, actions));
    const none = `No ${kind.unit} stands out: ${results.length > 0 ? `the best q is ${formatChance(results[0].q)}` : 'they share none'}.`;
    const more = Math.min(results.length, MOST);
    return [
      ...(standing.length === 0 ? [el('p', {}, none)] : []),
      el('ul', { class: 'term-list' }, ...rows),
      el('div', { class: 'row' },
        ...(more > listed.length || isWhole
          ? [button(isWhole ? 'Show the best' : `Show ${formatCount(more)}`, () => {
            isWhole = !isWhole;
            update();
          })]
          : []),
        ...(results.length > 0 ? [button('Download TSV', () => save(results))] : [])),
    ];
  }

  function showColours() {
    for (const each of body.querySelectorAll('[data-term]')) {
      each.setAttribute('aria-pressed', String(colours.isShown(kind.groups(), Number(each.dataset.term))));
    }
  }

  function update() {
    const { selection } = store.get();
    const hadFocus = body.contains(document.activeElement);
    if (selection.length === 0) {
      body.replaceChildren(hint);
    } else {
      const tested = testGroups(kind.groups(), selection, everyOne);
      body.replaceChildren(
        el('p', { class: 'counts' }, backgroundText(kind, selection.length, tested)),
        ...listOf(tested.results),
        aboutNumbers());
      showColours();
    }
    if (hadFocus) heading.focus();
  }

  element.append(el('div', { class: 'panel-head' }, heading, ...(kinds.length > 1 ? [chooser] : [])), body);
  store.listen(['selection'], update);
  store.listen(['colouring'], showColours);
  update();
}
