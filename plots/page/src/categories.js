/** Sorting genes by their labels. */

import { formatCoordinate } from './format.js';
import { isNoLabel } from './numeric_labels.js';

/** More labels than this share the last entry of the legend. */
export const MOST_CATEGORIES = 500;

/** So many steps of colour stand for the range of numbers. */
export const NUMBER_LEVELS = 64;

const EMPTY_LABEL = '(no label)';

const isNumber = (text) => text.trim() !== '' && Number.isFinite(Number(text));

/**
 * The labels in the order of the legend: the stated ones first, then the others, of which those that
 * say "none" come last. `position` is that in which they are stated or appear.
 */
function orderedTexts(labels, order, isGrey) {
  const present = new Set(labels);
  const stated = new Set(order.filter((label) => present.has(label)));
  const all = [...new Set([...stated, ...labels])].map((text, position) => ({ text, position, grey: isGrey(text) }));
  const first = all.filter(({ text, grey }) => stated.has(text) || !grey);
  if (stated.size === 0 && first.every(({ text }) => isNumber(text))) {
    first.sort((a, b) => Number(a.text) - Number(b.text));
  }
  return [...first, ...all.filter(({ text, grey }) => grey && !stated.has(text))];
}

/**
 * Finds the categories of the genes.
 *
 * @param {string[]} labels one per gene, or empty
 * @param {string[]} order labels that come first, in this order; others follow as they appear, or by
 *   their value if all are numbers and there is no order
 * @param {number} count number of genes
 * @param {string} background the label of genes that step back; empty for none
 * @param {string} [rest] the one label that steps back, in the place of it and of those that say "none"
 * @returns `list` with `text` and `count` of each category, whether it is `grey`: of genes that step
 *   back, or belong to none of the others, which lie beneath and, unless ordered otherwise, come last,
 *   and its `position` in the order of the colours that are given; `of` (category of each gene), and
 *   `labelled`: whether there is anything to tell apart
 */
export function findCategories(labels, order, count, background = '', rest = undefined) {
  const of = new Uint16Array(count);
  if (labels.every((label) => label === '')) {
    return { list: [{ text: 'all genes', count, grey: false, position: 0 }], of, labelled: false, scale: null };
  }
  const isGrey = (text) => (rest === undefined ? isNoLabel(text) || (background !== '' && text === background) : text === rest);
  const texts = orderedTexts(labels, order, isGrey);
  const named = texts.length > MOST_CATEGORIES ? texts.slice(0, MOST_CATEGORIES - 1) : texts;
  const list = named.map(({ text, grey, position }) => ({ text: text || EMPTY_LABEL, count: 0, grey, position }));
  if (named.length < texts.length) {
    const rest = texts.length - named.length;
    list.push({ text: `${rest} other labels`, count: 0, grey: true, position: texts.length });
  }
  const index = new Map(texts.map(({ text }, at) => [text, Math.min(at, list.length - 1)]));
  labels.forEach((label, gene) => {
    of[gene] = index.get(label);
    list[of[gene]].count += 1;
  });
  return { list, of, labelled: true, scale: null };
}

/** From so many numbers on, the outermost hundredths share the colours of the ends. */
const FEWEST_FOR_PERCENTILES = 100;

function quantile(sorted, share) {
  const at = share * (sorted.length - 1);
  const below = Math.floor(at);
  const above = Math.min(below + 1, sorted.length - 1);
  return sorted[below] * (1 - (at - below)) + sorted[above] * (at - below);
}

/**
 * The range of numbers that colours are spread over.
 *
 * @param {Float64Array} known finite
 * @param {boolean|undefined} diverging as of `findLevels`
 * @returns `least` and `most`, where the colours end; `lowest` and `highest` of all numbers;
 *   `diverging`: whether 0 is in the middle
 */
function scaleOf(known, diverging) {
  const sorted = known.slice().sort();
  const [lowest, highest] = [sorted[0], sorted[sorted.length - 1]];
  let [least, most] = [lowest, highest];
  if (sorted.length >= FEWEST_FOR_PERCENTILES) {
    const [first, last] = [quantile(sorted, 0.01), quantile(sorted, 0.99)];
    if (last > first) [least, most] = [first, last];
  }
  if (!(diverging ?? (least < 0 && most > 0))) return { least, most, lowest, highest, diverging: false };
  const reach = Math.max(Math.abs(least), Math.abs(most));
  return { least: -reach, most: reach, lowest, highest, diverging: true };
}

function levelTexts({ least, most, lowest, highest }, at) {
  return Array.from({ length: NUMBER_LEVELS }, (_, level) => {
    const first = level === 0 && lowest < least ? lowest : at(level);
    const last = level === NUMBER_LEVELS - 1 && highest > most ? highest : at(level + 1);
    return `${formatCoordinate(first)} to ${formatCoordinate(last)}`;
  });
}

/**
 * Finds the categories of genes that have numbers: equal steps from the least to the most, then those
 * without a number, if there are any. Of a hundred numbers or more, the colours end at the 1st and the
 * 99th percentile, so that a few far ones do not take the colours from the others.
 *
 * @param {Float64Array} numbers one per gene, NaN for none
 * @param {string} background the label of genes that step back, which have no number; empty for none
 * @param {boolean} [diverging] whether the scale has 0 in its middle and ends equally far from it; not
 *   given: where numbers of both signs are within the percentiles
 * @returns as `findCategories`, and the `scale`: `least` and `most`, where the colours end, `lowest` and
 *   `highest` of all numbers, and whether it is `diverging`
 */
export function findLevels(numbers, background = '', diverging = undefined) {
  const known = numbers.filter(Number.isFinite);
  if (known.length === 0) return findCategories([], [], numbers.length);
  const scale = scaleOf(known, diverging);
  const { least, most } = scale;
  // Halves, so that the range of the largest numbers is finite.
  const width = most / 2 - least / 2;
  const at = (level) => least + (level / NUMBER_LEVELS) * width * 2;
  const list = levelTexts(scale, at).map((text) => ({ text, count: 0, grey: false }));
  if (known.length < numbers.length) {
    list.push({ text: background ? `${background} or no number` : 'no number', count: 0, grey: true });
  }
  const of = Uint16Array.from(numbers, (number) => {
    if (!Number.isFinite(number)) return NUMBER_LEVELS;
    const share = width > 0 ? (number / 2 - least / 2) / width : 0.5;
    return Math.min(Math.max(Math.floor(share * NUMBER_LEVELS), 0), NUMBER_LEVELS - 1);
  });
  of.forEach((level) => {
    list[level].count += 1;
  });
  return { list, of, labelled: true, scale };
}
