/** The mark of a category in a legend. */

import { svg } from './dom.js';

/** Its shape in its colour. */
export function swatch({ colour, shape }) {
  return svg('svg', { class: 'swatch', viewBox: '0 0 16 16', 'aria-hidden': 'true' },
    svg('path', { d: shape.path, fill: colour }));
}
