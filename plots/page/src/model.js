/** The data together with what follows from the reader's choices; each part is worked out once. */

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
  const categories = remembered((colouring) => {
    const { labels, numbers } = dataset.colourings[colouring];
    return numbers
      ? findLevels(numbers, dataset.background)
      : findCategories(labels, dataset.categoryOrder, dataset.count, dataset.background);
  });
  const points = remembered((pair, shown, colouring) => ({
    x: pair?.x ?? NO_COORDINATES,
    y: pair?.y ?? NO_COORDINATES,
    genes: pair ? drawnGenes(pair, categories(colouring), shown) : new Int32Array(0),
  }));
  const styles = remembered((theme, colouring) => {
    const { list, scale, beneath } = categories(colouring);
    return scale
      ? levelStyles(NUMBER_LEVELS, theme).slice(0, list.length)
      : categoryStyles(list.length, {
        scheme: dataset.colourScheme, own: dataset.colours, theme, beneath,
      });
  });
  return {
    dataset,
    /** What genes are told apart by: `title` and `labels`, which may be empty. */
    colouringOf: (state) => dataset.colourings[state.colouring],
    /** The categories that follow from it, as of `findCategories`. */
    categoriesOf: (state) => categories(state.colouring),
    /** A choice of what genes are coloured by, for the store: all of its categories are shown. */
    colouredBy: (colouring) => ({
      colouring,
      shown: new Uint8Array(categories(colouring).list.length).fill(1),
    }),
    /** The pair that is drawn; undefined without data. */
    pairOf: (state) => dataset.pairs[state.pair],
    /** `{x, y, genes}` of the genes that are drawn. */
    pointsOf: (state) => points(dataset.pairs[state.pair], state.shown, state.colouring),
    /** Colour and shape of each category. */
    stylesOf: (state) => styles(state.theme, state.colouring),
    /** Whether a gene has a position in the pair that is drawn. */
    isPlaced(state, gene) {
      const pair = dataset.pairs[state.pair];
      return pair !== undefined && Number.isFinite(pair.x[gene]) && Number.isFinite(pair.y[gene]);
    },
  };
}
