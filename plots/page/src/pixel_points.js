/**
 * Printing points into an array of pixels: fast without a graphics card, and the same everywhere. Pixels
 * are numbers of 32 bits; two of their bytes are mixed at a time.
 */

import { pixelsOf } from './marks.js';

const TWO_BYTES = 0x00ff00ff;
const OTHER_TWO = 0xff00ff00;

/** Marks below so many pixels of the screen are squares. */
const SMALLEST_ROUND = 2.75;

/** The parts of a colour as they are mixed into pixels: what remains of 256, and what is added. */
function mixing(red, green, blue, share) {
  const alpha = Math.round(share * 256);
  return { rest: 256 - alpha, even: Math.imul((blue << 16) | red, alpha), odd: Math.imul(0xff0000 | green, alpha) };
}

function colourParts(colour) {
  const value = parseInt(colour.slice(1), 16);
  return [(value >> 16) & 255, (value >> 8) & 255, value & 255];
}

/** A mark made ready: for each of its pixels where it lies, and how it is mixed in. */
function stampOf(mark, ratio, stride) {
  const { size, data } = pixelsOf(mark, ratio);
  const places = [];
  for (let at = 0; at < size * size; at += 1) if (data[4 * at + 3] > 0) places.push(at);
  const stamp = {
    size,
    offsets: new Int32Array(places.length),
    rest: new Int32Array(places.length),
    even: new Int32Array(places.length),
    odd: new Int32Array(places.length),
  };
  places.forEach((at, i) => {
    const parts = mixing(data[4 * at], data[4 * at + 1], data[4 * at + 2], (data[4 * at + 3] / 255) * mark.opacity);
    stamp.offsets[i] = Math.floor(at / size) * stride + (at % size);
    stamp.rest[i] = parts.rest;
    stamp.even[i] = parts.even;
    stamp.odd[i] = parts.odd;
  });
  return stamp;
}

/** Prints squares, the fastest way: `first` to `end` of the list. */
function printSquares(pixels, list, [first, end], marks, side, frame) {
  const { left, top, across, up, width, height, stride } = frame;
  const even = new Int32Array(marks.length);
  const odd = new Int32Array(marks.length);
  const rest = new Int32Array(marks.length);
  marks.forEach((mark, kind) => {
    const parts = mixing(...colourParts(mark.colour), mark.opacity);
    even[kind] = parts.even;
    odd[kind] = parts.odd;
    rest[kind] = parts.rest;
  });
  const { x, y, kinds } = list;
  const half = side / 2;
  for (let i = first; i < end; i += 1) {
    const column = Math.floor((x[i] - left) * across - half + 0.5);
    const row = Math.floor((top - y[i]) * up - half + 0.5);
    if (column > -side && row > -side && column < width && row < height) {
      const kind = kinds[i];
      let at = (row + frame.margin) * stride + column + frame.margin;
      for (let down = 0; down < side; down += 1) {
        for (let right = 0; right < side; right += 1) {
          const old = pixels[at + right];
          pixels[at + right] = (((Math.imul(old & TWO_BYTES, rest[kind]) + even[kind]) >>> 8) & TWO_BYTES)
            | ((Math.imul((old >>> 8) & TWO_BYTES, rest[kind]) + odd[kind]) & OTHER_TWO);
        }
        at += stride;
      }
    }
  }
}

/** Prints stamps. */
function printStamps(pixels, list, [first, end], stamps, frame) {
  const { left, top, across, up, width, height, stride, margin } = frame;
  const { x, y, kinds } = list;
  for (let i = first; i < end; i += 1) {
    const { size, offsets, rest, even, odd } = stamps[kinds[i]];
    const column = Math.floor((x[i] - left) * across - size / 2 + 0.5);
    const row = Math.floor((top - y[i]) * up - size / 2 + 0.5);
    if (column > -size && row > -size && column < width && row < height) {
      const corner = (row + margin) * stride + column + margin;
      for (let part = 0; part < offsets.length; part += 1) {
        const at = corner + offsets[part];
        const old = pixels[at];
        pixels[at] = (((Math.imul(old & TWO_BYTES, rest[part]) + even[part]) >>> 8) & TWO_BYTES)
          | ((Math.imul((old >>> 8) & TWO_BYTES, rest[part]) + odd[part]) & OTHER_TWO);
      }
    }
  }
}

/** Room around the picture, so that marks at its edge need no care. */
const MARGIN = 128;

/** Makes a printer of points; it keeps its array and its stamps from picture to picture. */
export function createPixelPrinter() {
  let image = null;
  let pixels = null;
  let known = { marks: null, ratio: 0, stride: 0, stamps: [] };

  function prepare(width, height) {
    const [wide, high] = [width + 2 * MARGIN, height + 2 * MARGIN];
    if (image?.width === wide && image.height === high) return;
    image = new ImageData(wide, high);
    pixels = new Int32Array(image.data.buffer);
  }

  function layGround(ground, width, height) {
    if (typeof ground === 'string') {
      const [red, green, blue] = colourParts(ground);
      pixels.fill(0xff000000 | (blue << 16) | (green << 8) | red);
      return;
    }
    const rows = new Int32Array(ground.data.buffer);
    for (let row = 0; row < height; row += 1) {
      pixels.set(rows.subarray(row * width, (row + 1) * width), (row + MARGIN) * image.width + MARGIN);
    }
  }

  function stampsOf(marks, ratio, stride, kinds) {
    if (known.marks !== marks || known.ratio !== ratio || known.stride !== stride) {
      known = { marks, ratio, stride, stamps: [] };
    }
    for (const kind of kinds) known.stamps[kind] ??= stampOf(marks[kind], ratio, stride);
    return known.stamps;
  }

  /**
   * Prints a list of points.
   *
   * @param {CanvasRenderingContext2D} context of the canvas to put them into, of `width` x `height`
   * @param {object} list as of `listPoints`
   * @param {object[]} marks by kind, as of `markOf`
   * @param {object} view window shown
   * @param {number} ratio pixels of the canvas in one of the page
   * @param {string|ImageData} ground what the points lie on, opaque
   */
  return function print(context, list, marks, view, ratio, ground) {
    const { width, height } = context.canvas;
    prepare(width, height);
    layGround(ground, width, height);
    const stride = image.width;
    const frame = {
      left: view.x0,
      top: view.y1,
      across: width / (view.x1 - view.x0),
      up: height / (view.y1 - view.y0),
      width,
      height,
      stride,
      margin: MARGIN,
    };
    const size = list.present.back.length > 0 ? marks[list.present.back[0]].size * ratio : 0;
    const back = [0, list.lit];
    if (size < SMALLEST_ROUND) printSquares(pixels, list, back, marks, Math.max(Math.round(size), 1), frame);
    else printStamps(pixels, list, back, stampsOf(marks, ratio, stride, list.present.back), frame);
    printStamps(pixels, list, [list.lit, list.count], stampsOf(marks, ratio, stride, list.present.lit), frame);
    context.putImageData(image, -MARGIN, -MARGIN, MARGIN, MARGIN, width, height);
  };
}
