/**
 * The scrolled frame of a heat map. Two canvases stay in its view: one has the cells and the names, the other the
 * marks on them, so that pointing draws no cell anew. Drawn is what is in view alone.
 */

import { el } from './dom.js';
import { drawHeat, drawMarks, roomForNames } from './heat_drawing.js';
import { layOut, placeAt, ROW_HEIGHT } from './heat_layout.js';

const MOST_HEIGHT = 430;
const MOST_NAME_SHARE = 0.3;
const MOST_NAME_WIDTH = 130;
const MOST_HEAD_HEIGHT = 90;
const BARE_LEFT = 4;

/** A canvas of `width` x `height` pixels of the style sheet, as sharp as the screen. */
function fitCanvas(canvas, { width, height }) {
  const ratio = window.devicePixelRatio || 1;
  canvas.width = Math.round(width * ratio);
  canvas.height = Math.round(height * ratio);
  canvas.style.width = `${width}px`;
  canvas.style.height = `${height}px`;
  canvas.getContext('2d').setTransform(ratio, 0, 0, ratio, 0, 0);
}

/**
 * Makes the frame.
 *
 * @param {object} attributes of its element
 * @returns `element`; `show(scene)`, which lays out and draws a scene as of `drawHeat` without `layout`, `scroll` and
 *   `size`; `mark(lines, cursor)`; `placeOf(event)`;
 *   `reveal(line, column)`, which scrolls; `layout()`
 */
export function createHeatFrame(attributes) {
  const cells = el('canvas', { class: 'heat-cells' });
  const marks = el('canvas', { class: 'heat-marks' });
  const sticky = el('div', { class: 'heat-sticky' }, cells, marks);
  const spacer = el('div', { class: 'heat-spacer' }, sticky);
  const frame = el('div', { class: 'heat-frame', tabindex: 0, ...attributes }, spacer);
  let scene = null;
  let marked = { key: '', lines: [], cursor: null };

  // Kept here: to ask the frame for it would make the browser lay out the page whenever a gene is pointed at.
  let scroll = { left: 0, top: 0 };
  const whole = () => ({ ...scene, scroll });

  function drawMarked() {
    drawMarks(marks.getContext('2d'), whole(), marked.lines, marked.cursor);
  }

  function draw() {
    scroll = { left: frame.scrollLeft, top: frame.scrollTop };
    drawHeat(cells.getContext('2d'), whole());
    drawMarked();
  }

  function show(next) {
    const context = cells.getContext('2d');
    const width = frame.clientWidth;
    const layout = layOut({
      genes: next.genes.length,
      columns: next.columns.length,
      width,
      height: MOST_HEIGHT,
      left: next.isNamed ? roomForNames(context, next.geneNames, Math.min(MOST_NAME_WIDTH, width * MOST_NAME_SHARE)) : BARE_LEFT,
      top: roomForNames(context, next.columns, MOST_HEAD_HEIGHT),
    }, next.isNamed);
    spacer.style.width = `${layout.width}px`;
    spacer.style.height = `${layout.height}px`;
    // A bar for scrolling sideways takes of the height.
    frame.style.height = `${Math.min(layout.height, layout.top + MOST_HEIGHT) + frame.offsetHeight - frame.clientHeight}px`;
    const size = { width: Math.min(frame.clientWidth, layout.width), height: Math.min(frame.clientHeight, layout.height) };
    scene = { ...next, layout, size };
    sticky.style.width = `${size.width}px`;
    sticky.style.height = `${size.height}px`;
    for (const canvas of [cells, marks]) fitCanvas(canvas, size);
    draw();
  }

  function placeOf(event) {
    const box = frame.getBoundingClientRect();
    const [x, y] = [event.clientX - box.left - frame.clientLeft, event.clientY - box.top - frame.clientTop];
    return placeAt(scene.layout, scroll, x, y);
  }

  function reveal(line, column) {
    const { layout, size } = scene;
    const y = line * layout.rowHeight;
    const x = column * layout.cellWidth;
    frame.scrollTop = Math.max(y + ROW_HEIGHT - (size.height - layout.top), Math.min(frame.scrollTop, y));
    if (column < 0) return;
    frame.scrollLeft = Math.max(x + layout.cellWidth - (size.width - layout.left), Math.min(frame.scrollLeft, x));
  }

  frame.addEventListener('scroll', () => scene && draw());
  return {
    element: frame,
    show,
    placeOf,
    reveal,
    layout: () => scene.layout,
    mark(lines, cursor) {
      const key = JSON.stringify([lines, cursor]);
      if (key === marked.key) return;
      marked = { key, lines, cursor };
      if (scene) drawMarked();
    },
  };
}
