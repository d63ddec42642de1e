/** Where the parts of the chart of a choice stand; pure, in pixels from its upper left corner. */

const MARGIN = { left: 48, right: 14, top: 10, bottom: 34 };

/** Room within the frame beside the first and the last perplexity. */
const INSET = 18;

/** Least distance of two numbers below the chart, in pixels. */
const LEAST_GAP = 26;

/**
 * Lays the chart out.
 *
 * @param {object} choice as of `readComparison`
 * @param {number} width
 * @param {number} height
 * @returns `frame` (`left`, `right`, `top`, `bottom`); `x`, one per perplexity, on a logarithmic scale;
 *   `y(share)`; `labelled`, the numbers of the perplexities that have room for a label
 */
export function layoutOf({ perplexities }, width, height) {
  const frame = {
    left: MARGIN.left, right: width - MARGIN.right, top: MARGIN.top, bottom: height - MARGIN.bottom,
  };
  const logs = perplexities.map((perplexity) => Math.log(perplexity));
  const span = logs.at(-1) - logs[0];
  const room = Math.max(frame.right - frame.left - 2 * INSET, 1);
  const x = logs.map((log) => frame.left + INSET + room * (span > 0 ? (log - logs[0]) / span : 0.5));
  const labelled = [];
  x.forEach((at, which) => {
    if (labelled.length === 0 || at - x[labelled.at(-1)] >= LEAST_GAP) labelled.push(which);
  });
  return { frame, x, labelled, y: (share) => frame.bottom - share * (frame.bottom - frame.top) };
}

/** The number of the perplexity that is nearest to a place. */
export function nearestTo({ x }, place) {
  let nearest = 0;
  x.forEach((at, which) => {
    if (Math.abs(at - place) < Math.abs(x[nearest] - place)) nearest = which;
  });
  return nearest;
}

/** The pieces of a curve between shares that were not measured, each a list of its points. */
export function piecesOf({ shares }, { x, y }) {
  const pieces = [[]];
  shares.forEach((share, which) => {
    if (Number.isFinite(share)) pieces.at(-1).push([x[which], y(share)]);
    else pieces.push([]);
  });
  return pieces.filter((piece) => piece.length > 0);
}

/** What is known of a perplexity, in a sentence. */
export function sentenceOf({ perplexities, curves }, which) {
  const shares = curves.filter(({ shares: all }) => Number.isFinite(all[which]))
    .map(({ name, shares: all }) => `${name.toLowerCase()} ${(100 * all[which]).toFixed(1)} %`);
  return `Perplexity ${perplexities[which]}: ${shares.join(', ')}.`;
}
