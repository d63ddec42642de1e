/** The ring around the gene in question, and the box that says what it is. */

import { graphic } from './engine.js';
import { el, dataText } from './dom.js';
import { categoryText, coordinatesText } from './gene_text.js';
import { functionText } from './format.js';
import { nameOf } from './dataset.js';
import { inkOf } from './theme.js';
import { contains } from './windows.js';

// Above every series, on a canvas of its own: moving the ring redraws nothing else.
const TOP_LAYER = 10;

function tooltipContent(model, state, gene) {
  const { dataset } = model;
  // The status line and the details say the same to screen readers.
  return el('div', { class: 'tip', 'aria-hidden': 'true' },
    el('div', { class: 'tip-name' }, dataText(nameOf(dataset, gene))),
    el('div', { class: 'tip-group' }, dataText(categoryText(model, state, gene))),
    el('div', { class: 'tip-function' }, dataText(functionText(dataset.functions[gene] ?? ''))),
    el('div', { class: 'tip-place' }, coordinatesText(model, state, gene)));
}

/** Keeps ring and box at the gene under the pointer or, without one, at the focused gene. */
export function createMarker(chart, model, store) {
  const ring = (radius) => new graphic.Circle({
    shape: { cx: 0, cy: 0, r: radius },
    style: { fill: 'none', lineWidth: 2 },
    zlevel: TOP_LAYER,
    silent: true,
    invisible: true,
  });
  const rings = [ring(8), ring(10)];
  for (const each of rings) chart.echart.getZr().add(each);

  let isShown = false;

  function hide() {
    if (!isShown) return;
    isShown = false;
    for (const each of rings) each.attr({ invisible: true });
    chart.echart.dispatchAction({ type: 'hideTip' });
  }

  function update() {
    const state = store.get();
    const gene = state.hover >= 0 ? state.hover : state.focus;
    const { x, y } = model.pointsOf(state);
    const isDrawn = gene >= 0 && state.shown[model.categoriesOf(state).of[gene]] === 1;
    if (!isDrawn || !contains(chart.view(), x[gene], y[gene])) {
      hide();
      return;
    }
    isShown = true;
    const [pixelX, pixelY] = chart.pixelOf(gene);
    const ink = inkOf(state.theme);
    rings.forEach((each, index) => {
      each.attr({ invisible: false, shape: { cx: pixelX, cy: pixelY } });
      each.setStyle({ stroke: index === 0 ? ink.text : ink.surface });
    });
    chart.echart.dispatchAction({
      type: 'showTip',
      x: pixelX,
      y: pixelY,
      tooltip: { formatter: () => tooltipContent(model, state, gene) },
    });
  }

  store.listen(['hover', 'focus'], update);
  chart.onMove(update);
}
