/** The legend of labels: a row for each, to show it or not, to show it alone, and to point at it. */

import { button, dataText, debounced, el } from './dom.js';
import { formatCount } from './format.js';
import { cutApart } from './short_labels.js';
import { swatch } from './swatch.js';

/** Longer legends have a box to find labels. */
const MOST_UNFILTERED = 12;

/** Characters of a label that have room in the legend. */
const LONGEST = 32;

const PAUSE_MILLISECONDS = 100;
// The pointer that crosses the legend on its way points at nothing.
const POINTING_MILLISECONDS = 80;

/** Makes the box with the whole of a long label, beside its row. */
function createWhole() {
  const element = el('div', { class: 'legend-whole', 'aria-hidden': 'true', hidden: true });
  return {
    element,
    show(row, text, isCut) {
      element.hidden = !isCut;
      if (!isCut) return;
      element.replaceChildren(dataText(text));
      const { left, right, top } = row.getBoundingClientRect();
      const { width, height } = element.getBoundingClientRect();
      const fits = left - width - 8 >= 0;
      element.style.setProperty('left', `${fits ? left - width - 8 : Math.max(right - width, 0)}px`);
      element.style.setProperty('top', `${fits ? top : Math.max(top - height - 2, 0)}px`);
    },
    hide() {
      element.hidden = true;
    },
  };
}

/** A row, which tells `actions` what the reader does with it. */
function createRow({ text, count }, short, style, actions) {
  const box = el('input', {
    type: 'checkbox',
    'aria-label': short === text ? undefined : `${text} ${formatCount(count)}`,
    on: { change: () => actions.show(box.checked) },
  });
  const words = el('span', { class: 'legend-text' }, dataText(short));
  const row = el('li', {
    on: {
      pointerenter: (event) => event.pointerType === 'mouse' && actions.point(),
      pointerleave: (event) => event.pointerType === 'mouse' && actions.leave(),
      // A finger's tap is no pointing: it would stay.
      focusin: (event) => event.target.matches(':focus-visible') && actions.point(),
      focusout: () => actions.leave(),
    },
  },
  el('label', { on: { dblclick: actions.alone } }, box, el('span', { class: 'mark' }, swatch(style)), words,
    el('span', { class: 'legend-count' }, formatCount(count))),
  button('Only', actions.alone, { class: 'quiet only', 'aria-label': `Only ${text}`, title: 'Show this label alone, or all again' }));
  return { row, box, isCut: short !== text };
}

/** The labels shown once one of them is asked for alone: all of them if it is alone already. */
export function isolated(shown, category) {
  const isAlone = shown.every((value, index) => value === Number(index === category));
  return shown.map((_, index) => Number(isAlone || index === category));
}

/**
 * The parts of the legend.
 *
 * @param {object} categories as of `findCategories`
 * @param {object[]} styles as of `categoryStyles`
 * @param {object} store
 * @returns `buttons` and `parts` for the page, and what keeps them true: `updateShown(state)`, and
 *   `updateHere(state, of)`, which marks the label of the gene in question; `of` as of `findCategories`
 */
export function createLabelLegend({ list }, styles, store) {
  const whole = createWhole();
  const short = cutApart(list.map(({ text }) => text), LONGEST);
  const setShown = (shown) => store.set({ shown: Uint8Array.from(shown) });

  let here = -1;
  const pointSoon = debounced((category) => store.set({ spotlight: category }), POINTING_MILLISECONDS);

  const rows = list.map((entry, category) => {
    const each = createRow(entry, short[category], styles[category], {
      show: (isShown) => setShown(store.get().shown.map((value, index) => (index === category ? Number(isShown) : value))),
      alone: () => setShown(isolated(store.get().shown, category)),
      point() {
        pointSoon(category);
        whole.show(each.row, entry.text, each.isCut);
      },
      leave() {
        pointSoon.cancel();
        store.set({ spotlight: -1 });
        whole.hide();
      },
    });
    return each;
  });

  const filter = el('input', { type: 'search', class: 'legend-filter', placeholder: 'Find a label', 'aria-label': 'Find a label' });
  const found = el('p', { class: 'legend-found', role: 'status' });
  filter.addEventListener('input', debounced(() => {
    const wanted = filter.value.trim().toLowerCase();
    rows.forEach(({ row }, category) => {
      row.hidden = !list[category].text.toLowerCase().includes(wanted);
    });
    const count = rows.filter(({ row }) => !row.hidden).length;
    found.textContent = wanted === '' ? '' : `${formatCount(count)} of ${formatCount(list.length)} labels`;
  }, PAUSE_MILLISECONDS));

  /** Shows or hides the labels that are found, which are all without a search. */
  const setFound = (isShown) => () => setShown(store.get().shown.map((value, index) => (rows[index].row.hidden ? value : Number(isShown))));
  const element = el('ul', { class: 'legend-list', tabindex: 0, 'aria-label': 'Labels' }, ...rows.map(({ row }) => row));
  element.addEventListener('scroll', whole.hide);

  return {
    buttons: [
      button('All', setFound(true), { class: 'quiet', 'aria-label': 'All labels' }),
      button('None', setFound(false), { class: 'quiet', 'aria-label': 'None of the labels' }),
    ],
    parts: [...(list.length > MOST_UNFILTERED ? [filter, found] : []), element, whole.element],
    updateShown({ shown }) {
      rows.forEach(({ box }, category) => {
        box.checked = shown[category] === 1;
      });
    },
    updateHere({ hover, focus }, of) {
      rows[here]?.row.classList.remove('here');
      here = of[hover >= 0 ? hover : focus] ?? -1;
      rows[here]?.row.classList.add('here');
    },
  };
}
