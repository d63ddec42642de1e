/** Which part of the plane the chart shows, and moving it. */

import { prefersStillness } from './theme.js';
import { between, fitWindow, fromPercent, SMALLEST_SHARE, toPercent } from './windows.js';

const FLIGHT_MILLISECONDS = 600;
const WHOLE_PERCENT = { x: [0, 100], y: [0, 100] };
const SIDE_OF_ZOOM = { 'zoom-x': 'x', 'zoom-y': 'y' };

const easeInOut = (t) => (t < 0.5 ? 2 * t * t : 1 - (2 - 2 * t) ** 2 / 2);

/** A range moved, and if need be cut, to lie within 0 to 100. */
function clamped([start, end]) {
  const span = Math.min(end - start, 100);
  const low = Math.min(Math.max(start, 0), 100 - span);
  return [low, low + span];
}

/**
 * Makes the viewport of a chart.
 *
 * @param {object} echart the library's chart
 * @param {HTMLElement} element in which it is; touching it ends a flight
 * @param {function(): {width: number, height: number}} plot pixels within the axes
 * @param {function(): object|null} extent of the points
 */
export function createViewport(echart, element, plot, extent) {
  const moved = [];
  let percent = WHOLE_PERCENT;
  let whole = fitWindow(null, 1, 1);
  let flight = 0;

  const view = () => fromPercent(whole, percent);
  const stop = () => cancelAnimationFrame(flight);
  element.addEventListener('pointerdown', stop);
  element.addEventListener('wheel', stop, { passive: true });

  function fit() {
    const { width, height } = plot();
    whole = fitWindow(extent(), width, height);
  }

  function show(target) {
    const wanted = toPercent(whole, target);
    echart.dispatchAction({
      type: 'dataZoom',
      batch: Object.entries(SIDE_OF_ZOOM).map(([dataZoomId, side]) => {
        const [start, end] = clamped(wanted[side]);
        return { dataZoomId, start, end };
      }),
    });
  }

  echart.on('datazoom', (event) => {
    for (const { dataZoomId, start, end } of event.batch ?? [event]) {
      percent = { ...percent, [SIDE_OF_ZOOM[dataZoomId]]: [start, end] };
    }
    for (const listener of moved) listener();
  });
  fit();

  return {
    view,
    /** The window that holds all points. */
    whole: () => whole,
    /** Calls back after each change of the view. */
    onMove: (listener) => moved.push(listener),
    setView(target) {
      stop();
      show(target);
    },
    /** Moves the view to a window, in steps unless the reader prefers stillness. */
    flyTo(target) {
      stop();
      if (prefersStillness()) {
        show(target);
        return;
      }
      const from = view();
      const begin = performance.now();
      const step = (now) => {
        const progress = Math.min(Math.max((now - begin) / FLIGHT_MILLISECONDS, 0), 1);
        show(between(whole, from, target, easeInOut(progress)));
        if (progress < 1) flight = requestAnimationFrame(step);
      };
      flight = requestAnimationFrame(step);
    },
    /** Shows everything from the next drawing on, as for other points. */
    restart() {
      stop();
      percent = WHOLE_PERCENT;
      fit();
    },
    /** Keeps what is shown, as far as the shape of the plot allows, from the next drawing on. */
    refit() {
      const kept = view();
      const wasWhole = percent.x[1] - percent.x[0] > 99.99;
      const { width, height } = plot();
      fit();
      if (wasWhole) return;
      const wanted = toPercent(whole, fitWindow(kept, width, height, 0));
      percent = { x: clamped(wanted.x), y: clamped(wanted.y) };
    },
    /** The library's options for zooming, at the present view. */
    zoomOptions: () => Object.entries(SIDE_OF_ZOOM).map(([id, side]) => ({
      id,
      type: 'inside',
      [`${side}AxisIndex`]: 0,
      start: percent[side][0],
      end: percent[side][1],
      filterMode: 'filter',
      throttle: 0,
      minSpan: SMALLEST_SHARE * 100,
    })),
  };
}
