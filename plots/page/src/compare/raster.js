/** Points as small discs in an array of pixels. */

/**
 * How far a disc covers the pixels around its middle.
 *
 * @param {number} radius in pixels
 * @returns `offsets` [right, down, share of the pixel from 0 to 256], row by row
 */
export function discOf(radius) {
  const reach = Math.ceil(radius);
  const offsets = [];
  for (let down = -reach; down <= reach; down += 1) {
    for (let right = -reach; right <= reach; right += 1) {
      const covered = Math.min(Math.max(radius + 0.5 - Math.hypot(right, down), 0), 1);
      if (covered > 0) offsets.push([right, down, Math.round(256 * covered)]);
    }
  }
  return offsets;
}

/** "#rrggbb" as [red, green, blue]. */
export function channelsOf(colour) {
  return [1, 3, 5].map((at) => parseInt(colour.slice(at, at + 2), 16));
}

/** Fills pixels with a colour. */
export function fillPixels(pixels, [red, green, blue]) {
  for (let at = 0; at < pixels.length; at += 4) {
    pixels[at] = red;
    pixels[at + 1] = green;
    pixels[at + 2] = blue;
    pixels[at + 3] = 255;
  }
}

/**
 * Draws a disc, as far as it lies within the picture.
 *
 * @param {{data: Uint8ClampedArray, width: number, height: number}} image opaque
 * @param {number} x middle, in pixels
 * @param {number} y
 * @param {number[]} colour three channels
 * @param {number[][]} disc as `discOf` has it
 */
export function drawDisc({ data, width, height }, x, y, [red, green, blue], disc) {
  const [middle, centre] = [Math.floor(x), Math.floor(y)];
  for (const [right, down, share] of disc) {
    const column = middle + right;
    const row = centre + down;
    if (column >= 0 && column < width && row >= 0 && row < height) {
      const at = 4 * (row * width + column);
      data[at] += ((red - data[at]) * share) >> 8;
      data[at + 1] += ((green - data[at + 1]) * share) >> 8;
      data[at + 2] += ((blue - data[at + 2]) * share) >> 8;
    }
  }
}
