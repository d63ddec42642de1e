/** The colours of the genes, the same in all maps. */

import { findCategories, findLevels, NUMBER_LEVELS } from '../categories.js';
import { categoryStyles, levelStyles } from '../palette.js';
import { channelsOf } from './raster.js';

/** The corners of the reference's map; between them colours are mixed. */
const CORNERS = {
  light: { left: ['#0099c8', '#3a1a9e'], right: ['#f2a900', '#d4145a'] },
  dark: { left: ['#4cc9f0', '#8b7bff'], right: ['#ffc93c', '#ff5c8a'] },
};

/** What spreads the colours: these shares of the genes lie left of the first and of the last. */
const INNER = [0.02, 0.98];

/** The scheme of the chart page's default. */
const SCHEME = '';

function mixed(one, other, share) {
  return one.map((channel, at) => channel + (other[at] - channel) * share);
}

/** Where numbers stand between two quantiles of the known ones, from 0 to 1; NaN where they are none. */
function sharesOf(numbers) {
  const known = numbers.filter(Number.isFinite).sort();
  const [least, most] = INNER.map((share) => known[Math.round(share * (known.length - 1))]);
  const share = (number) => (most > least ? (number - least) / (most - least) : 0.5);
  return numbers.map((number) => (Number.isFinite(number) ? Math.min(Math.max(share(number), 0), 1) : NaN));
}

/** A colour per gene by its place in the reference; genes that are not there have `pale`. */
function coloursOfPlaces({ x, y }, theme, pale) {
  const { left, right } = CORNERS[theme];
  const [topLeft, bottomLeft, topRight, bottomRight] = [...left, ...right].map(channelsOf);
  const [across, up] = [sharesOf(x), sharesOf(y)];
  return Array.from(x, (value, gene) => {
    if (!Number.isFinite(value)) return pale;
    const top = mixed(topLeft, topRight, across[gene]);
    return mixed(mixed(bottomLeft, bottomRight, across[gene]), top, up[gene]).map(Math.round);
  });
}

/** A fixed order that follows nothing in the data: of genes close together none is always on top. */
function shuffled(count) {
  const order = Int32Array.from({ length: count }, (_, gene) => gene);
  let state = 1;
  for (let last = count - 1; last > 0; last -= 1) {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    const other = Math.floor((state / 2 ** 32) * (last + 1));
    [order[last], order[other]] = [order[other], order[last]];
  }
  return order;
}

/** The order in which genes are drawn: grey ones lowest, small groups over large ones. */
export function drawingOrder({ list, of, scale }, count) {
  const height = list.map(({ count: size, grey }) => {
    if (grey) return -Infinity;
    return scale ? 0 : -size;
  });
  const rank = new Map([...list.keys()].sort((a, b) => height[a] - height[b] || a - b).map((category, at) => [category, at]));
  const level = list.map(({ grey }, category) => (scale && !grey ? list.length : rank.get(category)));
  // Stable, so that within a group the shuffled order stays.
  return shuffled(count).sort((a, b) => level[of[a]] - level[of[b]]);
}

/** What genes can be coloured by: their labels, and their place in the reference. */
export function colouringTitles(comparison) {
  const labels = comparison.colourings.map(({ title }) => title || 'Label');
  const reference = comparison.runs[comparison.reference];
  return reference ? [...labels, `Place in ${reference.title}`] : labels;
}

/**
 * The colours by one of the `colouringTitles`.
 *
 * @param {object} comparison
 * @param {number} index
 * @param {'light'|'dark'} theme
 * @param {string} pale #rrggbb of genes without a place in the reference
 * @returns `colours`, three channels for each gene; `order`, in which they are drawn; `isGrey(gene)`:
 *   whether it belongs to no group; `categories` and their `styles`, or null for places
 */
export function coloursOf(comparison, index, theme, pale) {
  const { count, colourings, runs, reference } = comparison;
  const colouring = colourings[index];
  if (colouring === undefined) {
    const places = runs[reference] ?? { x: new Float64Array(count).fill(NaN), y: new Float64Array(count) };
    return {
      colours: coloursOfPlaces(places, theme, channelsOf(pale)),
      order: shuffled(count),
      isGrey: (gene) => !Number.isFinite(places.x[gene]),
      categories: null,
      styles: null,
    };
  }
  const { list, of, scale } = colouring.numbers
    ? findLevels(colouring.numbers)
    : findCategories(colouring.labels, [], count);
  const styles = scale
    ? levelStyles(NUMBER_LEVELS, theme, scale.diverging)
    : categoryStyles(list, { scheme: SCHEME, own: [], theme });
  const channels = styles.map(({ colour }) => channelsOf(colour));
  return {
    colours: Array.from(of, (category) => channels[category]),
    order: drawingOrder({ list, of, scale }, count),
    isGrey: (gene) => list[of[gene]].grey,
    categories: { list, of, scale },
    styles,
  };
}
