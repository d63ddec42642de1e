/** Colouring the map by the distance, in the data, to the gene under the pointer. */

import { el } from './dom.js';
import { nameOf } from './dataset.js';

const TITLE = 'Distance to the gene pointed at';

/** The distance of each gene to one of them; NaN where there is none. */
function distancesTo(expression, gene) {
  return Float64Array.from({ length: expression.rows }, (_, other) => expression.distance(gene, other));
}

/**
 * Fills the element with the switch. While it is on, the map takes the colours of whatever gene is pointed at or,
 * without one, focused; off, it has those it had before.
 */
export function showDistanceSwitch(element, model, store, format) {
  const { dataset } = model;
  let before = null;
  let shownFor = -1;
  let frame = 0;
  const box = el('input', { type: 'checkbox', id: 'distance-switch' });
  const who = el('p', { class: 'counts' });
  element.append(el('label', { class: 'switch' }, box, 'Colour by distance in the data to the gene pointed at'), who);

  function colour(gene) {
    shownFor = gene;
    const numbers = distancesTo(dataset.expression, gene);
    const labels = Array.from(numbers, (distance) => (Number.isNaN(distance) ? '' : format(distance)));
    const index = model.addColouring({ title: TITLE, labels, numbers, diverging: false });
    store.set(model.colouredBy(index));
    who.textContent = `Distance to ${nameOf(dataset, gene)}.`;
  }

  function follow() {
    const { hover, focus } = store.get();
    const gene = hover >= 0 ? hover : focus;
    if (!box.checked || gene < 0 || gene === shownFor || frame !== 0) return;
    frame = requestAnimationFrame(() => {
      frame = 0;
      const now = store.get();
      const latest = now.hover >= 0 ? now.hover : now.focus;
      if (box.checked && latest >= 0) colour(latest);
    });
  }

  box.addEventListener('change', () => {
    shownFor = -1;
    if (box.checked) {
      before = store.get().colouring;
      who.textContent = 'Point at a gene, or focus one.';
      follow();
    } else {
      who.textContent = '';
      store.set(model.colouredBy(before));
    }
  });
  store.listen(['hover', 'focus'], follow);
}
