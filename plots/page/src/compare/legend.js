/** What the colours mean; a label chooses its genes. */

import { dataText, el, svg } from '../dom.js';
import { formatCoordinate, formatCount } from '../format.js';

const MOST_LISTED = 200;

function genesOf({ of }, category) {
  const genes = [];
  of.forEach((one, gene) => {
    if (one === category) genes.push(gene);
  });
  return Int32Array.from(genes);
}

function swatch(colour) {
  return svg('svg', { class: 'swatch', viewBox: '0 0 16 16', 'aria-hidden': 'true' },
    svg('circle', { cx: 8, cy: 8, r: 7, fill: colour }));
}

function categoryList({ categories, styles }, store) {
  const items = categories.list.slice(0, MOST_LISTED).map(({ text, count }, category) => {
    const choice = el('button', {
      type: 'button',
      class: 'label-choice',
      title: 'Select its genes',
      on: { click: () => store.set({ selection: genesOf(categories, category) }) },
    }, swatch(styles[category].colour), dataText(text), el('span', { class: 'legend-count' }, formatCount(count)));
    return el('li', {}, choice);
  });
  return el('ul', { class: 'labels' }, ...items);
}

function scaleBar({ categories, styles }) {
  const { scale } = categories;
  const bars = styles.slice(0, -1).map(({ colour }, level, all) =>
    svg('rect', { x: level / all.length, y: 0, width: 1 / all.length + 0.001, height: 1, fill: colour }));
  return el('div', {},
    svg('svg', { class: 'scale-bar', viewBox: '0 0 1 1', preserveAspectRatio: 'none', 'aria-hidden': 'true' }, ...bars),
    el('p', { class: 'scale-bar-ends counts' },
      el('span', {}, formatCoordinate(scale.least)), el('span', {}, formatCoordinate(scale.most))));
}

/** Fills the legend and keeps it true. `colours` as of the maps. */
export function showLegend(element, comparison, store, colours) {
  const body = el('div');
  element.append(el('h2', {}, 'Colours'), body);

  function update(state) {
    const colouring = colours(state);
    if (colouring.categories === null) {
      const { title } = comparison.runs[comparison.reference] ?? { title: '' };
      body.replaceChildren(el('p', { class: 'hint' },
        'A gene has the same colour in all maps: that of its place in the map of ', dataText(title),
        '. Where colours mix, genes have moved apart.'));
    } else {
      body.replaceChildren(colouring.categories.scale ? scaleBar(colouring) : categoryList(colouring, store));
    }
  }

  store.listen(['colouring', 'theme'], update);
  update(store.get());
}
