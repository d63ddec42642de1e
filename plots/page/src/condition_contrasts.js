/** Conditions in which some genes differ most from all others. */

import { meanProfile } from './profiles.js';
import { rankStatistic, rankValues } from './rank_statistic.js';

/** The values of all genes in a column, NaN where missing. */
function columnValues(expression, column) {
  return Float64Array.from({ length: expression.rows }, (_, gene) => expression.value(gene, column));
}

/**
 * Makes the comparison; ranks are worked out once, when first asked for.
 *
 * @param {object} expression as in `profiles.js`, and `value(gene, column)`
 * @returns a function from genes to `[{column, inside, outside, auc, z}]`: the means of the genes and of all
 *   others, and the statistics of `rankStatistic`; those columns first whose `auc` is farthest from 1/2, and
 *   without those where either side has no value
 */
export function createContrasts(expression) {
  let columns = null;
  return (genes) => {
    columns ??= expression.columns.map((_, column) => rankValues(columnValues(expression, column)));
    const chosen = new Set(genes);
    const others = Int32Array.from({ length: expression.rows }, (_, gene) => gene).filter((gene) => !chosen.has(gene));
    const inside = meanProfile(expression, genes);
    const outside = meanProfile(expression, others);
    return columns
      .map((ranking, column) => ({
        column,
        inside: inside[column],
        outside: outside[column],
        ...rankStatistic(ranking, genes),
      }))
      .filter(({ auc }) => auc !== undefined)
      .sort((one, other) => Math.abs(other.auc - 0.5) - Math.abs(one.auc - 0.5) || one.column - other.column);
  };
}
