/** What the panel of trust says of the stability of the map, and the notes of groups that do not stay. */

import { LEAST_STAYING, notApartFrom, stabilityOf, stayingOf } from './stability.js';
import { button, el } from './dom.js';
import { counted, formatCount } from './format.js';

const percent = (share) => `${(100 * share).toFixed(0)} %`;

const manner = ({ draws }) => (draws > 0 ? 'columns' : 'seeds');

/** The note beside chosen genes that do not stay together, which keeps itself true. */
function selectionNote(stability, store) {
  const note = el('p', { class: 'notice doubt unstable', role: 'note', hidden: true });
  function update({ selection }) {
    const { leaving, isDoubtful } = stabilityOf(stability, selection);
    note.hidden = !isDoubtful;
    note.textContent = isDoubtful ? `These genes do not stay together with other ${manner(stability)}: ${formatCount(leaving)} of `
      + `${formatCount(selection.length)} keep less than ${percent(LEAST_STAYING)} of their ${stability.neighbours} nearest on the map.` : '';
  }
  store.listen(['selection'], update);
  update(store.get());
  return note;
}

/**
 * Fills the part of the panel where the map was compared with others.
 *
 * @param {HTMLElement} selection the panel of chosen genes, below whose heading the note stands
 */
export function showStability(element, selection, model, store) {
  const { stability } = model.dataset.quality;
  for (const { title, values } of stability.columns) model.addColouring({ title, numbers: values, diverging: false });
  const { title } = stability.columns.find(({ values }) => values === stayingOf(stability));
  element.append(
    button('Colour by stability', () => store.set(model.colouredBy(model.colourings.titled(title)))),
    el('p', { class: 'counts' }, `Of each gene: the share of its ${stability.neighbours} nearest on this map that are so on maps of other `
      + `${manner(stability)}. The list of colours has more.`),
  );
  selection.querySelector('.panel-head').after(selectionNote(stability, store));
}

/**
 * What there is to say against a cluster of the run.
 *
 * @param stability as of `readStability`, or null
 * @param {string} label
 * @param {Int32Array} genes
 * @returns {HTMLElement[]} a note, or nothing
 */
export function clusterNotes(stability, label, genes) {
  if (stability === null) return [];
  const others = notApartFrom(stability, label);
  const { isDoubtful } = stabilityOf(stability, genes);
  const sentences = [
    ...(others.length > 0 ? [`Not reliably apart from ${counted(others.length, 'cluster')}: ${others.join(', ')}.`] : []),
    ...(isDoubtful ? [`Does not stay together with other ${manner(stability)}.`] : []),
  ];
  return sentences.length > 0 ? [el('p', { class: 'cluster-doubt', role: 'note' }, sentences.join(' '))] : [];
}
