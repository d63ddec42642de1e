/** Pointing at genes with mouse, pen or finger. */

import { nearestGene } from './points.js';

const MOUSE_REACH = 9;
const FINGER_REACH = 24;

/** Sets the gene under the pointer, and the focus on click; nothing is pointed at while dragging. */
export function followPointer(chart, model, store) {
  const canvas = chart.echart.getZr();
  let pressed = false;

  function geneAt(event, reach) {
    const { left, top, width, height } = chart.plot();
    const [x, y] = [event.offsetX, event.offsetY];
    if (x < left || y < top || x > left + width || y > top + height) return -1;
    const [atX, atY] = chart.placeOf(x, y);
    const view = chart.view();
    return nearestGene(model.pointsOf(store.get()), atX, atY, (reach * (view.x1 - view.x0)) / width);
  }

  canvas.on('mousedown', () => {
    pressed = true;
    store.set({ hover: -1 });
  });
  canvas.on('mouseup', () => {
    pressed = false;
  });
  canvas.on('globalout', () => {
    store.set({ hover: -1 });
  });
  window.addEventListener('pointerup', () => {
    pressed = false;
  });
  canvas.on('mousemove', (event) => {
    if (pressed || store.get().tool !== 'move') return;
    store.set({ hover: geneAt(event, MOUSE_REACH) });
  });
  canvas.on('click', (event) => {
    if (store.get().tool !== 'move') return;
    const reach = event.event?.zrByTouch ? FINGER_REACH : MOUSE_REACH;
    const gene = geneAt(event, reach);
    store.set({ focus: gene, hover: -1 });
  });
}
