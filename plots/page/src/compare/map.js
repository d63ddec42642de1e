/** The map of a run: its points, and above them what the reader looks for, points at and has chosen. */

import { el } from '../dom.js';
import { counted, drawableText, formatCount } from '../format.js';
import { inkOf } from '../theme.js';
import { nameOf } from '../dataset.js';
import { channelsOf, discOf, drawDisc, fillPixels } from './raster.js';
import { shareTogether, togetherText } from './together.js';

/** Height of a map in parts of its width. */
const LOWEST = 0.6;
const HIGHEST = 1.15;

/** More matches than this get no ring around each. */
const MOST_RINGS = 1500;

/** Pixels of a canvas per pixel of the style sheet: also on coarse screens enough for paper. */
const LEAST_DENSITY = 2;
const MOST_DENSITY = 3;

const FULL_TURN = 2 * Math.PI;

/** The radius of a point in pixels of the style sheet: less, the more points there are. */
export function pointRadius(count, width) {
  const share = width / Math.sqrt(Math.max(count, 1));
  return Math.min(Math.max(0.28 * share, 0.8), 4);
}

/** What there is to say of chosen genes in a map: those that it lacks, and how they lie together. */
function textOfSelection(run, selection) {
  const here = selection.filter((gene) => Number.isFinite(run.x[gene])).length;
  const lacking = here < selection.length
    ? `${formatCount(here)} of ${formatCount(selection.length)} chosen genes are in this map. `
    : '';
  return lacking + togetherText(shareTogether(run, selection));
}

/**
 * Makes the map.
 *
 * @param {HTMLElement} element an empty one
 * @param {object} comparison as of `readComparison`
 * @param {number} which of its runs
 * @param {object} store of the reader's choices
 * @param {function} colours as `coloursOf` gives them, of a state
 * @returns `frame`, the element for pointer and keyboard; `run`; `pixelOf(gene)`, from the frame's
 *   corner; `placeOf(x, y)`; `reachOf(pixels)` in units of the data; `showPath(corners, closes)`: what
 *   is being drawn; `flush()`: paints at once
 */
export function createMap(element, comparison, which, store, colours) {
  const run = comparison.runs[which];
  const { window: view } = comparison;
  const whole = counted(run.genes.length, 'gene');
  // The points are kept apart: what stands above them changes with every move of the pointer. Two
  // canvases, one above the other, would not do: on paper the upper one takes away what lies below.
  const points = el('canvas');
  const canvas = el('canvas', { 'aria-hidden': 'true' });
  const frame = el('div', {
    class: 'map-frame',
    tabindex: 0,
    role: 'application',
    'aria-roledescription': 'scatter plot',
    'aria-label': `Map of ${run.title}, ${whole}`,
    'aria-describedby': 'help',
  }, canvas);
  const together = el('p', { class: 'together counts' }, whole);
  element.append(frame, together);
  const tall = Math.min(Math.max((view.y1 - view.y0) / (view.x1 - view.x0), LOWEST), HIGHEST);
  frame.style.aspectRatio = `1 / ${tall}`;

  let [width, height, density] = [0, 0, 1];
  let path = null;
  let waiting = 0;
  let pointsAreDue = true;

  const scale = () => Math.min(width / (view.x1 - view.x0), height / (view.y1 - view.y0));
  const middle = { x: (view.x0 + view.x1) / 2, y: (view.y0 + view.y1) / 2 };
  const pixelOfPlace = (x, y) => [width / 2 + (x - middle.x) * scale(), height / 2 - (y - middle.y) * scale()];
  const pixelOf = (gene) => pixelOfPlace(run.x[gene], run.y[gene]);
  const placeOf = (x, y) => [middle.x + (x - width / 2) / scale(), middle.y - (y - height / 2) / scale()];
  const isPlaced = (gene) => gene >= 0 && Number.isFinite(run.x[gene]);

  function paintPoints(state, ink) {
    const context = points.getContext('2d');
    const image = context.createImageData(points.width, points.height);
    fillPixels(image.data, channelsOf(ink.surface));
    const { colours: own, order, isGrey } = colours(state);
    const chosen = new Uint8Array(comparison.count);
    for (const gene of state.selection) chosen[gene] = 1;
    const none = state.selection.length === 0;
    const radius = pointRadius(run.genes.length, width) * density;
    const disc = discOf(radius);
    const largeDisc = discOf(radius * 1.35);
    const pale = channelsOf(ink.border);
    const muted = channelsOf(ink.muted);
    const draw = (gene, colour, size) => {
      const [x, y] = pixelOf(gene);
      drawDisc(image, x * density, y * density, colour, size);
    };
    for (const gene of order) if (isPlaced(gene) && !chosen[gene]) draw(gene, none ? own[gene] : pale, disc);
    for (const gene of order) if (isPlaced(gene) && chosen[gene]) draw(gene, isGrey(gene) ? muted : own[gene], largeDisc);
    context.putImageData(image, 0, 0);
  }

  function ring(context, gene, radius, colour, line) {
    const [x, y] = pixelOf(gene);
    context.strokeStyle = colour;
    context.lineWidth = line;
    context.beginPath();
    context.arc(x, y, radius, 0, FULL_TURN);
    context.stroke();
  }

  /** The name of a gene beside its ring, or that it is not here. */
  function label(context, gene, ink) {
    const name = drawableText(nameOf(comparison, gene), 40);
    const text = isPlaced(gene) ? name : `${name} is not in this map`;
    context.font = `600 13px ${getComputedStyle(document.body).fontFamily}`;
    const wide = context.measureText(text).width + 10;
    const [x, y] = isPlaced(gene) ? pixelOf(gene) : [0, height];
    const left = Math.max(Math.min(x + 10, width - wide - 2), 2);
    const top = Math.max(Math.min(y - 30, height - 24), 2);
    context.fillStyle = ink.surface;
    context.strokeStyle = ink.border;
    context.lineWidth = 1;
    context.beginPath();
    context.roundRect(left, top, wide, 22, 4);
    context.fill();
    context.stroke();
    context.fillStyle = ink.text;
    context.fillText(text, left + 5, top + 15.5);
  }

  function paintPath(context, ink) {
    context.strokeStyle = ink.accent;
    context.lineWidth = 1.5;
    context.setLineDash([5, 4]);
    context.beginPath();
    for (const [x, y] of path) context.lineTo(...pixelOfPlace(x, y));
    context.closePath();
    context.stroke();
    context.setLineDash([]);
  }

  function paintAbove({ matches, hover, focus, selection }, ink) {
    const context = canvas.getContext('2d');
    context.setTransform(1, 0, 0, 1, 0, 0);
    context.drawImage(points, 0, 0);
    context.setTransform(density, 0, 0, density, 0, 0);
    const radius = pointRadius(run.genes.length, width);
    if (matches && matches.length <= MOST_RINGS) {
      const chosen = new Set(selection);
      for (const gene of matches) if (isPlaced(gene) && !chosen.has(gene)) ring(context, gene, radius + 3, ink.text, 1.5);
    }
    if (path) paintPath(context, ink);
    for (const gene of new Set([focus, hover].filter((one) => one >= 0))) {
      if (isPlaced(gene)) ring(context, gene, radius + 5, ink.accent, 2.5);
    }
    const named = hover >= 0 ? hover : focus;
    if (named >= 0) label(context, named, ink);
  }

  function flush() {
    cancelAnimationFrame(waiting);
    waiting = 0;
    if (width === 0) return;
    const state = store.get();
    const ink = inkOf(state.theme);
    if (pointsAreDue) paintPoints(state, ink);
    pointsAreDue = false;
    paintAbove(state, ink);
  }

  function paint(pointsToo) {
    pointsAreDue ||= pointsToo;
    waiting ||= requestAnimationFrame(flush);
  }

  new ResizeObserver(() => {
    width = frame.clientWidth;
    height = frame.clientHeight;
    density = Math.min(Math.max(window.devicePixelRatio || 1, LEAST_DENSITY), MOST_DENSITY);
    for (const one of [points, canvas]) {
      one.width = Math.max(Math.round(width * density), 1);
      one.height = Math.max(Math.round(height * density), 1);
    }
    paint(true);
  }).observe(frame);

  store.listen(['theme', 'colouring', 'selection'], () => paint(true));
  store.listen(['matches', 'hover', 'focus'], () => paint(false));
  store.listen(['selection'], ({ selection }) => {
    together.textContent = selection.length > 0 ? textOfSelection(run, selection) : whole;
  });

  return {
    frame,
    run,
    pixelOf,
    placeOf,
    reachOf: (pixels) => pixels / scale(),
    showPath(corners) {
      path = corners;
      paint(false);
    },
    flush,
  };
}
