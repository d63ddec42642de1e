/** The chart on the page, and drawing it again when something changes. */

import { init } from './engine.js';
import { plotOption, nameSeries } from './chart_option.js';
import { createViewport } from './viewport.js';
import { lookOf, MOST_SHAPES, seriesLook } from './detail.js';
import { buildLayers, highlighted } from './layers.js';
import { namesInView } from './names.js';
import { countInWindow } from './points.js';
import { createOverlays } from './overlays.js';
import { debounced } from './dom.js';
import { inkOf } from './theme.js';

const SETTLE_MILLISECONDS = 120;
const RESIZE_MILLISECONDS = 60;
const NARROW_PIXELS = 640;
const NARROW_MARGINS = [14, 14, 62, 58];

function tooltipOption(ink) {
  return {
    trigger: 'item',
    triggerOn: 'none',
    confine: true,
    transitionDuration: 0,
    backgroundColor: ink.surface,
    borderColor: ink.border,
    textStyle: { color: ink.text, fontSize: 13 },
    extraCssText: 'max-width: 22rem; white-space: normal;',
  };
}

function brushOption(ink) {
  return {
    toolbox: [],
    xAxisIndex: 0,
    yAxisIndex: 0,
    // What lies in the area is found by the page; the library need not recolour any series.
    seriesIndex: [],
    transformable: false,
    brushStyle: { color: `${ink.accent}22`, borderColor: ink.accent, borderWidth: 1.5 },
  };
}

/** The room that the axes leave, in pixels of the element. */
function createFrame(element, layout) {
  const isNarrow = () => element.clientWidth < NARROW_PIXELS;
  const margins = () => (isNarrow() ? NARROW_MARGINS : layout.margins);
  function plot() {
    const [top, right, bottom, left] = margins();
    return {
      left,
      top,
      width: Math.max(element.clientWidth - left - right, 40),
      height: Math.max(element.clientHeight - top - bottom, 40),
    };
  }
  return { isNarrow, margins, plot };
}

/** Draws the model as the viewport shows it. */
function createPainter(echart, model, store, frame, viewport) {
  const { dataset } = model;
  let layers = [];
  let look = lookOf(0);

  const points = () => model.pointsOf(store.get());
  const visibleCount = () => countInWindow(points(), viewport.view());
  const names = () => (dataset.showLabels ? namesInView(dataset, points(), viewport.view(), frame.plot()) : []);

  return {
    visibleCount,
    look: () => look,
    /** Draws everything anew; the view stays. */
    paint() {
      const state = store.get();
      const ink = inkOf(state.theme);
      layers = buildLayers(points(), model.categoriesOf(state), model.stylesOf(state), highlighted(state));
      look = lookOf(visibleCount());
      const plot = plotOption({
        pair: model.pairOf(state),
        range: viewport.whole(),
        layers,
        look,
        names: names(),
        ink,
        layout: dataset.layout,
        margins: frame.margins(),
        plot: frame.plot(),
      });
      // Anew and not merged: the library would merge one array of numbers into another item by item.
      echart.setOption(
        { ...plot, dataZoom: viewport.zoomOptions(), tooltip: tooltipOption(ink), brush: brushOption(ink) },
        { notMerge: true },
      );
    },
    /** Fits the look of the points to how many are in view, and the names to their places. */
    adjust() {
      const wanted = lookOf(visibleCount());
      const changed = wanted.size !== look.size;
      if (!changed && !dataset.showLabels) return;
      const ink = inkOf(store.get().theme);
      look = wanted;
      const series = changed
        ? layers.map((layer) => ({ id: `${layer.role}-${layer.category}`, ...seriesLook(layer, look, ink) }))
        : [];
      echart.setOption({ series: [...series, nameSeries(names(), ink)] });
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
  const echart = init(element, null, { renderer: 'canvas' });
  const frame = createFrame(element, model.dataset.layout);
  const extent = () => model.pairOf(store.get())?.extent ?? null;
  const viewport = createViewport(echart, element, frame.plot, extent);
  const painter = createPainter(echart, model, store, frame, viewport);
  const painted = [];
  const settled = [];
  /** Place of a gene in pixels from the element's corner. */
  function pixelOf(gene) {
    const { x, y } = model.pointsOf(store.get());
    return echart.convertToPixel({ gridIndex: 0 }, [x[gene], y[gene]]);
  }
  const overlays = createOverlays(element, () => ({
    pixelOf,
    plot: frame.plot(),
    ink: inkOf(store.get().theme),
  }));

  const settleSoon = debounced(() => {
    painter.adjust();
    for (const listener of settled) listener();
  }, SETTLE_MILLISECONDS);

  function render() {
    painter.paint();
    for (const listener of painted) listener();
    settleSoon();
  }

  viewport.onMove(() => {
    // Zooming out from shapes must not draw thousands of them even once more.
    if (painter.look().shapes && painter.visibleCount() > 2 * MOST_SHAPES) painter.adjust();
    settleSoon();
  });
  store.listen(['pair'], viewport.restart);
  store.listen(['pair', 'shown', 'colouring', 'matches', 'selection', 'theme'], render);
  render();
  new ResizeObserver(debounced(() => {
    if (element.clientWidth === 0) return;
    viewport.refit();
    echart.resize();
    render();
  }, RESIZE_MILLISECONDS)).observe(element);

  viewport.onMove(overlays.repaint);
  painted.push(overlays.repaint);

  return {
    echart,
    element,
    /**
     * Draws above the points, after each painting or move: `draw(context, {pixelOf, plot, ink})` is given a
     * 2D context in pixels of the element, cut to the plot, `pixelOf(gene)`, the plot's rectangle and the
     * theme's colours.
     */
    addOverlay: overlays.add,
    /** Asks for the drawings of `addOverlay` when what they show has changed. */
    repaintOverlays: overlays.repaint,
    ...frame,
    view: viewport.view,
    whole: viewport.whole,
    setView: viewport.setView,
    flyTo: viewport.flyTo,
    /** How the points in view are drawn now. */
    look: painter.look,
    visibleCount: painter.visibleCount,
    /** Calls back after each change of what is where. */
    onMove(listener) {
      viewport.onMove(listener);
      painted.push(listener);
    },
    /** Calls back after each drawing anew. */
    onPaint: (listener) => painted.push(listener),
    /** Calls back when the view has come to rest. */
    onSettle: (listener) => settled.push(listener),
    pixelOf,
    /** The inverse, for any place. */
    placeOf: (pixelX, pixelY) => echart.convertFromPixel({ gridIndex: 0 }, [pixelX, pixelY]),
  };
}
