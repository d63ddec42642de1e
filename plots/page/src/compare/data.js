/** The data that the comparison was written with, checked and brought into typed arrays. */

import { bytesOf } from '../base64.js';

const asList = (value) => (Array.isArray(value) ? value : []);
const asText = (value) => (value === null || value === undefined ? '' : String(value));
const asTexts = (value) => asList(value).map(asText);

/** Stands for a gene that a map does not have. */
const NO_PLACE = 0xffff;

/** The other numbers of 16 bits span the window of a map. */
const STEPS = 65534;

/** The genes of a map that have a place, ascending. */
function placedGenes(x) {
  const genes = [];
  x.forEach((value, gene) => {
    if (Number.isFinite(value)) genes.push(gene);
  });
  return Int32Array.from(genes);
}

function readRun(raw, count) {
  const x = new Float64Array(count).fill(NaN);
  const y = new Float64Array(count).fill(NaN);
  const bytes = bytesOf(asText(raw?.places));
  const window = asList(raw?.window);
  if (bytes?.length === 4 * count && window.length === 4 && window.every(Number.isFinite)) {
    const [x0, x1, y0, y1] = window;
    const step = (at) => bytes[at] + 256 * bytes[at + 1];
    for (let gene = 0; gene < count; gene += 1) {
      const [right, up] = [step(4 * gene), step(4 * gene + 2)];
      if (right !== NO_PLACE && up !== NO_PLACE) {
        x[gene] = x0 + (x1 - x0) * (right / STEPS);
        y[gene] = y0 + (y1 - y0) * (up / STEPS);
      }
    }
  }
  return { title: asText(raw?.title), x, y, genes: placedGenes(x) };
}

/** What all maps span together, with some room around; the same for x and y where a map has no width. */
function windowOf(runs) {
  let found = null;
  for (const { x, y, genes } of runs) {
    for (const gene of genes) {
      found ??= { x0: x[gene], x1: x[gene], y0: y[gene], y1: y[gene] };
      found.x0 = Math.min(found.x0, x[gene]);
      found.x1 = Math.max(found.x1, x[gene]);
      found.y0 = Math.min(found.y0, y[gene]);
      found.y1 = Math.max(found.y1, y[gene]);
    }
  }
  if (found === null) return { x0: -1, x1: 1, y0: -1, y1: 1 };
  const room = 0.04 * Math.max(found.x1 - found.x0, found.y1 - found.y0) || 1;
  return { x0: found.x0 - room, x1: found.x1 + room, y0: found.y0 - room, y1: found.y1 + room };
}

function readColourings(raw, count) {
  return asList(raw).filter((column) => asList(column?.texts).length === count).map((column) => {
    const numbers = asList(column.numbers);
    return {
      title: asText(column.title),
      labels: asTexts(column.texts),
      numbers: numbers.length === count
        ? Float64Array.from(numbers, (value) => (typeof value === 'number' ? value : NaN))
        : null,
    };
  });
}

const numberOrNone = (value) => (typeof value === 'number' ? value : NaN);

/** The choice of a perplexity, one per run; null without one. */
function readChoice(raw, runs) {
  const perplexities = asList(raw?.perplexities).filter((value) => Number.isFinite(value) && value > 0);
  const curves = asList(raw?.curves)
    .map(({ name, shares }) => ({ name: asText(name), shares: Float64Array.from(asList(shares), numberOrNone) }))
    .filter(({ shares }) => shares.length === runs);
  if (perplexities.length !== runs || runs === 0 || curves.length === 0) return null;
  return {
    perplexities,
    curves,
    ofNoise: numberOrNone(raw.ofNoise),
    recommended: perplexities.indexOf(raw.recommended),
  };
}

/**
 * Reads the page's data.
 *
 * @param {string} text JSON as the program wrote it
 * @returns `names`, `functions` and `genes` (the name that the gene table has, where it is another),
 *   `count` long or empty; `colourings` with `labels` and, of quantities, `numbers`; `runs`, each with
 *   `title`, `x` and `y` (Float64Array, `count` long, NaN = not in this map) and `genes`, the ascending
 *   numbers of those that have a place; the `reference` among them, and the `window` that holds all maps;
 *   the `choice` of a perplexity, or null: `perplexities`, one per run and ascending, `curves` with `name` and
 *   `shares` (0 to 1, NaN = not measured), `ofNoise` (or NaN), and which run is `recommended`, or -1
 * @throws {SyntaxError} if the text is no JSON
 */
export function readComparison(text) {
  const raw = JSON.parse(text);
  const count = Number.isInteger(raw.pointCount) && raw.pointCount > 0 ? raw.pointCount : 0;
  const perGene = (value) => (asList(value).length === count ? asTexts(value) : []);
  const runs = asList(raw.runs).map((run) => readRun(run, count));
  const reference = Number.isInteger(raw.reference) && raw.reference in runs ? raw.reference : 0;
  return {
    title: asText(raw.title),
    name: asText(raw.name),
    count,
    names: perGene(raw.names),
    functions: perGene(raw.functions),
    genes: perGene(raw.genes),
    colourings: readColourings(raw.labelColumns, count),
    runs,
    reference,
    window: windowOf(runs),
    choice: readChoice(raw.choice, runs.length),
  };
}

/** The titles of the runs whose maps do not have a gene. */
export function runsWithout(comparison, gene) {
  return comparison.runs.filter((run) => !Number.isFinite(run.x[gene])).map((run) => run.title);
}
