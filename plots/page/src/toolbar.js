/** The row of tools above the chart. */

import { button, el } from './dom.js';
import { colourChoice } from './colour_choice.js';
import { zoomBy } from './keyboard.js';
import { genesInWindow } from './points.js';

const ZOOM_FACTOR = 1.6;

const TOOLS = [
  ['move', 'Move', 'Drag to move, turn the wheel or pinch to zoom'],
  ['box', 'Box', 'Drag a box around genes; with Shift they are added'],
  ['lasso', 'Lasso', 'Drag a line around genes; with Shift they are added'],
];

function toolChoice(store) {
  const buttons = TOOLS.map(([tool, text, title]) => button(text, () => store.set({ tool }), { title, 'data-tool': tool }));
  const update = ({ tool }) => buttons.forEach((each) => {
    each.setAttribute('aria-pressed', String(each.dataset.tool === tool));
  });
  store.listen(['tool'], update);
  update(store.get());
  return el('div', { class: 'group', role: 'group', 'aria-label': 'What dragging does' }, ...buttons);
}

function pairChoice(dataset, store) {
  const text = ({ group, xTitle, yTitle }) => (xTitle && yTitle ? `${yTitle} against ${xTitle}` : group);
  const select = el('select', { id: 'pair', on: { change: () => store.set({ pair: Number(select.value) }) } },
    ...dataset.pairs.map((pair, index) => el('option', { value: index }, text(pair))));
  return el('div', { class: 'group pair-choice' }, el('label', { for: 'pair' }, 'Components'), select);
}

function themeButton(store) {
  const other = button('', () => store.set({ theme: store.get().theme === 'dark' ? 'light' : 'dark' }), { id: 'theme' });
  const update = ({ theme }) => {
    other.textContent = theme === 'dark' ? 'Light' : 'Dark';
    other.setAttribute('aria-label', `Change to the ${theme === 'dark' ? 'light' : 'dark'} theme`);
  };
  store.listen(['theme'], update);
  update(store.get());
  return other;
}

/** Fills the toolbar. `exportAs('png' | 'svg')` saves a picture. */
export function showToolbar(element, chart, model, store, exportAs) {
  const zoom = (factor) => () => zoomBy(chart, model, store, factor);
  element.append(
    ...(model.dataset.pairs.length > 1 ? [pairChoice(model.dataset, store)] : []),
    colourChoice(model, store),
    toolChoice(store),
    el('div', { class: 'group', role: 'group', 'aria-label': 'View' },
      button('\u2212', zoom(1 / ZOOM_FACTOR), { 'aria-label': 'Zoom out', title: 'Zoom out' }),
      button('+', zoom(ZOOM_FACTOR), { 'aria-label': 'Zoom in', title: 'Zoom in' }),
      button('Reset', () => chart.flyTo(chart.whole()), { 'aria-label': 'Reset the view', title: 'Show everything' })),
    button('Select in view', () => store.set({ selection: genesInWindow(model.pointsOf(store.get()), chart.view()) }),
      { title: 'Choose every gene that is in view' }),
    el('div', { class: 'group last', role: 'group', 'aria-label': 'Picture and theme' },
      button('PNG', () => exportAs('png'), { 'aria-label': 'Save as PNG', title: 'Save the picture as PNG' }),
      button('SVG', () => exportAs('svg'), { 'aria-label': 'Save as SVG', title: 'Save the picture as SVG' }),
      themeButton(store)),
  );
}
