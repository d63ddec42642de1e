/** The panel that says how far the map can be trusted, and the note of selections that lie unreliably. */

import { button, dataText, el } from './dom.js';
import { formatCount } from './format.js';
import { showMisplaced } from './misplaced.js';
import { LEAST_KEPT, reliabilityOf } from './quality.js';
import { showStability } from './staying.js';

const percent = (share) => `${(100 * share).toFixed(0)} %`;

/** What a gene's share of kept neighbours colours by. */
const TITLE = 'Kept neighbours';

function noteText({ median, ofAll, unreliable }, count, neighbours) {
  return `The map places most of these genes unreliably: for ${formatCount(unreliable)} of ${formatCount(count)} it keeps less than `
    + `${percent(LEAST_KEPT)} of their ${neighbours} nearest neighbours in the data (median ${percent(median)}; `
    + `of all genes ${percent(ofAll)}). What they lie beside may be chance.`;
}

/** The note, which keeps itself true. */
function selectionNote(quality, store) {
  const note = el('p', { class: 'notice doubt', role: 'note', hidden: true });
  function update({ selection }) {
    const reliability = reliabilityOf(quality, selection);
    note.hidden = !reliability.isDoubtful;
    note.textContent = note.hidden ? '' : noteText(reliability, selection.length, quality.neighbours);
  }
  store.listen(['selection'], update);
  update(store.get());
  return note;
}

/**
 * Fills the panel where the run measured anything.
 *
 * @param {HTMLElement} element
 * @param {object} chart as of `createChart`
 * @param {function(number)} choose is called for a gene that the reader picks
 * @param {HTMLElement} selection the panel of chosen genes, below whose heading the note stands
 */
export function showTrust(element, selection, chart, model, store, choose) {
  const { quality } = model.dataset;
  if (quality === null) return;
  element.append(
    el('h2', {}, 'How far to trust this map'),
    el('dl', { class: 'trust' }, ...quality.numbers.map(({ name, value, sentence }) => el('div', {},
      el('dt', {}, dataText(name), el('span', { class: 'trust-value' }, dataText(value))),
      el('dd', {}, dataText(sentence))))),
  );
  if (quality.reliability !== null) {
    const misplaced = el('div', { class: 'misplaced' });
    element.append(misplaced);
    showMisplaced(misplaced, chart, model, store, choose);
  }
  if (quality.stability !== null) showStability(element, selection, model, store);
  if (quality.kept === null) return;
  model.addColouring({ title: TITLE, numbers: quality.kept, diverging: false });
  element.append(
    button('Colour by kept neighbours', () => store.set(model.colouredBy(model.colourings.titled(TITLE)))),
    el('p', { class: 'counts' }, `Of each gene: the share of its ${quality.neighbours} nearest neighbours in the data that are `
      + `among its ${quality.neighbours} nearest on the map. Where it is low, the place of the gene says little.`),
  );
  selection.querySelector('.panel-head').after(selectionNote(quality, store));
}
