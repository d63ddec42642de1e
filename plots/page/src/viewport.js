/** Which part of the plane the chart shows, and moving it. */

import { prefersStillness } from './theme.js';
import { between, fitWindow, shareOf, windowAt } from './windows.js';

const FLIGHT_MILLISECONDS = 600;

const easeInOut = (t) => (t < 0.5 ? 2 * t * t : 1 - (2 - 2 * t) ** 2 / 2);

/**
 * Makes the viewport of a chart.
 *
 * @param {HTMLElement} element of the chart; touching it ends a flight
 * @param {function(): {width: number, height: number}} plot pixels within the axes
 * @param {function(): object|null} extent of the points
 */
export function createViewport(element, plot, extent) {
  const moved = [];
  let whole = fitWindow(null, 1, 1);
  let view = whole;
  let flight = 0;

  const stop = () => cancelAnimationFrame(flight);
  element.addEventListener('pointerdown', stop);
  element.addEventListener('wheel', stop, { passive: true });

  function fit() {
    const { width, height } = plot();
    whole = fitWindow(extent(), width, height);
  }

  function show(target) {
    view = target;
    for (const listener of moved) listener();
  }

  fit();
  view = whole;

  return {
    view: () => view,
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
      const from = view;
      const begin = performance.now();
      const step = (now) => {
        const progress = Math.min(Math.max((now - begin) / FLIGHT_MILLISECONDS, 0), 1);
        show(progress < 1 ? between(whole, from, target, easeInOut(progress)) : target);
        if (progress < 1) flight = requestAnimationFrame(step);
      };
      flight = requestAnimationFrame(step);
    },
    /** Shows everything from the next drawing on, as for other points. */
    restart() {
      stop();
      fit();
      view = whole;
    },
    /** Keeps what is shown, as far as the shape of the plot allows, from the next drawing on. */
    refit() {
      const kept = view;
      const wasWhole = shareOf(whole, view) > 0.9999;
      const { width, height } = plot();
      fit();
      if (wasWhole) {
        view = whole;
        return;
      }
      const { x0, x1, y0, y1 } = kept;
      const share = shareOf(whole, fitWindow(kept, width, height, 0));
      view = windowAt(whole, (x0 + x1) / 2, (y0 + y1) / 2, share);
    },
  };
}
