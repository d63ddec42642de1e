/** The data together with what follows from the reader's choices; each part is worked out once. */

import { categoryStyles } from './palette.js';
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

/**
 * @param {object} dataset as of `readDataset`
 * @param {object} categories as of `findCategories`
 */
export function createModel(dataset, categories) {
  const points = remembered((pair, shown) => ({
    x: pair?.x ?? NO_COORDINATES,
    y: pair?.y ?? NO_COORDINATES,
    genes: pair ? drawnGenes(pair, categories, shown) : new Int32Array(0),
  }));
  const styles = remembered((theme) => categoryStyles(categories.list.length, {
    scheme: dataset.colourScheme,
    own: dataset.colours,
    theme,
  }));
  return {
    dataset,
    categories,
    /** The pair that is drawn; undefined without data. */
    pairOf: (state) => dataset.pairs[state.pair],
    /** `{x, y, genes}` of the genes that are drawn. */
    pointsOf: (state) => points(dataset.pairs[state.pair], state.shown),
    /** Colour and shape of each category. */
    stylesOf: (state) => styles(state.theme),
    /** Whether a gene has a position in the pair that is drawn. */
    isPlaced(state, gene) {
      const pair = dataset.pairs[state.pair];
      return pair !== undefined && Number.isFinite(pair.x[gene]) && Number.isFinite(pair.y[gene]);
    },
  };
}
