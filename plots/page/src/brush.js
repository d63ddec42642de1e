/** Choosing genes by a box or a lasso drawn in the chart. */

import { genesInPolygon, genesInWindow } from './points.js';
import { union } from './sets.js';

const BRUSH_OF_TOOL = { move: false, box: 'rect', lasso: 'polygon' };

/** Makes dragging draw an area whenever the tool says so; with Shift its genes join the choice. */
export function followBrush(chart, model, store) {
  const { echart } = chart;
  let adding = false;
  window.addEventListener('pointerup', (event) => {
    adding = event.shiftKey;
  }, { capture: true });

  function genesInArea({ brushType, coordRange }) {
    const points = model.pointsOf(store.get());
    if (brushType === 'polygon') return genesInPolygon(points, coordRange);
    const [[x0, x1], [y0, y1]] = coordRange;
    return genesInWindow(points, { x0, x1, y0, y1 });
  }

  function takeUp() {
    echart.dispatchAction({
      type: 'takeGlobalCursor',
      key: 'brush',
      brushOption: { brushType: BRUSH_OF_TOOL[store.get().tool], brushMode: 'single' },
    });
  }

  echart.on('brushEnd', ({ areas }) => {
    const area = areas.find((each) => each.coordRange);
    if (!area) return;
    const genes = genesInArea(area);
    // The library is still busy with the area that it is about to lose.
    setTimeout(() => {
      echart.dispatchAction({ type: 'brush', areas: [] });
      const { selection } = store.get();
      store.set({ selection: adding ? union(selection, genes) : genes, focus: -1 });
    });
  });
  store.listen(['tool'], takeUp);
  // Drawing anew makes the library forget the tool.
  chart.onPaint(takeUp);
}
