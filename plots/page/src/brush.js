/** Choosing genes by a box or a lasso drawn in the chart. */

import { genesInPolygon, genesInWindow } from './points.js';
import { union } from './sets.js';

/** The corners of a box between two places. */
const boxCorners = ([x0, y0], [x1, y1]) => [[x0, y0], [x1, y0], [x1, y1], [x0, y1]];

/**
 * Makes the area that dragging draws.
 *
 * @returns the action for `followGestures`; at its end the genes within become the selection, with Shift
 *   they join it
 */
export function createArea(chart, model, store) {
  // In data units: the map may be zoomed while an area is drawn.
  let corners = null;

  function outline() {
    if (corners.length < 2) return corners;
    return store.get().tool === 'box' ? boxCorners(corners[0], corners.at(-1)) : corners;
  }

  function genesWithin() {
    const points = model.pointsOf(store.get());
    if (store.get().tool === 'lasso') return genesInPolygon(points, corners);
    const [[x0, y0], , [x1, y1]] = outline();
    return genesInWindow(points, {
      x0: Math.min(x0, x1), x1: Math.max(x0, x1), y0: Math.min(y0, y1), y1: Math.max(y0, y1),
    });
  }

  // Another tool takes what is drawn so far away.
  store.listen(['tool'], () => {
    if (corners === null) return;
    corners = null;
    chart.marker.repaint();
  });

  chart.marker.add((context, { plot, ink }) => {
    if (!corners) return;
    const view = chart.view();
    context.beginPath();
    for (const [x, y] of outline()) {
      context.lineTo(
        plot.left + ((x - view.x0) / (view.x1 - view.x0)) * plot.width,
        plot.top + ((view.y1 - y) / (view.y1 - view.y0)) * plot.height,
      );
    }
    context.closePath();
    context.fillStyle = `${ink.accent}22`;
    context.strokeStyle = ink.accent;
    context.lineWidth = 1.5;
    context.fill();
    context.stroke();
  });

  return (kind, { x, y }, event) => {
    if (kind === 'begin') corners = [];
    if (!corners) return;
    if (kind !== 'drop') corners.push(chart.placeOf(x, y));
    if (kind === 'end') {
      const genes = genesWithin();
      const { selection } = store.get();
      store.set({ selection: event.shiftKey ? union(selection, genes) : genes, focus: -1 });
    }
    if (kind === 'end' || kind === 'drop') corners = null;
    chart.marker.repaint();
  };
}
