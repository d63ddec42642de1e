/** The chart on the page, and drawing it again when something changes. */

import { canvasPen } from './pen.js';
import { countInWindow, nearestGene } from './points.js';
import { createDrawing } from './drawing.js';
import { createFrame } from './frame.js';
import { createLister, drawFront, drawGround, hasGround, marksOf, neededDensity, wantedLook } from './scene.js';
import { createOverlays } from './overlays.js';
import { createViewport } from './viewport.js';
import { debounced } from './dom.js';
import { inkOf } from './theme.js';
import { namesInView } from './names.js';

const SETTLE_MILLISECONDS = 120;
const RESIZE_MILLISECONDS = 60;

/** Choices that change which points are drawn or how; the view stays. */
const PAINTED = ['pair', 'shown', 'colouring', 'matches', 'selection', 'faded', 'theme', 'coordinates', 'shading', 'contours', 'pointSize', 'pointOpacity'];

/** Draws the model as the viewport shows it. */
function createPainter(element, model, store, frame, viewport) {
  const { dataset } = model;
  const drawing = createDrawing(element);
  const listOf = createLister(model);
  let list = null;
  let ranks = null;
  let marks = [];
  let marked = null;
  let look = null;
  let ink = null;

  const points = () => model.pointsOf(store.get());
  const visibleCount = () => countInWindow(points(), viewport.view());
  const front = createOverlays(element, () => ({ plot: frame.plot() }), 'axes', false);

  function fitLook() {
    const wanted = wantedLook(visibleCount(), frame.plot(), store.get());
    const isSame = look && ['shapes', 'size', 'opacity'].every((name) => look[name] === wanted[name]);
    if (isSame && marked === list) return;
    look = wanted;
    marks = marksOf(list, model.stylesOf(store.get()), look, ink);
    marked = list;
  }

  function scene() {
    const state = store.get();
    const plot = frame.plot();
    const view = viewport.view();
    return {
      state,
      plot,
      view,
      ink,
      margins: frame.margins(),
      layout: dataset.layout,
      pair: model.pairOf(state),
      density: neededDensity(state, list, view, plot),
      names: dataset.showLabels ? namesInView(dataset, points(), view, plot) : [],
    };
  }

  let present = null;
  front.add((context) => drawFront(canvasPen(context), present));

  return {
    visibleCount,
    look: () => ({ ...(look ?? wantedLook(0, frame.plot(), store.get())), means: drawing.means() }),
    list: () => list,
    /** Works out anew which points are drawn, and how. */
    renew() {
      const state = store.get();
      ink = inkOf(state.theme);
      list = listOf(state);
      ranks = null;
    },
    /** Draws. */
    draw() {
      fitLook();
      present = scene();
      const { plot, view, state, layout } = present;
      const beneath = { ...present, plot: { ...plot, left: 0, top: 0 } };
      drawing.draw({
        list,
        marks,
        view,
        plot,
        ground: {
          colour: ink.surface,
          draw: hasGround(state, layout) ? (context) => drawGround(canvasPen(context), beneath) : null,
        },
      });
      front.flush();
    },
    /** Whether a gene is drawn above another one. */
    isAbove(gene, other) {
      if (!ranks) {
        ranks = new Int32Array(dataset.count);
        list.order.forEach((each, rank) => {
          ranks[each] = rank;
        });
      }
      return ranks[gene] > ranks[other];
    },
  };
}

/**
 * Makes the chart.
 *
 * @param {HTMLElement} element
 * @param {object} model as of `createModel`
 * @param {object} store as of `createStore`
 */
export function createChart(element, model, store) {
  const { layout } = model.dataset;
  const extent = () => model.pairOf(store.get())?.extent ?? null;
  const frame = createFrame(element, layout, () => ({
    whole: extent() ?? { y0: -1, y1: 1 },
    numbers: store.get().coordinates,
  }));
  const viewport = createViewport(element, frame.plot, extent);
  const painter = createPainter(element, model, store, frame, viewport);
  const painted = [];
  const settled = [];
  let due = 0;
  let isStale = true;

  /** Makes the function from genes to their places in pixels of the element, as the view is now. */
  function placesNow() {
    const { x, y } = model.pointsOf(store.get());
    const { left, top, width, height } = frame.plot();
    const { x0, x1, y0, y1 } = viewport.view();
    return (gene) => [
      left + ((x[gene] - x0) / (x1 - x0)) * width,
      top + ((y1 - y[gene]) / (y1 - y0)) * height,
    ];
  }

  /** Place of a gene in pixels from the element's corner. */
  const pixelOf = (gene) => placesNow()(gene);

  /** The inverse, for any place. */
  function placeOf(pixelX, pixelY) {
    const { left, top, width, height } = frame.plot();
    const view = viewport.view();
    return [
      view.x0 + ((pixelX - left) / width) * (view.x1 - view.x0),
      view.y1 - ((pixelY - top) / height) * (view.y1 - view.y0),
    ];
  }

  const scene = () => ({ pixelOf: placesNow(), plot: frame.plot(), ink: inkOf(store.get().theme) });
  const overlays = createOverlays(element, scene, 'drawings');
  const marker = createOverlays(element, scene, 'marker');
  const drawings = [];

  const settleSoon = debounced(() => {
    for (const listener of settled) listener();
  }, SETTLE_MILLISECONDS);

  /** Draws what is due, at once. */
  function flush() {
    cancelAnimationFrame(due);
    due = 0;
    if (isStale) painter.renew();
    isStale = false;
    painter.draw();
    overlays.flush();
    marker.flush();
  }

  function drawSoon() {
    if (due === 0) due = requestAnimationFrame(flush);
  }

  function paint() {
    isStale = true;
    drawSoon();
    for (const listener of painted) listener();
    settleSoon();
  }

  /** Fits the chart to its element. */
  function resize() {
    if (element.clientWidth === 0) return;
    viewport.refit();
    paint();
    flush();
  }

  viewport.onMove(() => {
    drawSoon();
    settleSoon();
  });
  store.listen(['pair'], viewport.restart);
  store.listen(['coordinates'], viewport.refit);
  store.listen(PAINTED, paint);
  flush();
  new ResizeObserver(debounced(resize, RESIZE_MILLISECONDS)).observe(element);

  return {
    element,
    ...frame,
    view: viewport.view,
    whole: viewport.whole,
    setView: viewport.setView,
    flyTo: viewport.flyTo,
    /** How the points in view are drawn now, and by what `means`. */
    look: painter.look,
    /** The points that are drawn, as of `listPoints`. */
    list: painter.list,
    visibleCount: painter.visibleCount,
    flush,
    resize,
    pixelOf,
    placeOf,
    /** The drawn gene at a place in pixels, or -1; of several on one spot the topmost. */
    geneAt(pixelX, pixelY, reach) {
      const { left, top, width, height } = frame.plot();
      if (pixelX < left || pixelY < top || pixelX > left + width || pixelY > top + height) return -1;
      const view = viewport.view();
      const [x, y] = placeOf(pixelX, pixelY);
      return nearestGene(model.pointsOf(store.get()), x, y, (reach * (view.x1 - view.x0)) / width, painter.isAbove);
    },
    /**
     * Draws above the points, after each painting or move: `draw(context, {pixelOf, plot, ink})` is given a
     * 2D context in pixels of the element, cut to the plot, `pixelOf(gene)`, the plot's rectangle and the
     * theme's colours.
     */
    addOverlay: overlays.add,
    /**
     * The same by a pen, for what belongs into pictures, too: `draw(pen, {pixelOf, plot, ink, isNarrow})`.
     */
    addDrawing(draw) {
      drawings.push(draw);
      overlays.add((context, told) => draw(canvasPen(context), { ...told, isNarrow: frame.isNarrow() }));
    },
    /** What `addDrawing` was given. */
    drawings: () => drawings,
    /** Asks for these drawings when what they show has changed. */
    repaintOverlays: overlays.repaint,
    /** The same above all others, for what follows the pointer. */
    marker: { add: marker.add, repaint: marker.repaint },
    /** Calls back after each change of what is where. */
    onMove(listener) {
      viewport.onMove(listener);
      painted.push(listener);
    },
    /** Calls back after each drawing anew. */
    onPaint: (listener) => painted.push(listener),
    /** Calls back when the view has come to rest. */
    onSettle: (listener) => settled.push(listener),
  };
}
