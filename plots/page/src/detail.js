/**
 * How points are drawn. Few are shapes of their own, which tell labels apart without colour; many are
 * dots, the smaller the more of them are in view.
 */

/** Up to so many points in view are drawn as shapes. */
export const MOST_SHAPES = 1500;

/** Looks of some numbers of points; what lies between is in between. */
const STOPS = [
  { count: 150, size: 12, opacity: 0.75 },
  { count: 400, size: 10, opacity: 0.7 },
  { count: 1500, size: 7.5, opacity: 0.7 },
  { count: 5000, size: 5, opacity: 0.75 },
  { count: 20000, size: 3.5, opacity: 0.7 },
  { count: 100000, size: 2, opacity: 0.6 },
  { count: 1000000, size: 2, opacity: 0.35 },
];

/** Sizes go in such steps, so that zooming need not make each mark anew in every frame. */
const SIZE_STEP = 0.25;

const LEAST_SIZE = 1;
const LEAST_OPACITY = 0.05;

function between(count) {
  const after = STOPS.findIndex((stop) => count <= stop.count);
  if (after === 0) return STOPS[0];
  if (after < 0) return STOPS.at(-1);
  const [low, high] = [STOPS[after - 1], STOPS[after]];
  const share = Math.log(count / low.count) / Math.log(high.count / low.count);
  const mixed = (name) => low[name] + (high[name] - low[name]) * share;
  return { size: mixed('size'), opacity: mixed('opacity') };
}

/**
 * The look of `count` points in view.
 *
 * @param {number} count
 * @param {{size: number, opacity: number}} [wish] factors that the reader chose
 * @returns {{shapes: boolean, size: number, opacity: number}} size in pixels
 */
export function lookOf(count, wish = { size: 1, opacity: 1 }) {
  const { size, opacity } = between(count);
  return {
    shapes: count <= MOST_SHAPES,
    size: Math.max(Math.round((size * wish.size) / SIZE_STEP) * SIZE_STEP, LEAST_SIZE),
    opacity: Math.min(Math.max(opacity * wish.opacity, LEAST_OPACITY), 1),
  };
}

const DIM_OPACITY = { light: 0.16, dark: 0.2 };
const LIT_SIZE = 8;
const CROWD = 20000;

/**
 * The mark of a kind of points.
 *
 * @param {{colour: string, shape: object}} style of its category
 * @param {string} role as of `ROLES`
 * @param {object} look as of `lookOf`
 * @param {object} ink as of `inkOf`
 * @param {number} litCount how many points stand out
 * @returns {{colour, shape, size, opacity, edge, halo}} size in pixels; `shape` null for a dot; `edge` and
 *   `halo` are colours of a line around the mark and of a rim around that, or null
 */
export function markOf(style, role, look, ink, litCount) {
  const { colour } = style;
  if (role === 'plain' || role === 'dim') {
    const shape = look.shapes ? style.shape : null;
    const opacity = role === 'plain' ? look.opacity : Math.min(look.opacity, DIM_OPACITY[ink.theme]);
    const edge = shape && look.size >= 8 && role === 'plain' ? ink.surface : null;
    return { colour, shape, size: look.size, opacity, edge, halo: null };
  }
  // What is chosen has a dark edge, what the search found the colour of a marker pen around it.
  const isCrowd = litCount > CROWD;
  return {
    colour,
    shape: litCount <= MOST_SHAPES ? style.shape : null,
    size: isCrowd ? look.size : Math.max(look.size, litCount <= MOST_SHAPES ? LIT_SIZE : 4),
    opacity: 1,
    edge: role === 'found' || isCrowd ? null : ink.text,
    halo: role === 'chosen' || isCrowd ? null : ink.found,
  };
}
