/** Placing the legend: in the margin beside the plot where it fits, otherwise below the chart. */

const GAP = 22;

/** Keeps the legend at its place when the chart changes its size. */
export function placeLegend(stage, legend, chart, layout) {
  function update() {
    const [top, right, bottom] = chart.margins();
    const beside = !chart.isNarrow() && right >= layout.legendWidth + GAP;
    stage.classList.toggle('legend-beside', beside);
    legend.style.setProperty('--legend-width', `${layout.legendWidth}px`);
    legend.style.setProperty('--legend-right', `${right - GAP - layout.legendWidth}px`);
    legend.style.setProperty('--legend-top', `${top}px`);
    legend.style.setProperty('--legend-height', `${chart.element.clientHeight - top - bottom}px`);
  }
  chart.onSettle(update);
  update();
}
