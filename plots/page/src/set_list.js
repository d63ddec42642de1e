/** The panel of named sets: their names and colours, what can be made of them, and files of them. */

import { button, dataText, el, svg } from './dom.js';
import { copyAndTell, copyRow, kindsOf, namesText } from './copies.js';
import { counted, fileStem, formatCount } from './format.js';
import { difference, intersection, union } from './sets.js';
import { MOST_SETS, withChange, withSet, withSets } from './named_sets.js';
import { readSetFile, toGmt, toJson } from './set_file.js';
import { createNameIndex } from './name_index.js';
import { createNote } from './note.js';
import { followSetColours } from './set_colouring.js';
import { download } from './files.js';
import { listText } from './search.js';

const LARGEST_FILE = 20e6;

const OPERATIONS = [
  ['Union', 'The selection becomes the genes of either', union],
  ['Intersection', 'The selection becomes the genes of both', intersection],
  ['Difference', 'The selection loses the genes of the set', difference],
];

const swatch = (colour) => svg('svg', { class: 'swatch', viewBox: '0 0 16 16', 'aria-hidden': 'true' },
  svg('circle', { cx: 8, cy: 8, r: 7.5, fill: colour }));

/** The parts of a set that are seen when it is opened. */
function setForm(set, model, store, note) {
  const change = (patch) => store.set({ sets: withChange(store.get().sets, set.id, patch) });
  const part = (what) => ({ 'data-part': what });
  const name = el('input', {
    type: 'text', maxlength: 200, 'aria-label': `Name of ${set.name}`, ...part('name'),
    on: { change: () => change({ name: name.value }) },
  });
  name.value = set.name;
  const colour = el('input', {
    type: 'color', 'aria-label': `Colour of ${set.name}`, ...part('colour'),
    on: { change: () => change({ colour: colour.value }) },
  });
  colour.value = set.colour;
  const operations = OPERATIONS.map(([text, title, combine]) => button(text,
    () => store.set({ selection: combine(store.get().selection, set.genes) }), { title, ...part(text) }));
  const copies = copyRow(kindsOf(model.dataset).map((kind) => ({
    ...kind,
    action: () => {
      const { text, words } = namesText(model.dataset, set.genes, kind);
      return copyAndTell(text, words, note);
    },
  })));
  return el('div', { class: 'set-form' },
    el('div', { class: 'row' }, name, colour),
    el('div', { class: 'row small', role: 'group', 'aria-label': `Selection and ${set.name}` }, ...operations),
    copies,
    el('div', { class: 'row small' },
      button('Replace by selection', () => {
        const { selection } = store.get();
        if (selection.length === 0) note.tell('The selection is empty');
        else change({ genes: selection });
      }, part('replace')),
      button('Delete', () => store.set({ sets: store.get().sets.filter(({ id }) => id !== set.id) }), part('delete'))));
}

/** The buttons below the list; `load(file)` is called for a file that the reader chooses. */
function fileRow(model, store, load, copyLink) {
  const { dataset } = model;
  const chooser = el('input', {
    type: 'file', hidden: true, accept: '.gmt,.json,.txt,.tsv,.csv', 'aria-label': 'File of sets',
    on: {
      change: () => {
        if (chooser.files.length > 0) load(chooser.files[0]);
        chooser.value = '';
      },
    },
  });
  const save = (kind, type, toText) => button(`Save ${kind}`, () => download(
    new Blob([toText(dataset, store.get().sets)], { type }),
    `${fileStem(dataset.name)}_sets.${kind.toLowerCase()}`,
  ));
  const saving = [save('GMT', 'text/plain', toGmt), save('JSON', 'application/json', toJson)];
  function update({ sets }) {
    for (const each of saving) each.hidden = sets.length === 0;
  }
  store.listen(['sets'], update);
  update(store.get());
  return el('div', { class: 'row' },
    button('Load file', () => chooser.click(), { title: 'Sets as GMT or JSON, or a list of genes; it can be dropped on the page, too' }),
    ...saving,
    button('Copy link', copyLink, { title: 'The address of this page with selection and sets' }),
    chooser);
}

/** Calls `load` for the files that are dropped anywhere on the page. */
function followDrops(element, load) {
  const hasFiles = (event) => event.dataTransfer?.types.includes('Files');
  document.addEventListener('dragover', (event) => {
    if (!hasFiles(event)) return;
    event.preventDefault();
    element.classList.add('awaits-file');
  });
  document.addEventListener('dragleave', (event) => {
    if (event.relatedTarget === null) element.classList.remove('awaits-file');
  });
  document.addEventListener('drop', (event) => {
    if (!hasFiles(event)) return;
    event.preventDefault();
    element.classList.remove('awaits-file');
    for (const file of event.dataTransfer.files) load(file);
  });
}

function loadedText({ sets, names, missing, empty }, fileName) {
  return `${counted(sets.length, 'set')} of ${fileName}: ${listText({ names, missing })}`
    + (empty.length > 0 ? `; ${counted(empty.length, 'set')} without a gene on this map left out` : '');
}

/**
 * Fills the panel and keeps it true.
 *
 * @param {object} tools `say(text)`, and `copyLink(note)`
 * @returns `saveSet()`, which makes the selection a set, and `tell(text)`
 */
export function showSets(element, model, store, { say, copyLink }) {
  const { dataset } = model;
  const find = createNameIndex(dataset);
  const note = createNote(say);
  const list = el('ul', { class: 'set-list', 'aria-label': 'Sets of genes' });
  const hint = el('p', { class: 'hint' },
    'Save a selection as a set, or load sets from a file, to compare them and to keep them.');
  const heading = el('h2', {}, 'Sets');
  const open = new Set();
  const colours = followSetColours(model, store);

  function setRow(set) {
    const details = el('details', {
      open: open.has(set.id),
      on: {
        toggle: () => (details.open ? open.add(set.id) : open.delete(set.id)),
      },
    },
    el('summary', { 'data-part': 'summary' }, swatch(set.colour), dataText(set.name, 'set-name'), ' ',
      el('span', { class: 'legend-count' }, formatCount(set.genes.length))),
    setForm(set, model, store, note));
    const onMap = el('input', {
      type: 'checkbox', 'data-part': 'map', 'aria-label': `Colour the map by ${set.name}`, title: 'Colour the map by this set',
      on: { change: () => colours.toggle(set.id, onMap.checked) },
    });
    onMap.checked = colours.has(set.id);
    return el('li', { 'data-set': set.id },
      onMap,
      details,
      button('Select', () => store.set({ selection: set.genes }), { 'data-part': 'select', 'aria-label': `Select the genes of ${set.name}` }));
  }

  /** Builds the list anew; the keyboard stays where it is. */
  function update({ sets }) {
    const at = list.contains(document.activeElement) ? document.activeElement : null;
    const [setId, partName] = [at?.closest('[data-set]')?.dataset.set, at?.dataset.part];
    heading.textContent = sets.length === 0 ? 'Sets' : `Sets: ${formatCount(sets.length)}`;
    if (sets.length > 0) hint.remove();
    else list.after(hint);
    list.replaceChildren(...sets.map(setRow));
    if (at) (list.querySelector(`[data-set="${setId}"] [data-part="${partName}"]`) ?? heading).focus();
  }

  async function load(file) {
    try {
      if (file.size > LARGEST_FILE) throw new Error('is larger than 20 MB');
      const read = readSetFile(await file.text(), file.name.replace(/\.[^.]*$/, ''), find);
      const { sets } = store.get();
      if (sets.length + read.sets.length > MOST_SETS) {
        throw new Error(`holds ${counted(read.sets.length, 'set')}, and a page at most ${formatCount(MOST_SETS)}`);
      }
      store.set({ sets: withSets(sets, read.sets) });
      note.tell(loadedText(read, file.name));
    } catch (error) {
      note.tell(`${file.name} ${error.message}`);
    }
  }

  function saveSet() {
    const { sets, selection } = store.get();
    const saved = withSet(sets, { name: `Set ${sets.length + 1}`, genes: selection });
    if (saved === sets) {
      note.tell(`A page holds at most ${formatCount(MOST_SETS)} sets`);
      return;
    }
    const { id, name } = saved.at(-1);
    open.add(id);
    store.set({ sets: saved });
    note.tell(`${counted(selection.length, 'gene')} saved as ${name}`);
    const field = list.querySelector(`[data-set="${id}"] [data-part="name"]`);
    field.focus();
    field.select();
  }

  heading.tabIndex = -1;
  element.append(heading, list, fileRow(model, store, load, () => copyLink(note)), note.element);
  followDrops(element, load);
  store.listen(['colouring'], () => {
    for (const box of list.querySelectorAll('[data-part="map"]')) box.checked = colours.has(Number(box.closest('[data-set]').dataset.set));
  });
  store.listen(['sets'], (state) => {
    note.clear();
    update(state);
  });
  update(store.get());
  return { saveSet, tell: note.tell };
}
