/** How densely genes lie on the map: shading, contours and a scale in words. */

/** Pixels of the page along a cell. */
const CELL = 4;

/** The square, in pixels, in which genes are counted. */
export const SQUARE = 20;

/** Three passes of a box of 2 x 2 + 1 cells are close to a normal kernel of about 10 pixels. */
const REACH = 2;
const PASSES = 3;

const SHADES = 5;

/** The densest place is so strong, of 255. */
const DARKEST = 120;

/** Averages along lines of a grid; beyond its ends there is nothing. */
function smoothLines(values, lines, length, step, stride) {
  const line = new Float32Array(length);
  for (let each = 0; each < lines; each += 1) {
    const begin = each * stride;
    let sum = 0;
    for (let i = 0; i < Math.min(REACH, length); i += 1) sum += values[begin + i * step];
    for (let i = 0; i < length; i += 1) {
      if (i + REACH < length) sum += values[begin + (i + REACH) * step];
      if (i > REACH) sum -= values[begin + (i - REACH - 1) * step];
      line[i] = sum / (2 * REACH + 1);
    }
    for (let i = 0; i < length; i += 1) values[begin + i * step] = line[i];
  }
}

/**
 * The density of points over a plot.
 *
 * @param {{count, x, y}} list as of `listPoints`
 * @param {object} view window shown
 * @param {{width: number, height: number}} plot
 * @returns {{columns: number, rows: number, values: Float32Array, most: number}} genes in a square of
 *   `SQUARE` pixels, row by row from the top left corner
 */
export function densityOf({ count, x, y }, view, { width, height }) {
  const columns = Math.max(Math.ceil(width / CELL), 1);
  const rows = Math.max(Math.ceil(height / CELL), 1);
  const values = new Float32Array(columns * rows);
  const across = width / CELL / (view.x1 - view.x0);
  const up = height / CELL / (view.y1 - view.y0);
  const weight = (SQUARE / CELL) ** 2;
  for (let i = 0; i < count; i += 1) {
    const column = Math.floor((x[i] - view.x0) * across);
    const row = Math.floor((view.y1 - y[i]) * up);
    if (column >= 0 && row >= 0 && column < columns && row < rows) values[row * columns + column] += weight;
  }
  for (let pass = 0; pass < PASSES; pass += 1) {
    smoothLines(values, rows, columns, 1, columns);
    smoothLines(values, columns, rows, columns, 1);
  }
  return { columns, rows, values, most: values.reduce((one, other) => Math.max(one, other), 0) };
}

/** Levels of density, each twice the one before, up to half of the most. */
export function levelsOf({ most }) {
  return most > 0 ? Array.from({ length: SHADES }, (_, level) => most / 2 ** (SHADES - level)) : [];
}

/** Draws the shading of a plot that begins at (0, 0): the darker the denser, on a scale of doublings. */
export function shadingOf({ columns, rows, values, most }, colour) {
  const canvas = document.createElement('canvas');
  [canvas.width, canvas.height] = [columns, rows];
  const context = canvas.getContext('2d');
  const image = context.createImageData(columns, rows);
  const rgb = [1, 3, 5].map((at) => parseInt(colour.slice(at, at + 2), 16));
  const span = 2 ** SHADES;
  for (let cell = 0; cell < values.length; cell += 1) {
    const share = most > 0 ? Math.log2(1 + (values[cell] / most) * (span - 1)) / SHADES : 0;
    for (let part = 0; part < 3; part += 1) image.data[4 * cell + part] = rgb[part];
    image.data[4 * cell + 3] = Math.round(DARKEST * share);
  }
  context.putImageData(image, 0, 0);
  return canvas;
}

/** Where the lines of a level cross the edges of a square of four cells: pairs of edges by case. */
const CROSSINGS = [
  [], [3, 2], [2, 1], [3, 1], [1, 0], [3, 0, 2, 1], [2, 0], [3, 0],
  [0, 3], [0, 2], [0, 1, 2, 3], [0, 1], [1, 3], [1, 2], [2, 3], [],
];

/**
 * The lines along which the density has a level.
 *
 * @returns {number[][]} segments [x0, y0, x1, y1] in pixels from the plot's corner
 */
export function contourOf({ columns, rows, values }, level) {
  const segments = [];
  const share = (from, to) => (level - from) / (to - from);
  for (let row = 0; row + 1 < rows; row += 1) {
    const end = (row + 1) * columns - 1;
    let left = (values[end + 1 - columns] > level ? 8 : 0) | (values[end + 1] > level ? 1 : 0);
    for (let at = row * columns; at < end; at += 1) {
      const right = (values[at + 1] > level ? 4 : 0) | (values[at + columns + 1] > level ? 2 : 0);
      const which = left | right;
      left = (right & 4 ? 8 : 0) | (right & 2 ? 1 : 0);
      if (which > 0 && which < 15) {
        const column = at - row * columns;
        const below = at + columns;
        const crossing = (edge) => {
          if (edge === 0) return [column + share(values[at], values[at + 1]), row];
          if (edge === 1) return [column + 1, row + share(values[at + 1], values[below + 1])];
          if (edge === 2) return [column + share(values[below], values[below + 1]), row + 1];
          return [column, row + share(values[at], values[below])];
        };
        const crossed = CROSSINGS[which];
        for (let i = 0; i < crossed.length; i += 2) {
          const [x0, y0] = crossing(crossed[i]);
          const [x1, y1] = crossing(crossed[i + 1]);
          segments.push([(x0 + 0.5) * CELL, (y0 + 0.5) * CELL, (x1 + 0.5) * CELL, (y1 + 0.5) * CELL]);
        }
      }
    }
  }
  return segments;
}

/**
 * The scale in words: how many genes a square holds.
 *
 * @param {{values: Float32Array, most: number}} density
 * @returns {{usual: number, most: number}} the median of where there are any, and the most
 */
export function scaleOf({ values, most }) {
  const held = values.filter((value) => value >= 0.5).sort();
  return { usual: held.length > 0 ? held[held.length >> 1] : 0, most };
}
