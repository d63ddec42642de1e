/** Finding room for texts on the map, without one on another. */

const overlap = (one, other) => one.left < other.left + other.width && other.left < one.left + one.width
  && one.top < other.top + other.height && other.top < one.top + one.height;

const isWithin = (box, frame) => box.left >= frame.left && box.top >= frame.top
  && box.left + box.width <= frame.left + frame.width && box.top + box.height <= frame.top + frame.height;

/** Where a text may be moved to, in heights of it: where it belongs first, then ever farther above and below. */
const SHIFTS = [0, -1, 1, -2, 2, -3, 3];

/** The place nearest to where it belongs at which a box lies within the frame, as far as it fits. */
function inside(box, frame) {
  const clamp = (value, low, high) => Math.max(low, Math.min(value, high));
  return {
    ...box,
    left: clamp(box.left, frame.left, frame.left + frame.width - box.width),
    top: clamp(box.top, frame.top, frame.top + frame.height - box.height),
  };
}

/**
 * Places boxes, the first ones first.
 *
 * @param {{x: number, y: number, sizes: {width: number, height: number}[]}[]} wanted the middle of each, and its
 *   sizes: the first that has room is taken
 * @param {{left, top, width, height}} frame in which they are to lie
 * @returns for each, null where there is no room, or `{left, top, width, height, size}`, of which `size` says which
 *   of the sizes it has
 */
export function placeBoxes(wanted, frame) {
  const taken = [];
  return wanted.map(({ x, y, sizes }) => {
    for (const [size, { width, height }] of sizes.entries()) {
      for (const shift of SHIFTS) {
        const box = inside({ left: x - width / 2, top: y - height / 2 + shift * height, width, height }, frame);
        if (isWithin(box, frame) && !taken.some((other) => overlap(box, other))) {
          taken.push(box);
          return { ...box, size };
        }
      }
    }
    return null;
  });
}
