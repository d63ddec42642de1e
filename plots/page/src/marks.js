/** Marks as pictures of a few pixels, which the points are printed with. */

const EDGE_WIDTH = 1.25;
const HALO_WIDTH = 2.5;

/** Marker shapes stand in squares of this size (see palette.js). */
export const SHAPE_BOX = 16;

const ROUND = 'M8 .5A7.5 7.5 0 1 1 8 15.5A7.5 7.5 0 1 1 8 .5Z';
const ROUND_WIDTH = 15;

const paths = new Map();

function pathOf(text) {
  if (!paths.has(text)) paths.set(text, new Path2D(text));
  return paths.get(text);
}

/** The path of a mark within a square of `SHAPE_BOX`, and how large that square is on the page. */
export function outlineOf({ shape, size }) {
  return { path: shape?.path ?? ROUND, box: size * Math.max(shape?.scale ?? 1, 1) * (SHAPE_BOX / ROUND_WIDTH) };
}

/** The lines around a mark from the outermost inwards: colour, and how far they reach beyond it. */
export function rimsOf({ edge, halo }) {
  const inner = edge ? EDGE_WIDTH : 0;
  return [
    ...(halo ? [{ colour: halo, reach: inner + HALO_WIDTH }] : []),
    ...(edge ? [{ colour: edge, reach: inner }] : []),
  ];
}

/** Draws a mark with its middle at (0, 0). */
export function drawMark(context, mark) {
  const { path, box } = outlineOf(mark);
  const scale = box / SHAPE_BOX;
  context.save();
  context.scale(scale, scale);
  context.translate(-SHAPE_BOX / 2, -SHAPE_BOX / 2);
  context.lineJoin = 'round';
  for (const { colour, reach } of rimsOf(mark)) {
    context.strokeStyle = colour;
    context.lineWidth = (2 * reach) / scale;
    context.stroke(pathOf(path));
  }
  context.fillStyle = mark.colour;
  context.fill(pathOf(path));
  context.restore();
}

let sheet = null;

/**
 * The pixels of a mark.
 *
 * @param {object} mark as of `markOf`
 * @param {number} ratio pixels of the screen in one of the page
 * @returns {{size: number, data: Uint8ClampedArray}} a square of `size` pixels, four bytes each, without
 *   the mark's opacity
 */
export function pixelsOf(mark, ratio) {
  const reach = rimsOf(mark).reduce((most, rim) => Math.max(most, rim.reach), 0);
  const size = Math.ceil((outlineOf(mark).box + 2 * reach) * ratio) + 1;
  sheet ??= document.createElement('canvas').getContext('2d', { willReadFrequently: true });
  if (sheet.canvas.width < size) [sheet.canvas.width, sheet.canvas.height] = [size, size];
  sheet.setTransform(1, 0, 0, 1, 0, 0);
  sheet.clearRect(0, 0, size, size);
  sheet.setTransform(ratio, 0, 0, ratio, size / 2, size / 2);
  drawMark(sheet, mark);
  return { size, data: sheet.getImageData(0, 0, size, size).data };
}
