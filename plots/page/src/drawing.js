/**
 * The points on the page: printed into an array of pixels, and by the graphics card where that is too slow
 * and the browser has one. The card is asked for no sooner, because asking takes time and memory, and
 * because software in the place of a card is slower than the array.
 */

import { el } from './dom.js';
import { createPixelPrinter } from './pixel_points.js';
import { createWebglPrinter } from './webgl_points.js';

/**
 * A picture that takes longer leaves no time for anything else in a frame of 60 a second. The fastest
 * quarter of the latest ones counts: others may have waited for another program.
 */
const SLOW_MILLISECONDS = 12;
const PICTURES_TIMED = 16;

/** More pixels of the screen in one of the page cost time and show nothing more. */
const MOST_RATIO = 2;
const CROWD = 200000;

/** Fits a canvas to a rectangle of the page; `ratio` of its pixels are one of the page. */
function fitCanvas(canvas, { left, top, width, height }, ratio) {
  const size = [Math.max(Math.round(width * ratio), 1), Math.max(Math.round(height * ratio), 1)];
  if (canvas.width !== size[0] || canvas.height !== size[1]) [canvas.width, canvas.height] = size;
  for (const [name, value] of Object.entries({ left, top, width, height })) {
    canvas.style.setProperty(name, `${value}px`);
  }
}

/** Makes the layers of points in the chart's element. */
export function createDrawing(element) {
  const layer = (name) => el('canvas', { class: `chart-layer ${name}`, 'aria-hidden': 'true' });
  const points = layer('points');
  const ground = layer('ground');
  // Both stay in the memory of the processor, which writes all of their pixels.
  const pointsContext = points.getContext('2d', { willReadFrequently: true });
  const groundContext = ground.getContext('2d', { willReadFrequently: true });
  const print = createPixelPrinter();
  const times = [];
  let card = null;
  let hasAsked = false;
  element.append(points);

  function layGround(plot, ratio, { colour, draw }) {
    fitCanvas(ground, plot, ratio);
    groundContext.setTransform(ratio, 0, 0, ratio, 0, 0);
    groundContext.fillStyle = colour;
    groundContext.fillRect(0, 0, plot.width + 1, plot.height + 1);
    draw?.(groundContext);
  }

  function drawByArray({ list, marks, view, plot, ground: base }) {
    const ratio = list.count > CROWD ? 1 : Math.min(window.devicePixelRatio || 1, MOST_RATIO);
    fitCanvas(points, plot, ratio);
    const begin = performance.now();
    if (base.draw) layGround(plot, ratio, base);
    const lies = base.draw ? groundContext.getImageData(0, 0, ground.width, ground.height) : base.colour;
    print(pointsContext, list, marks, view, ratio, lies);
    times.push(performance.now() - begin);
    if (times.length > PICTURES_TIMED) times.shift();
  }

  function drawByCard({ list, marks, view, plot, ground: base }) {
    const ratio = Math.min(window.devicePixelRatio || 1, MOST_RATIO);
    fitCanvas(card.canvas, plot, ratio);
    layGround(plot, ratio, base);
    card.print(list, marks, view, ratio);
  }

  function askForCard() {
    if (hasAsked || times.length < PICTURES_TIMED) return;
    if ([...times].sort((a, b) => a - b)[PICTURES_TIMED / 4] < SLOW_MILLISECONDS) return;
    hasAsked = true;
    card = createWebglPrinter();
    if (card) points.replaceWith(ground, card.canvas);
  }

  return {
    /** What draws now: 'pixels' or 'webgl'. */
    means: () => (card ? 'webgl' : 'pixels'),
    /**
     * Draws the points.
     *
     * @param {object} scene `list` as of `listPoints`, `marks` by kind, `view`, the `plot`'s rectangle and the
     *   `ground`: its colour and, where there is more, what draws it in pixels of the plot
     */
    draw(scene) {
      askForCard();
      if (card?.isLost()) {
        ground.remove();
        card.canvas.replaceWith(points);
        card = null;
      }
      if (card) drawByCard(scene);
      else drawByArray(scene);
    },
  };
}
