/** The legend: a checkbox for each label, and how many genes are in view. */

import { button, dataText, el, svg } from './dom.js';
import { formatCount } from './format.js';

function swatch({ colour, shape }) {
  return svg('svg', { class: 'swatch', viewBox: '0 0 16 16', 'aria-hidden': 'true' },
    svg('path', { d: shape.path, fill: colour }));
}

/** Fills the legend's element; without labels it holds the counts only. */
export function showLegend(element, chart, model, store) {
  const { list, labelled } = model.categories;
  const counts = el('p', { class: 'counts' });
  const boxes = [];
  const swatches = [];

  function set(shown) {
    store.set({ shown });
  }

  function row({ text, count }, category) {
    const box = el('input', { type: 'checkbox', checked: true, on: { change: () => {
      const shown = store.get().shown.slice();
      shown[category] = box.checked ? 1 : 0;
      set(shown);
    } } });
    const mark = el('span', { class: 'mark' });
    boxes.push(box);
    swatches.push(mark);
    const words = el('span', { class: 'legend-text', title: text },
      dataText(text), ' ', el('span', { class: 'legend-count' }, formatCount(count)));
    return el('li', {}, el('label', {}, box, mark, words));
  }

  function updateMarks() {
    model.stylesOf(store.get()).forEach((style, category) => swatches[category].replaceChildren(swatch(style)));
  }

  function updateCounts() {
    const drawn = model.pointsOf(store.get()).genes.length;
    counts.textContent = `${formatCount(chart.visibleCount())} of ${formatCount(drawn)} in view`;
  }

  if (labelled) {
    element.append(
      el('div', { class: 'legend-head' },
        el('h2', {}, 'Labels'),
        button('All', () => set(new Uint8Array(list.length).fill(1)), { class: 'quiet', 'aria-label': 'All labels' }),
        button('None', () => set(new Uint8Array(list.length)), { class: 'quiet', 'aria-label': 'None of the labels' })),
      el('ul', { class: 'legend-list', tabindex: 0, 'aria-label': 'Labels' }, ...list.map(row)),
    );
    store.listen(['shown'], ({ shown }) => boxes.forEach((box, category) => {
      box.checked = shown[category] === 1;
    }));
    store.listen(['theme'], updateMarks);
    updateMarks();
  } else {
    element.append(el('h2', {}, 'Genes'));
  }
  element.append(counts);
  store.listen(['shown', 'pair'], updateCounts);
  chart.onSettle(updateCounts);
  updateCounts();
}
