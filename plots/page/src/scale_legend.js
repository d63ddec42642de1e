/** The legend of numbers: a bar of their colours. */

import { el, svg } from './dom.js';
import { formatCoordinate, formatCount } from './format.js';
import { NUMBER_LEVELS } from './categories.js';
import { swatch } from './swatch.js';

function bar(styles, words) {
  const step = (_, level) => svg('rect', {
    x: 0, y: NUMBER_LEVELS - 1 - level, width: 8, height: 1.1, fill: styles[level].colour,
  });
  return svg('svg', {
    class: 'scale',
    viewBox: `0 0 8 ${NUMBER_LEVELS}`,
    preserveAspectRatio: 'none',
    'shape-rendering': 'crispEdges',
    role: 'img',
    'aria-label': words,
  }, ...Array.from({ length: NUMBER_LEVELS }, step));
}

/** How the ends are called; a sign says that numbers beyond share their colours. */
export function endsOf({ least, most, lowest, highest }) {
  return [
    `${lowest < least ? '\u2264 ' : ''}${formatCoordinate(least)}`,
    `${highest > most ? '\u2265 ' : ''}${formatCoordinate(most)}`,
  ];
}

function rangeNote({ least, most, lowest, highest }) {
  if (lowest >= least && highest <= most) return [];
  return [el('p', { class: 'scale-note' },
    'Colours end at the 1st and 99th percentile; values run from ',
    `${formatCoordinate(lowest)} to ${formatCoordinate(highest)}.`)];
}

/** The bar, from the most at the top to the least, and how many genes have no number. */
export function scaleParts({ list, scale }, styles) {
  const [least, most] = endsOf(scale);
  const words = `Colours from ${least} to ${most}${scale.diverging ? ', 0 in the middle' : ''}`;
  const middle = scale.diverging ? [el('span', {}, '0')] : [];
  const missing = list[NUMBER_LEVELS];
  return [
    el('div', { class: 'scale-frame' }, bar(styles, words),
      el('div', { class: 'scale-ends' }, el('span', {}, most), ...middle, el('span', {}, least))),
    ...rangeNote(scale),
    ...(missing
      ? [el('p', {}, swatch(styles[NUMBER_LEVELS]), ` ${missing.text} `, el('span', { class: 'legend-count' }, formatCount(missing.count)))]
      : []),
  ];
}
