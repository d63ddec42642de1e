/** Colouring the map by the distance, in the data, to the gene under the pointer. */

import { dataText, el } from './dom.js';
import { nameOf } from './dataset.js';

const TITLE = 'Distance to the gene pointed at';

/** The distance of each gene to one of them; NaN where there is none. */
function distancesTo(expression, gene) {
  return Float64Array.from({ length: expression.rows }, (_, other) => expression.distance(gene, other));
}

/**
 * Fills the element with the switch, which is there once a gene is focused. While it is on, the map is coloured anew for each gene that is pointed at or
 * focused; off, it has the colours it had before.
 */
export function showDistanceSwitch(element, model, store) {
  const { dataset } = model;
  let before = null;
  let wanted = -1;
  let frame = 0;
  const box = el('input', { type: 'checkbox', id: 'distance-switch' });
  const who = el('p', { class: 'counts' });
  element.hidden = store.get().focus < 0;
  element.append(el('label', { class: 'switch' }, box, 'Colour by distance in the data to the gene pointed at'), who);

  function colour() {
    frame = 0;
    if (!box.checked) return;
    const numbers = distancesTo(dataset.expression, wanted);
    store.set(model.colouredBy(model.addColouring({ title: TITLE, numbers, diverging: false })));
    who.replaceChildren('Distance to ', dataText(nameOf(dataset, wanted)));
  }

  /** However fast genes are pointed at, the map is coloured once a frame. */
  function follow(gene) {
    if (!box.checked || gene < 0 || gene === wanted) return;
    wanted = gene;
    if (frame === 0) frame = requestAnimationFrame(colour);
  }

  function switchOn() {
    const { colouring, shown, focus } = store.get();
    before = { colouring, shown };
    who.textContent = 'Point at a gene, or go to one.';
    follow(focus);
  }

  function switchOff() {
    wanted = -1;
    who.textContent = '';
  }

  box.addEventListener('change', () => {
    if (box.checked) {
      switchOn();
    } else {
      switchOff();
      store.set(before);
    }
  });
  store.listen(['hover'], ({ hover }) => follow(hover));
  store.listen(['focus'], ({ focus }) => {
    element.hidden = focus < 0 && !box.checked;
    follow(focus);
  });
  store.listen(['colouring'], (state) => {
    // The reader has chosen other colours.
    if (!box.checked || wanted < 0 || model.colouringOf(state).title === TITLE) return;
    box.checked = false;
    switchOff();
  });
}
