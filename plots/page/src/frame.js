/** The room that the plot leaves around itself for axes and legend. */

import { axisRoom } from './axes.js';

const NARROW_PIXELS = 640;
const NARROW_EDGE = 8;
const EDGE = 10;
const LEAST_PLOT = 40;

/** Between plot and legend. */
export const LEGEND_GAP = 14;

/**
 * Measures the chart's element.
 *
 * @param {HTMLElement} element
 * @param {object} layout as of `readDataset`; its margins are the most that there may be
 * @param {function(): {whole: object, numbers: boolean}} axes window at full view, and whether the axes have
 *   numbers
 */
export function createFrame(element, layout, axes) {
  const isNarrow = () => element.clientWidth < NARROW_PIXELS;
  const hasRoomForLegend = () => !isNarrow() && layout.margins[1] >= layout.legendWidth + LEGEND_GAP;

  /** Pixels above, at the right of, below and at the left of the plot. */
  function margins() {
    const { whole, numbers } = axes();
    const edge = isNarrow() ? NARROW_EDGE : EDGE;
    const right = hasRoomForLegend() ? layout.legendWidth + LEGEND_GAP : edge;
    return [edge, right, ...axisRoom(whole, layout, numbers)]
      .map((room, side) => Math.round(isNarrow() ? room : Math.min(room, layout.margins[side])));
  }

  /** The rectangle within the axes, in pixels of the element. */
  function plot() {
    const [top, right, bottom, left] = margins();
    return {
      left,
      top,
      width: Math.max(element.clientWidth - left - right, LEAST_PLOT),
      height: Math.max(element.clientHeight - top - bottom, LEAST_PLOT),
    };
  }

  return { isNarrow, margins, plot };
}
