/** A profile in a line of text. */

import { svg } from './dom.js';

const WIDTH = 120;
const HEIGHT = 26;
const ROOM = 2;

/**
 * Draws a profile; missing values are gaps.
 *
 * @param {Float64Array} values NaN where missing
 * @param {{least: number, most: number}} range of the drawing, alike for all that are compared; 0 lies within it
 * @param {string} label what it shows, for those who do not see it
 */
export function sparkLine(values, { least, most }, label) {
  const x = (column) => ROOM + (column / Math.max(values.length - 1, 1)) * (WIDTH - 2 * ROOM);
  const y = (value) => HEIGHT - ROOM - ((value - least) / (most - least || 1)) * (HEIGHT - 2 * ROOM);
  let path = '';
  values.forEach((value, column) => {
    if (Number.isNaN(value)) return;
    const begins = column === 0 || Number.isNaN(values[column - 1]);
    path += `${begins ? 'M' : 'L'}${x(column).toFixed(1)} ${y(value).toFixed(1)}${begins ? 'h0' : ''}`;
  });
  return svg('svg', { class: 'spark', viewBox: `0 0 ${WIDTH} ${HEIGHT}`, preserveAspectRatio: 'none', role: 'img', 'aria-label': label },
    svg('line', { class: 'spark-zero', x1: 0, x2: WIDTH, y1: y(0), y2: y(0) }),
    svg('path', { class: 'spark-line', d: path }));
}
