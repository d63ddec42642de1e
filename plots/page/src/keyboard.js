/** Using the chart by keyboard. */

import { nearestGene, nextGene } from './points.js';
import { toggled } from './sets.js';
import { centreOf, contains, panned, shareOf, windowAt, zoomAbout } from './windows.js';

const PAN_SHARE = 0.15;
const ZOOM_FACTOR = 1.4;

const DIRECTIONS = {
  ArrowRight: [1, 0],
  ArrowLeft: [-1, 0],
  ArrowUp: [0, 1],
  ArrowDown: [0, -1],
};

/** Zooms around the focused gene if it is in view, otherwise around the middle; above 1 = nearer. */
export function zoomBy(chart, model, store, factor) {
  const view = chart.view();
  const { x, y } = model.pointsOf(store.get());
  const { focus } = store.get();
  const centre = centreOf(view);
  const fixed = focus >= 0 && contains(view, x[focus], y[focus]) ? { x: x[focus], y: y[focus] } : centre;
  chart.setView(zoomAbout(chart.whole(), view, fixed, factor));
}

/** Moves the view, without zooming, so that a place is in its middle. */
function bringIntoView(chart, x, y) {
  const view = chart.view();
  if (contains(view, x, y) || !Number.isFinite(x) || !Number.isFinite(y)) return;
  chart.setView(windowAt(chart.whole(), x, y, shareOf(chart.whole(), view)));
}

/** Escape lets go of one thing at a time: the gene, then the tool, then the choice. */
function letGo(store) {
  const state = store.get();
  if (state.focus >= 0 || state.hover >= 0) store.set({ focus: -1, hover: -1 });
  else if (state.tool !== 'move') store.set({ tool: 'move' });
  else store.set({ selection: new Int32Array(0) });
}

/**
 * Makes the element, which can be focused, listen to keys.
 *
 * @param {HTMLElement} element
 */
export function followKeyboard(element, chart, model, store) {
  function step([right, up]) {
    const points = model.pointsOf(store.get());
    const { focus } = store.get();
    const centre = centreOf(chart.view());
    const isDrawn = focus >= 0 && points.genes.includes(focus);
    const next = isDrawn
      ? nextGene(points, focus, right, up)
      : nearestGene(points, centre.x, centre.y);
    if (next < 0) return;
    store.set({ focus: next, hover: -1 });
    bringIntoView(chart, points.x[next], points.y[next]);
  }

  function pan([right, up]) {
    const view = chart.view();
    const distance = (view.x1 - view.x0) * PAN_SHARE;
    chart.setView(panned(chart.whole(), view, right * distance, up * distance));
  }

  function toggleFocused() {
    const { focus, selection } = store.get();
    if (focus >= 0) store.set({ selection: toggled(selection, focus) });
  }

  const actions = {
    '+': () => zoomBy(chart, model, store, ZOOM_FACTOR),
    '=': () => zoomBy(chart, model, store, ZOOM_FACTOR),
    '-': () => zoomBy(chart, model, store, 1 / ZOOM_FACTOR),
    _: () => zoomBy(chart, model, store, 1 / ZOOM_FACTOR),
    0: () => chart.flyTo(chart.whole()),
    Home: () => chart.flyTo(chart.whole()),
    Enter: toggleFocused,
    ' ': toggleFocused,
    Escape: () => letGo(store),
  };

  element.addEventListener('keydown', (event) => {
    if (event.target !== element || event.ctrlKey || event.altKey || event.metaKey) return;
    const direction = DIRECTIONS[event.key];
    const action = direction
      ? () => (event.shiftKey ? pan(direction) : step(direction))
      : Object.hasOwn(actions, event.key) && actions[event.key];
    if (!action) return;
    event.preventDefault();
    action();
  });
}
