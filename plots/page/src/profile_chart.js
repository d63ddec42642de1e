/** A line chart of profiles over the conditions. */

import { svg } from './dom.js';
import { drawableText } from './format.js';
import { extremesOf } from './profiles.js';

const WIDTH = 300;
const HEIGHT = 132;
const LONGEST_NAME = 20;
const PLOT = { left: 38, right: 294, top: 8, bottom: 112 };
const LEAST_TICK_GAP = 14;

/** The range of all values, with 0 in it; of no values that of 0 to 1. */
function rangeOf(lines) {
  const known = lines.flatMap(({ values }) => Array.from(values)).filter((value) => !Number.isNaN(value));
  const least = known.reduce((one, other) => Math.min(one, other), 0);
  const most = known.reduce((one, other) => Math.max(one, other), 0);
  return least === most ? { least: 0, most: 1 } : { least, most };
}

/** The stretches of known values as SVG path data; a value between missing ones is a stroke of its own. */
function pathOf(values, x, y) {
  const parts = [];
  let isDrawing = false;
  values.forEach((value, column) => {
    if (Number.isNaN(value)) {
      isDrawing = false;
      return;
    }
    const place = `${x(column).toFixed(2)} ${y(value).toFixed(2)}`;
    // A line of no length with round ends is a dot.
    parts.push(isDrawing ? `L${place}` : `M${place}l0 0`);
    isDrawing = true;
  });
  return parts.join('');
}

function ticks({ least, most }, y, format) {
  const values = [most, 0, least].filter((value, index, all) => all.indexOf(value) === index);
  const free = values.filter((value) => value === 0 || Math.abs(y(value) - y(0)) >= LEAST_TICK_GAP);
  return free.flatMap((value) => [
    svg('line', { class: value === 0 ? 'profile-zero' : 'profile-grid', x1: PLOT.left, x2: PLOT.right, y1: y(value), y2: y(value) }),
    svg('text', { class: 'profile-tick', x: PLOT.left - 5, y: y(value) + 3.5, 'text-anchor': 'end' }, format(value)),
  ]);
}

/** What a profile is, in a sentence: where it is highest and lowest. */
export function profileSentence(columns, values, format) {
  const ends = extremesOf(values);
  if (!ends) return 'no value is known';
  return `highest ${format(values[ends.most])} in ${columns[ends.most]}, lowest ${format(values[ends.least])} in ${columns[ends.least]}`;
}

/**
 * Draws profiles.
 *
 * @param {string[]} columns
 * @param {{values: number[], className: string}[]} lines the first lies on top; NaN where missing
 * @param {string} label what the chart shows, for those who do not see it
 * @param {object} ways `format(value)` writes a value, and `point(column)` is called with the column under the pointer,
 *   -1 when it leaves
 */
export function profileChart(columns, lines, label, { format, point }) {
  const range = rangeOf(lines);
  const step = (PLOT.right - PLOT.left) / Math.max(columns.length - 1, 1);
  const x = (column) => PLOT.left + column * step;
  const y = (value) => PLOT.bottom - ((value - range.least) / (range.most - range.least)) * (PLOT.bottom - PLOT.top);
  const name = (column, at, anchor) =>
    svg('text', { class: 'profile-tick', x: at, y: HEIGHT - 4, 'text-anchor': anchor }, drawableText(columns[column], LONGEST_NAME));
  const names = columns.length > 1 ? [name(0, PLOT.left, 'start'), name(columns.length - 1, PLOT.right, 'end')] : [];
  const guide = svg('line', { class: 'profile-guide', y1: PLOT.top, y2: PLOT.bottom, x1: -1, x2: -1 });
  const chart = svg('svg', { class: 'profile-chart', viewBox: `0 0 ${WIDTH} ${HEIGHT}`, role: 'img', 'aria-label': label },
    ...ticks(range, y, format),
    ...names,
    guide,
    ...[...lines].reverse().map(({ values, className }) => svg('path', { class: `profile-line ${className}`, d: pathOf(values, x, y) })));

  function pointTo(column) {
    const place = column < 0 ? -1 : x(column);
    guide.setAttribute('x1', place);
    guide.setAttribute('x2', place);
    point(column);
  }

  chart.addEventListener('pointermove', (event) => {
    const box = chart.getBoundingClientRect();
    const column = Math.round((((event.clientX - box.left) / box.width) * WIDTH - PLOT.left) / step);
    pointTo(Math.max(0, Math.min(columns.length - 1, column)));
  });
  chart.addEventListener('pointerleave', () => pointTo(-1));
  return chart;
}
