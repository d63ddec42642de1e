/** The data together with what follows from the reader's choices; each part is worked out once. */

import { createColourings } from './colourings.js';
import { findCategories, findLevels, NUMBER_LEVELS } from './categories.js';
import { categoryStyles, levelStyles } from './palette.js';
import { drawnGenes } from './points.js';

function remembered(compute) {
  let key = [];
  let value;
  return (...parts) => {
    if (parts.length !== key.length || parts.some((part, index) => part !== key[index])) {
      key = parts;
      value = compute(...parts);
    }
    return value;
  };
}

const NO_COORDINATES = new Float64Array(0);

/** @param {object} dataset as of `readDataset` */
export function createModel(dataset) {
  const colourings = createColourings(dataset);
  const categories = remembered(({ labels, numbers, diverging, order, rest }) => (numbers
    ? findLevels(numbers, dataset.background, diverging)
    : findCategories(labels, order ?? dataset.categoryOrder, dataset.count, dataset.background, rest)));
  const categoriesAt = (colouring) => categories(colourings.at(colouring));
  const points = remembered((pair, shown, found) => ({
    x: pair?.x ?? NO_COORDINATES,
    y: pair?.y ?? NO_COORDINATES,
    genes: pair ? drawnGenes(pair, found, shown) : new Int32Array(0),
  }));
  const styles = remembered((theme, { list, scale }, own = dataset.colours) => (scale
    ? levelStyles(NUMBER_LEVELS, theme, scale.diverging).slice(0, list.length)
    : categoryStyles(list, { scheme: dataset.colourScheme, own, theme })));
  return {
    dataset,
    /** What genes can be coloured by now, as of `createColourings`. */
    colourings,
    /**
     * Adds something that genes can be coloured by, in the place of what had the same title.
     *
     * @param {object} added `title`; `labels` (a text per gene) or `numbers` (Float64Array, one per
     *   gene, NaN for none), and with these, whether the scale is `diverging` around 0 (not given: if
     *   there are numbers of both signs); with labels, in the place of what the page was written with,
     *   their `order` and `own`, a "#rrggbb" for each of it, and `rest`, the one label that steps back; arrays are not to be changed afterwards
     * @returns {number} for `colouredBy`; it serves until the title is added twice again
     */
    addColouring: (added) => colourings.add(added),
    /** What genes are told apart by: `title`, `labels` or `numbers`; labels may be empty. */
    colouringOf: (state) => colourings.at(state.colouring),
    /** The categories that follow from it, as of `findCategories`. */
    categoriesOf: (state) => categoriesAt(state.colouring),
    /** A choice of what genes are coloured by, for the store: all of its categories are shown. */
    colouredBy: (colouring) => ({
      colouring,
      shown: new Uint8Array(categoriesAt(colouring).list.length).fill(1),
    }),
    /** The pair that is drawn; undefined without data. */
    pairOf: (state) => dataset.pairs[state.pair],
    /** `{x, y, genes}` of the genes that are drawn. */
    pointsOf: (state) => points(dataset.pairs[state.pair], state.shown, categoriesAt(state.colouring)),
    /** Colour and shape of each category. */
    stylesOf: (state) => styles(state.theme, categoriesAt(state.colouring), colourings.at(state.colouring).own),
    /** Whether a gene has a position in the pair that is drawn. */
    isPlaced(state, gene) {
      const pair = dataset.pairs[state.pair];
      return pair !== undefined && Number.isFinite(pair.x[gene]) && Number.isFinite(pair.y[gene]);
    },
  };
}
