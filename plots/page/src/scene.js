/** What is drawn, as it follows from data, choices and view; the same on the page and in pictures. */

import { drawAxes, drawGrid } from './axes.js';
import { contourOf, densityOf, levelsOf, shadingOf } from './density.js';
import { lookOf, markOf } from './detail.js';
import { categoryOf, drawingOrder, listPoints, roleOf } from './layers.js';
import { placedNames } from './names.js';

const CONTOUR_OPACITY = 0.55;

/** Lists the points of a state; the order of drawing is worked out once for each pair and colouring. */
export function createLister(model) {
  let known = { pair: null, categories: null, order: new Int32Array(0) };
  return (state) => {
    const pair = model.pairOf(state);
    const categories = model.categoriesOf(state);
    if (known.pair !== pair || known.categories !== categories) {
      known = { pair, categories, order: pair ? drawingOrder(pair, categories) : new Int32Array(0) };
    }
    return { ...listPoints(model.pointsOf(state), known.order, categories, state), order: known.order };
  };
}

/** The marks of the kinds of points in a list. */
export function marksOf(list, styles, look, ink) {
  const marks = [];
  for (const kind of [...list.present.back, ...list.present.lit]) {
    marks[kind] = markOf(styles[categoryOf(kind)], roleOf(kind), look, ink, list.count - list.lit);
  }
  return marks;
}

/** The plot, in square pixels, for which looks are made; points on a smaller one crowd as more would. */
const USUAL_PLOT = 400000;

/** The look of so many points on a plot, in the size and strength that the reader wants. */
export function wantedLook(count, { width, height }, { pointSize, pointOpacity }) {
  const crowd = count * Math.max(USUAL_PLOT / (width * height), 1);
  return lookOf(crowd, { size: pointSize, opacity: pointOpacity });
}

/**
 * Draws what lies beneath the points.
 *
 * @param {import('./pen.js').Pen} pen
 * @param {object} scene as for `drawFront`
 */
export function drawGround(pen, { density, state, plot, view, ink, layout }) {
  if (state.coordinates && layout.grid) drawGrid(pen, { view, plot, ink, layout });
  if (state.shading) pen.image(shadingOf(density, ink.text), plot.left, plot.top, plot.width, plot.height);
}

/** Whether anything lies beneath the points. */
export const hasGround = (state, layout) => state.shading || (state.coordinates && layout.grid);

/** The density where shading or contours need it, otherwise null. */
export const neededDensity = (state, list, view, plot) =>
  (state.shading || state.contours ? densityOf(list, view, plot) : null);

/**
 * Draws what lies above the points.
 *
 * @param {import('./pen.js').Pen} pen
 * @param {object} scene `view`, `plot`, `margins`, `density`, `ink`, `layout`, `pair`, `state`, and `names` as
 *   of `namesInView`
 */
export function drawFront(pen, scene) {
  const { density, state, plot, ink, names } = scene;
  if (state.contours) {
    pen.within(plot, () => {
      for (const level of levelsOf(density)) {
        const lines = contourOf(density, level).map(([x0, y0, x1, y1]) =>
          [x0 + plot.left, y0 + plot.top, x1 + plot.left, y1 + plot.top]);
        pen.lines(lines, { stroke: ink.text, opacity: CONTOUR_OPACITY });
      }
    });
  }
  drawAxes(pen, { ...scene, numbers: state.coordinates });
  for (const { text, x, y, size } of placedNames(names, scene)) {
    pen.text(text, x, y, { size, fill: ink.text, halo: ink.surface });
  }
}
