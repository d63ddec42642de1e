/** The legend: the labels or the scale of numbers that genes are coloured by, and how many are in view. */

import { dataText, el } from './dom.js';
import { formatCount } from './format.js';
import { createLabelLegend } from './label_legend.js';
import { scaleParts } from './scale_legend.js';

/** On paper, which does not scroll, more labels stand below the chart. */
const MOST_BESIDE_ON_PAPER = 20;

/** Fills the legend's element and keeps it true; without labels it holds the counts only. */
export function showLegend(element, chart, model, store) {
  const counts = el('p', { class: 'counts' });
  const body = el('div', { class: 'legend-body' });
  let labels = null;

  function parts(state) {
    const categories = model.categoriesOf(state);
    const given = model.colouringOf(state).title;
    const title = el('h2', {}, given === '' ? 'Labels' : dataText(given));
    const styles = model.stylesOf(state);
    labels = null;
    if (categories.scale) return [title, ...scaleParts(categories, styles)];
    if (!categories.labelled) return [el('h2', {}, 'Genes')];
    labels = createLabelLegend(categories, styles, store);
    return [el('div', { class: 'legend-head' }, title, ...labels.buttons), ...labels.parts];
  }

  const updateShown = (state) => labels?.updateShown(state);
  const updateHere = (state) => labels?.updateHere(state, model.categoriesOf(state).of);

  function updateCounts() {
    const drawn = model.pointsOf(store.get()).genes.length;
    counts.textContent = `${formatCount(chart.visibleCount())} of ${formatCount(drawn)} in view`;
  }

  function rebuild(state) {
    element.classList.toggle('long', model.categoriesOf(state).list.length > MOST_BESIDE_ON_PAPER);
    body.replaceChildren(...parts(state));
    updateShown(state);
    updateHere(state);
  }

  element.append(body, counts);
  store.listen(['colouring', 'theme'], rebuild);
  store.listen(['shown'], updateShown);
  store.listen(['hover', 'focus'], updateHere);
  store.listen(['shown', 'pair', 'colouring'], updateCounts);
  chart.onSettle(updateCounts);
  rebuild(store.get());
  updateCounts();
}
