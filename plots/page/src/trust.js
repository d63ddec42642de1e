/** The panel that says how far the map can be trusted, and the note of selections that lie unreliably. */

import { button, dataText, el } from './dom.js';
import { formatCount } from './format.js';
import { showMisplaced } from './misplaced.js';
import { LEAST_KEPT, NOISE_LABELS, noiseLabels, noiseOf, reliabilityOf } from './quality.js';
import { showStability } from './staying.js';

const percent = (share) => `${(100 * share).toFixed(0)} %`;

/** What a gene's share of kept neighbours colours by. */
const TITLE = 'Kept neighbours';

/** What a gene is against noise colours by. */
const NOISE_TITLE = 'Against noise';

function noteText({ median, ofAll, unreliable }, count, neighbours) {
  return `The map places most of these genes unreliably: for ${formatCount(unreliable)} of ${formatCount(count)} it keeps less than `
    + `${percent(LEAST_KEPT)} of their ${neighbours} nearest neighbours in the data (median ${percent(median)}; `
    + `of all genes ${percent(ofAll)}). What they lie beside may be chance.`;
}

function noiseText({ better, ofAll }, count) {
  return `Noise would place these genes as well: ${formatCount(better)} of ${formatCount(count)} are better than 95 % of noise `
    + `(of all genes ${percent(ofAll)}, of noise 5 %).`;
}

/**
 * A note of a selection, which keeps itself true.
 *
 * @param {function(Int32Array): string} textOf the note of some genes; empty for none
 */
function selectionNote(textOf, store) {
  const note = el('p', { class: 'notice doubt', role: 'note', hidden: true });
  function update({ selection }) {
    note.textContent = textOf(selection);
    note.hidden = note.textContent === '';
  }
  store.listen(['selection'], update);
  update(store.get());
  return note;
}

/** What there is to say against a selection, as texts that may be empty. */
function selectionTexts(quality) {
  const unreliable = (genes) => {
    const reliability = reliabilityOf(quality, genes);
    return reliability.isDoubtful ? noteText(reliability, genes.length, quality.neighbours) : '';
  };
  const asNoise = (genes) => {
    const noise = noiseOf(quality, genes);
    return noise?.isAsNoise ? noiseText(noise, genes.length) : '';
  };
  return [unreliable, asNoise];
}

/** The button that colours genes by whether they are told from noise, where the run says so. */
function noiseColours(model, store) {
  const labels = noiseLabels(model.dataset.quality);
  if (labels === null) return [];
  model.addColouring({ title: NOISE_TITLE, labels, order: NOISE_LABELS, rest: NOISE_LABELS.at(-1) });
  return [button('Colour by noise', () => store.set(model.colouredBy(model.colourings.titled(NOISE_TITLE))))];
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
    el('div', { class: 'row trust-colours' },
      button('Colour by kept neighbours', () => store.set(model.colouredBy(model.colourings.titled(TITLE)))),
      ...noiseColours(model, store)),
    el('p', { class: 'counts' }, `Kept neighbours: of each gene the share of its ${quality.neighbours} nearest in the data that are `
      + `among its ${quality.neighbours} nearest on the map. Where it is low, the place of the gene says little.`),
  );
  selection.querySelector('.panel-head').after(...selectionTexts(quality).map((textOf) => selectionNote(textOf, store)));
}
