/** The legend: a checkbox for each label or the scale of numbers, and how many genes are in view. */

import { button, dataText, el, svg } from './dom.js';
import { formatCoordinate, formatCount } from './format.js';
import { NUMBER_LEVELS } from './categories.js';

function swatch({ colour, shape }) {
  return svg('svg', { class: 'swatch', viewBox: '0 0 16 16', 'aria-hidden': 'true' },
    svg('path', { d: shape.path, fill: colour }));
}

/** A checkbox for each label. */
function labelParts({ list }, title, styles, shown, set) {
  function row({ text, count }, category) {
    const box = el('input', { type: 'checkbox', on: { change: () => set(category, box.checked) } });
    box.checked = shown[category] === 1;
    const words = el('span', { class: 'legend-text', title: text },
      dataText(text), ' ', el('span', { class: 'legend-count' }, formatCount(count)));
    return el('li', {}, el('label', {}, box, el('span', { class: 'mark' }, swatch(styles[category])), words));
  }
  return [
    el('div', { class: 'legend-head' },
      el('h2', {}, title),
      button('All', () => set(-1, true), { class: 'quiet', 'aria-label': 'All labels' }),
      button('None', () => set(-1, false), { class: 'quiet', 'aria-label': 'None of the labels' })),
    el('ul', { class: 'legend-list', tabindex: 0, 'aria-label': 'Labels' }, ...list.map(row)),
  ];
}

/** A bar of the colours, from the most at the top to the least. */
function scaleParts({ list, scale }, title, styles) {
  const [least, most] = [formatCoordinate(scale.least), formatCoordinate(scale.most)];
  const step = (_, level) => svg('rect', {
    x: 0, y: NUMBER_LEVELS - 1 - level, width: 8, height: 1.1, fill: styles[level].colour,
  });
  const bar = svg('svg', {
    class: 'scale',
    viewBox: `0 0 8 ${NUMBER_LEVELS}`,
    preserveAspectRatio: 'none',
    'shape-rendering': 'crispEdges',
    role: 'img',
    'aria-label': `Colours from ${least} to ${most}`,
  }, ...Array.from({ length: NUMBER_LEVELS }, step));
  const missing = list[NUMBER_LEVELS];
  return [
    el('h2', {}, title),
    el('div', { class: 'scale-frame' }, bar, el('div', { class: 'scale-ends' }, el('span', {}, most), el('span', {}, least))),
    ...(missing
      ? [el('p', {}, swatch(styles[NUMBER_LEVELS]), ` ${missing.text} `, el('span', { class: 'legend-count' }, formatCount(missing.count)))]
      : []),
  ];
}

/** Fills the legend's element and keeps it true; without labels it holds the counts only. */
export function showLegend(element, chart, model, store) {
  const counts = el('p', { class: 'counts' });
  const body = el('div', { class: 'legend-body' });

  /** Shows a category or not; -1 stands for all of them. */
  function set(category, isShown) {
    const { shown } = store.get();
    store.set({ shown: shown.map((value, index) => (category < 0 || index === category ? Number(isShown) : value)) });
  }

  function parts(state) {
    const categories = model.categoriesOf(state);
    const given = model.colouringOf(state).title;
    const title = given === '' ? 'Labels' : dataText(given);
    const styles = model.stylesOf(state);
    if (categories.scale) return scaleParts(categories, title, styles);
    if (categories.labelled) return labelParts(categories, title, styles, state.shown, set);
    return [el('h2', {}, 'Genes')];
  }

  function updateChecks({ shown }) {
    body.querySelectorAll('input').forEach((box, category) => {
      box.checked = shown[category] === 1;
    });
  }

  function updateCounts() {
    const drawn = model.pointsOf(store.get()).genes.length;
    counts.textContent = `${formatCount(chart.visibleCount())} of ${formatCount(drawn)} in view`;
  }

  const rebuild = (state) => body.replaceChildren(...parts(state));
  element.append(body, counts);
  store.listen(['colouring', 'theme'], rebuild);
  store.listen(['shown'], updateChecks);
  store.listen(['shown', 'pair', 'colouring'], updateCounts);
  chart.onSettle(updateCounts);
  rebuild(store.get());
  updateCounts();
}
