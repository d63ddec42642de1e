/** Drawings of other parts of the page above the points: lines, names, whatever they draw. */

import { el } from './dom.js';

/**
 * Makes the layer on which they draw.
 *
 * @param {HTMLElement} element of the chart
 * @param {function(): object} scene what each drawing is told: `plot`, to which it is cut, and more
 * @param {string} name of the layer, as a class
 * @param {boolean} [isCut] whether drawings are cut to the plot
 * @returns `add(draw)`, `repaint()` (in the next frame, however often it is asked for) and `flush()` (now)
 */
export function createOverlays(element, scene, name, isCut = true) {
  const canvas = el('canvas', { class: `chart-layer ${name}`, 'aria-hidden': 'true' });
  const drawings = [];
  let frame = 0;

  /** Brings the canvas to the size of the element, in the pixels of the screen, and empties it. */
  function clear(context) {
    const ratio = window.devicePixelRatio || 1;
    const [width, height] = [element.clientWidth, element.clientHeight];
    const size = [Math.round(width * ratio), Math.round(height * ratio)];
    const fits = canvas.width === size[0] && canvas.height === size[1];
    if (!fits) [canvas.width, canvas.height] = size;
    else context.clearRect(0, 0, width, height);
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
  }

  function flush() {
    cancelAnimationFrame(frame);
    frame = 0;
    if (drawings.length === 0) return;
    if (!canvas.isConnected) element.append(canvas);
    const context = canvas.getContext('2d');
    clear(context);
    const told = scene();
    const { left, top, width, height } = told.plot;
    for (const draw of drawings) {
      context.save();
      if (isCut) {
        context.beginPath();
        context.rect(left, top, width, height);
        context.clip();
      }
      draw(context, told);
      context.restore();
    }
  }

  function repaint() {
    if (drawings.length > 0 && frame === 0) frame = requestAnimationFrame(flush);
  }

  return {
    add(draw) {
      drawings.push(draw);
      repaint();
    },
    repaint,
    flush,
  };
}
