/**
 * The part of the plane that the chart shows.
 *
 * A window is `{x0, x1, y0, y1}` in data units. All windows of one chart have the shape of its plot, so
 * that a unit is as long on the one axis as on the other.
 */

const PADDING = 0.04;

/** Zooming in ends at this share of the whole. */
export const SMALLEST_SHARE = 0.0005;

const PLAIN = { x0: -1, x1: 1, y0: -1, y1: 1 };

const clamp = (value, low, high) => Math.min(Math.max(value, low), Math.max(low, high));

const spanOf = (low, high) => (high > low ? high - low : 0);

/**
 * The smallest window of the plot's shape that holds `extent`.
 *
 * @param {object|null} extent a window of any shape; null gives a plain window around 0
 * @param {number} width pixels of the plot
 * @param {number} height pixels of the plot
 * @param {number} [padding] share of the extent that is left free on each side
 */
export function fitWindow(extent, width, height, padding = PADDING) {
  const usable = extent && Number.isFinite(extent.x1 - extent.x0) && Number.isFinite(extent.y1 - extent.y0);
  const { x0, x1, y0, y1 } = usable ? extent : PLAIN;
  const widest = Math.max(spanOf(x0, x1) / width, spanOf(y0, y1) / height) * (1 + 2 * padding);
  const perPixel = widest > 0 ? widest : 2 / Math.min(width, height);
  return around(x0 / 2 + x1 / 2, y0 / 2 + y1 / 2, perPixel * width, perPixel * height);
}

function around(x, y, width, height) {
  return { x0: x - width / 2, x1: x + width / 2, y0: y - height / 2, y1: y + height / 2 };
}

/** The middle of a window. */
export function centreOf(view) {
  return { x: (view.x0 + view.x1) / 2, y: (view.y0 + view.y1) / 2 };
}

/** Whether a point lies in the window; NaN does not. */
export function contains(view, x, y) {
  return x >= view.x0 && x <= view.x1 && y >= view.y0 && y <= view.y1;
}

/** The window of `share` times the whole's size around a point, moved to lie within the whole. */
export function windowAt(whole, x, y, share) {
  const kept = Math.min(Math.max(share, SMALLEST_SHARE), 1);
  const width = (whole.x1 - whole.x0) * kept;
  const height = (whole.y1 - whole.y0) * kept;
  return around(
    clamp(x, whole.x0 + width / 2, whole.x1 - width / 2),
    clamp(y, whole.y0 + height / 2, whole.y1 - height / 2),
    width,
    height,
  );
}

/**
 * The window after zooming around a place that stays where it is. Zooming out leads back to the whole,
 * however far the window was moved beyond it.
 *
 * @param {{x: number, y: number}} fixed in data units
 * @param {number} factor above 1 = nearer
 */
export function zoomAbout(whole, view, fixed, factor) {
  const share = shareOf(whole, view);
  const wanted = Math.min(Math.max(share / factor, SMALLEST_SHARE), 1);
  const centre = centreOf(view);
  const x = fixed.x + (centre.x - fixed.x) * (wanted / share);
  const y = fixed.y + (centre.y - fixed.y) * (wanted / share);
  const width = (whole.x1 - whole.x0) * wanted;
  const height = (whole.y1 - whole.y0) * wanted;
  if (wanted < share) return around(x, y, width, height);
  const inside = centreOf(windowAt(whole, x, y, wanted));
  const back = share < 1 ? (wanted - share) / (1 - share) : 1;
  return around(x + (inside.x - x) * back, y + (inside.y - y) * back, width, height);
}

/** The window moved by data units, as far as its middle stays within the whole. */
export function panned(whole, view, right, up) {
  const centre = centreOf(view);
  return around(
    clamp(centre.x + right, whole.x0, whole.x1),
    clamp(centre.y + up, whole.y0, whole.y1),
    view.x1 - view.x0,
    view.y1 - view.y0,
  );
}

/** Size of a window as a share of the whole. */
export function shareOf(whole, view) {
  return (view.x1 - view.x0) / (whole.x1 - whole.x0);
}

/**
 * The window on the way from one to another; the size changes by equal factors, and the centre moves so
 * that the target does not leave the view while zooming in on it.
 *
 * @param {number} progress 0 to 1
 */
export function between(whole, from, to, progress) {
  const first = shareOf(whole, from);
  const last = shareOf(whole, to);
  const share = first * (last / first) ** progress;
  const left = Math.abs(first - last) < 1e-9 * first ? 1 - progress : (share - last) / (first - last);
  const start = centreOf(from);
  const end = centreOf(to);
  const width = (whole.x1 - whole.x0) * share;
  const height = (whole.y1 - whole.y0) * share;
  return around(end.x + (start.x - end.x) * left, end.y + (start.y - end.y) * left, width, height);
}
