/** What a pointer does in a map: it names genes, picks one, and draws boxes and lassos. */

import { genesInPolygon, nearestGene } from '../points.js';
import { union } from '../sets.js';

/** How far from a gene a pointer still means it, in pixels. */
const REACH = { mouse: 12, pen: 14, touch: 22 };

/** A pointer that went less far than this has clicked. */
const LEAST_WAY = 5;

/** The corners of the area between two corners. */
function boxOf([x0, y0], [x1, y1]) {
  return [[x0, y0], [x1, y0], [x1, y1], [x0, y1]];
}

/** Lets a map answer to pointers. */
export function followPointer(map, store) {
  const { frame, run } = map;
  let drawn = null;
  let way = 0;
  let last = [0, 0];

  const pixel = (event) => {
    const box = frame.getBoundingClientRect();
    return [event.clientX - box.left, event.clientY - box.top];
  };
  const geneAt = (event) =>
    nearestGene(run, ...map.placeOf(...pixel(event)), map.reachOf(REACH[event.pointerType] ?? REACH.mouse));
  const cornersOf = () => (store.get().tool === 'box' ? boxOf(drawn[0], drawn[drawn.length - 1]) : drawn);

  function begin(event) {
    if (!event.isPrimary || event.button !== 0) return;
    drawn = [map.placeOf(...pixel(event))];
    last = pixel(event);
    way = 0;
    if (store.get().tool !== 'look') frame.setPointerCapture(event.pointerId);
  }

  function move(event) {
    if (drawn === null) {
      store.set({ hover: event.pointerType === 'touch' ? -1 : geneAt(event) });
      return;
    }
    const [x, y] = pixel(event);
    way += Math.hypot(x - last[0], y - last[1]);
    last = [x, y];
    if (store.get().tool === 'look') return;
    drawn.push(map.placeOf(x, y));
    if (way >= LEAST_WAY) {
      store.set({ hover: -1 });
      map.showPath(cornersOf());
    }
  }

  function end(event) {
    if (drawn === null) return;
    if (way < LEAST_WAY) {
      store.set({ focus: geneAt(event) });
    } else if (store.get().tool !== 'look') {
      const found = genesInPolygon(run, cornersOf());
      store.set({ selection: event.shiftKey ? union(store.get().selection, found) : found });
    }
    drop();
  }

  function drop() {
    drawn = null;
    map.showPath(null);
  }

  frame.addEventListener('pointerdown', begin);
  frame.addEventListener('pointermove', move);
  frame.addEventListener('pointerup', end);
  frame.addEventListener('pointercancel', drop);
  // The keys go to what has the focus, which is seldom the map.
  window.addEventListener('keydown', (event) => {
    if (event.key === 'Escape' && drawn !== null) drop();
  });
  frame.addEventListener('pointerleave', () => store.set({ hover: -1 }));
}
