/** Drawing a heat map on a canvas: only what is in view, whatever the number of genes. */

import { drawableText } from './format.js';
import { heatColours } from './heat_colours.js';
import { linesInView } from './heat_layout.js';
import { lineValues } from './heat_lines.js';

const FONT = '11px system-ui, -apple-system, "Segoe UI", Roboto, sans-serif';
const LONGEST_NAME = 60;
const GAP = 5;
/** Cells at least as high are crossed out where a value is missing. */
const CROSSED_HEIGHT = 8;

/** The text, cut to a width with an ellipsis. */
function fitted(context, text, width) {
  const clean = drawableText(text, LONGEST_NAME);
  if (context.measureText(clean).width <= width) return clean;
  let length = clean.length - 1;
  while (length > 1 && context.measureText(`${clean.slice(0, length)}\u2026`).width > width) length -= 1;
  return `${clean.slice(0, length)}\u2026`;
}

/** The width that the longest of some texts takes, at most `most`; of many texts the longest in characters. */
export function roomForNames(context, texts, most) {
  context.font = FONT;
  const longest = Array.from(texts).sort((one, other) => other.length - one.length).slice(0, 20);
  const widths = longest.map((text) => context.measureText(drawableText(text, LONGEST_NAME)).width);
  return Math.min(most, Math.ceil(Math.max(0, ...widths)) + GAP + 3);
}

function drawNames(context, { layout, scroll, size, geneNames, ink }, { from, to }) {
  context.save();
  context.beginPath();
  context.rect(0, layout.top, layout.left, size.height - layout.top);
  context.clip();
  context.fillStyle = ink.text;
  context.textAlign = 'right';
  context.textBaseline = 'middle';
  for (let line = from; line < to; line += 1) {
    const y = layout.top + (line + 0.5) * layout.rowHeight - scroll.top;
    context.fillText(fitted(context, geneNames[line], layout.left - GAP), layout.left - GAP, y);
  }
  context.restore();
}

function drawColumns(context, { layout, scroll, size, columns, ink }) {
  context.save();
  context.beginPath();
  context.rect(layout.left, 0, size.width - layout.left, layout.top);
  context.clip();
  context.fillStyle = ink.muted;
  context.textAlign = 'left';
  context.textBaseline = 'middle';
  columns.forEach((name, column) => {
    const x = layout.left + (column + 0.5) * layout.cellWidth - scroll.left;
    if (x < 0 || x > size.width + layout.cellWidth) return;
    context.save();
    context.translate(x, layout.top - GAP);
    context.rotate(-Math.PI / 2);
    context.fillText(fitted(context, name, layout.top - GAP), 0, 0);
    context.restore();
  });
  context.restore();
}

function crossMissing(context, { layout, columns, ink }, values, originX, originY) {
  context.strokeStyle = ink.surface;
  context.lineWidth = 1;
  context.beginPath();
  values.forEach((value, index) => {
    if (!Number.isNaN(value)) return;
    const x = originX + (index % columns.length) * layout.cellWidth;
    const y = originY + Math.floor(index / columns.length) * layout.rowHeight;
    context.moveTo(x, y + layout.rowHeight);
    context.lineTo(x + layout.cellWidth, y);
  });
  context.stroke();
}

function drawCells(context, scene, { from, to }) {
  const { layout, scroll, size, expression, genes, columns, centred, reach, ink } = scene;
  if (to <= from || columns.length === 0) return;
  const values = lineValues(expression, genes, { perLine: layout.perLine, centred }, from, to);
  const image = new ImageData(columns.length, to - from);
  heatColours(ink.theme).fill(image.data, values, reach);
  const small = document.createElement('canvas');
  [small.width, small.height] = [image.width, image.height];
  small.getContext('2d').putImageData(image, 0, 0);
  const originX = layout.left - scroll.left;
  const originY = layout.top + from * layout.rowHeight - scroll.top;
  context.save();
  context.beginPath();
  context.rect(layout.left, layout.top, size.width - layout.left, size.height - layout.top);
  context.clip();
  context.imageSmoothingEnabled = false;
  context.drawImage(small, originX, originY, image.width * layout.cellWidth, image.height * layout.rowHeight);
  if (layout.rowHeight >= CROSSED_HEIGHT) crossMissing(context, scene, values, originX, originY);
  context.restore();
}

/**
 * Draws what is in view.
 *
 * @param {CanvasRenderingContext2D} context scaled so that a unit is a pixel of the style sheet
 * @param {object} scene `layout` as of `layOut`, `scroll` ({left, top}), `size` of the canvas ({width, height}),
 *   `expression`, `genes` in their order and their `geneNames`, `columns` (names), `isNamed`, `centred`, `reach`, `ink`
 */
export function drawHeat(context, scene) {
  const { layout, scroll, size } = scene;
  const shown = linesInView(layout, scroll.top, size.height);
  context.clearRect(0, 0, size.width, size.height);
  context.font = FONT;
  drawCells(context, scene, shown);
  drawColumns(context, scene);
  if (scene.isNamed) drawNames(context, scene, shown);
}

/** Draws frames around lines, and around one cell of the `cursor` ({line, column}), if there is one. */
export function drawMarks(context, { layout, scroll, size, columns, ink }, lines, cursor) {
  context.clearRect(0, 0, size.width, size.height);
  context.save();
  context.beginPath();
  context.rect(0, layout.top - 2, size.width, size.height - layout.top + 2);
  context.clip();
  const y = (line) => layout.top + line * layout.rowHeight - scroll.top;
  const frame = (left, line, width, colour) => {
    context.strokeStyle = colour;
    context.strokeRect(left, y(line) - 1, width, Math.max(layout.rowHeight, 1) + 2);
  };
  context.lineWidth = 2;
  for (const line of lines) frame(layout.left - scroll.left, line, columns.length * layout.cellWidth, ink.text);
  if (cursor && cursor.column >= 0) {
    frame(layout.left + cursor.column * layout.cellWidth - scroll.left, cursor.line, layout.cellWidth, ink.accent);
  }
  context.restore();
}
