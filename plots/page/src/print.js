/** Paper is white: the page is printed in the light theme, whatever the screen shows. */

import { el } from './dom.js';

const PAPER = '#ffffff';

/**
 * The layers of the chart on one canvas. Browsers print what was ever drawn on each canvas, also its being
 * cleared, which wipes out the layers beneath. The room for the legend is left out: on paper it
 * stands below.
 */
function flattened({ element, plot }) {
  const ratio = window.devicePixelRatio || 1;
  const canvas = el('canvas', { class: 'chart-paper', 'aria-hidden': 'true' });
  const { left, width } = plot();
  canvas.width = (left + width + 1) * ratio;
  canvas.height = element.clientHeight * ratio;
  const context = canvas.getContext('2d');
  context.fillStyle = PAPER;
  context.fillRect(0, 0, canvas.width, canvas.height);
  context.scale(ratio, ratio);
  for (const layer of element.querySelectorAll('.chart-layer')) {
    context.drawImage(layer, layer.offsetLeft, layer.offsetTop, layer.offsetWidth, layer.offsetHeight);
  }
  return canvas;
}

/** Changes the theme for as long as printing takes, and prints the chart as one picture. */
export function printLight(chart, store) {
  let onScreen = store.get().theme;
  let paper = null;
  window.addEventListener('beforeprint', () => {
    onScreen = store.get().theme;
    store.set({ theme: 'light' });
    // Printing does not wait for the next frame.
    chart.flush();
    paper?.remove();
    paper = flattened(chart);
    chart.element.append(paper);
  });
  window.addEventListener('afterprint', () => {
    paper?.remove();
    store.set({ theme: onScreen });
  });
}
