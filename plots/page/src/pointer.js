/** Pointing at genes with mouse, pen or finger, and choosing them by a box or a lasso. */

import { createArea } from './brush.js';
import { followGestures } from './gestures.js';

const MOUSE_REACH = 9;
const FINGER_REACH = 24;

/** Sets the gene under the pointer, the focus on click, and the selection by areas. */
export function followPointer(chart, model, store) {
  const area = createArea(chart, model, store);
  const { element } = chart;

  const update = ({ tool, hover }) => {
    element.dataset.tool = tool;
    element.classList.toggle('at-gene', hover >= 0);
  };
  store.listen(['tool', 'hover'], update);
  update(store.get());

  followGestures(chart, store, {
    hover(_, place) {
      store.set({ hover: place ? chart.geneAt(place.x, place.y, MOUSE_REACH) : -1 });
    },
    click(event, { x, y }) {
      const reach = event.pointerType === 'touch' ? FINGER_REACH : MOUSE_REACH;
      store.set({ focus: chart.geneAt(x, y, reach), hover: -1 });
    },
    area,
  });
}
