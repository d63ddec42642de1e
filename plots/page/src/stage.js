/** Placing the chart and the legend in the room that the window has. */

import { LEGEND_GAP } from './frame.js';

const NARROW_PIXELS = 640;
const LEAST_HEIGHT = 440;

/** Between the lower edges of the stage and of the window. */
const BELOW = 12;

/** Keeps the legend at its place when the chart changes its size: beside the plot where it fits. */
export function placeLegend(stage, legend, chart, layout) {
  function update() {
    const [top, right, bottom] = chart.margins();
    const beside = !chart.isNarrow() && right >= layout.legendWidth + LEGEND_GAP;
    stage.classList.toggle('legend-beside', beside);
    legend.style.setProperty('--legend-width', `${layout.legendWidth}px`);
    legend.style.setProperty('--legend-right', `${right - LEGEND_GAP - layout.legendWidth}px`);
    legend.style.setProperty('--legend-top', `${top}px`);
    legend.style.setProperty('--legend-height', `${chart.element.clientHeight - top - bottom}px`);
  }
  chart.onSettle(update);
  update();
  return update;
}

/**
 * Gives the chart the height that lets the stage end where the window does.
 *
 * @param {HTMLElement} stage the card that holds it
 * @param {HTMLElement} help what is opened below the chart, which then may reach out of the window
 * @param {function()} afterwards called when the height is another one
 */
export function fillWindow(stage, help, chart, afterwards) {
  function fit() {
    const { element } = chart;
    if (window.innerWidth <= NARROW_PIXELS) {
      element.style.removeProperty('height');
      return;
    }
    const above = element.getBoundingClientRect().top + window.scrollY;
    const below = help.querySelector('summary').offsetHeight + parseFloat(getComputedStyle(help).marginTop)
      + parseFloat(getComputedStyle(stage).paddingBottom) + BELOW;
    const height = Math.max(Math.floor(window.innerHeight - above - below), LEAST_HEIGHT);
    if (height === element.clientHeight) return;
    element.style.setProperty('height', `${height}px`);
    afterwards();
  }
  window.addEventListener('resize', fit);
  fit();
}
