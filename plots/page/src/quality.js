/** How far the map can be trusted, as far as the run measured it. */

import { medianOf } from './cluster_facts.js';
import { columnOf, readReliability } from './reliability.js';
import { readStability } from './stability.js';

/** A gene is unreliable where the map keeps less than this share of its nearest neighbours. */
export const LEAST_KEPT = 0.2;

/** A gene is told from noise where its false discovery rate is no more than this, and better than noise where its chance is. */
export const MOST_FALSE = 0.05;

/** A selection of fewer genes is too small to speak of most of it. */
const FEWEST_GENES = 3;

const isShare = (value) => typeof value === 'number' && value >= 0 && value <= 1;

/**
 * Reads what the run measured.
 *
 * @param raw `numbers`: `[name, value, sentence]` each, `neighbours`: how many were looked at, and
 *   `kept`: the share of them that each gene keeps, or none; `reliability` as of `readReliability`, `stability`
 *   as of `readStability`
 * @param {number} count of genes
 * @returns null if there is nothing; else `numbers` (`name`, `value`, `sentence`), `neighbours`, and `kept`
 *   (Float64Array, one per gene), `reliability` and `stability`, null where they were not measured
 */
export function readQuality(raw, count) {
  if (!Array.isArray(raw?.numbers)) return null;
  const numbers = raw.numbers
    .filter((each) => Array.isArray(each) && each.length === 3 && each.every((text) => typeof text === 'string'))
    .map(([name, value, sentence]) => ({ name, value, sentence }));
  const isKept = Array.isArray(raw.kept) && count > 0 && raw.kept.length === count && raw.kept.every(isShare)
    && Number.isInteger(raw.neighbours) && raw.neighbours > 0;
  if (numbers.length === 0 && !isKept) return null;
  return {
    numbers,
    neighbours: isKept ? raw.neighbours : 0,
    kept: isKept ? Float64Array.from(raw.kept) : null,
    reliability: readReliability(raw.reliability, count),
    stability: readStability(raw.stability, count),
  };
}

/**
 * How reliable the places of some genes are.
 *
 * @param {object} quality with `kept`
 * @param {ArrayLike<number>} genes
 * @returns `median` of what they keep, `ofAll`: that of all genes, `unreliable`: how many keep less than
 *   `LEAST_KEPT`, and `isDoubtful`: whether these are most of three genes or more
 */
export function reliabilityOf(quality, genes) {
  const kept = Float64Array.from(genes, (gene) => quality.kept[gene]);
  const unreliable = kept.filter((share) => share < LEAST_KEPT).length;
  return {
    median: medianOf(kept),
    ofAll: medianOf(quality.kept),
    unreliable,
    isDoubtful: kept.length >= FEWEST_GENES && 2 * unreliable > kept.length,
  };
}

/** The false discovery rates of the genes against noise; null where the run did not compare them with noise. */
export const noiseRates = ({ reliability }) => (reliability === null ? null : columnOf(reliability, 'q_kept'));

const isTold = (rates, gene) => rates[gene] <= MOST_FALSE;

/** Of noise this share is better than 95 % of noise; a group of which no more than twice as many are is one that noise gives. */
const MOST_OF_NOISE = 2 * MOST_FALSE;

const noiseChances = ({ reliability }) => (reliability === null ? null : columnOf(reliability, 'p_kept'));

/**
 * Whether noise would give some genes as well. The chances of single genes tell: of noise 5 % are 0.05 or less, whatever else
 * the map holds, while false discovery rates follow from all genes.
 *
 * @param {object} quality as of `readQuality`
 * @param {ArrayLike<number>} genes
 * @returns null where the run did not compare them with noise; else `better`: how many are better than 95 % of noise,
 *   `ofAll`: which share of all genes is, and `isAsNoise`: whether no more of three genes or more are than noise might have
 */
export function noiseOf(quality, genes) {
  const chances = noiseChances(quality);
  if (chances === null) return null;
  const better = Array.from(genes).filter((gene) => chances[gene] <= MOST_FALSE).length;
  return {
    better,
    ofAll: chances.filter((chance) => chance <= MOST_FALSE).length / chances.length,
    isAsNoise: genes.length >= FEWEST_GENES && better <= MOST_OF_NOISE * genes.length,
  };
}

/** What the genes are against noise, in the words of the legend. */
export const NOISE_LABELS = ['told from noise', 'better than 95 % of noise', 'as noise'];

/** For each gene one of these words; null where the run did not compare them with noise. */
export function noiseLabels(quality) {
  const rates = noiseRates(quality);
  const chances = noiseChances(quality);
  if (rates === null || chances === null) return null;
  const [told, better, asNoise] = NOISE_LABELS;
  return Array.from(rates, (_, gene) => {
    if (isTold(rates, gene)) return told;
    return chances[gene] <= MOST_FALSE ? better : asNoise;
  });
}

/**
 * The genes whose place says little: against noise those that are not told from it, else those that keep too few of their
 * nearest neighbours.
 *
 * @param {object} quality as of `readQuality`, with `kept` and `reliability`
 * @returns {Int32Array} ascending
 */
export function doubtfulGenes(quality) {
  const { kept, reliability } = quality;
  const rates = noiseRates(quality);
  const isDoubtful = rates ? (gene) => !isTold(rates, gene) : (gene) => kept !== null && kept[gene] < LEAST_KEPT;
  return Int32Array.from(reliability.torn.keys()).filter(isDoubtful);
}
