/** The data that the page was written with, checked and brought into typed arrays. */

import { readExpression } from './expression.js';
import { numbersOf } from './numeric_labels.js';
import { readQuality } from './quality.js';
import { readTerms } from './terms.js';

const DEFAULT_LAYOUT = {
  margins: [30, 180, 75, 120],
  legendWidth: 130,
  xTickTurn: 90,
  yTitleTurn: -90,
  tickDecimals: 0,
  grid: true,
};

const asList = (value) => (Array.isArray(value) ? value : []);
const asText = (value) => (value === null || value === undefined ? '' : String(value));
const asTexts = (value) => asList(value).map(asText);

function readLayout(raw) {
  const layout = { ...DEFAULT_LAYOUT };
  for (const key of Object.keys(DEFAULT_LAYOUT)) {
    if (raw && typeof raw[key] === typeof DEFAULT_LAYOUT[key]) layout[key] = raw[key];
  }
  const margins = asList(layout.margins);
  layout.margins = DEFAULT_LAYOUT.margins.map((margin, side) =>
    Number.isFinite(margins[side]) && margins[side] >= 0 ? margins[side] : margin);
  return layout;
}

function readCoordinates(raw, count) {
  const values = new Float64Array(count).fill(NaN);
  asList(raw).slice(0, count).forEach((value, index) => {
    if (typeof value === 'number') values[index] = value;
  });
  return values;
}

/** Smallest and largest coordinates of the finite points, or null if there are none. */
function extentOf(x, y) {
  let found = null;
  for (let i = 0; i < x.length; i += 1) {
    if (Number.isFinite(x[i]) && Number.isFinite(y[i])) {
      found ??= { x0: x[i], x1: x[i], y0: y[i], y1: y[i] };
      if (x[i] < found.x0) found.x0 = x[i];
      if (x[i] > found.x1) found.x1 = x[i];
      if (y[i] < found.y0) found.y0 = y[i];
      if (y[i] > found.y1) found.y1 = y[i];
    }
  }
  return found;
}

function readPair(raw, count) {
  const x = readCoordinates(raw.x, count);
  const y = readCoordinates(raw.y, count);
  let placed = 0;
  for (let i = 0; i < count; i += 1) if (Number.isFinite(x[i]) && Number.isFinite(y[i])) placed += 1;
  return {
    group: asText(raw.group),
    xTitle: asText(raw.xTitle),
    yTitle: asText(raw.yTitle),
    x,
    y,
    placed,
    extent: extentOf(x, y),
  };
}

/** What genes may be coloured by: `labels` of each, and `numbers` where these are a quantity. */
function readColourings(raw, count, labels) {
  const columns = asList(raw).filter((column) => asList(column?.texts).length === count).map((column) => {
    const texts = asTexts(column.texts);
    const isNumeric = asList(column.numbers).length === count;
    return {
      title: asText(column.title),
      labels: texts,
      numbers: isNumeric ? readCoordinates(column.numbers, count) : numbersOf(texts),
    };
  });
  return columns.length > 0 ? columns : [{ title: '', labels, numbers: numbersOf(labels) }];
}

/** What each gene is called besides: null where nothing is known, or of no gene at all. */
function readAliases(raw, count) {
  if (asList(raw).length !== count) return null;
  const genes = asList(raw).map((entry) => {
    const [systematic = '', sgd = '', aliases = ''] = asTexts(entry);
    return systematic === '' ? null : { systematic, sgd, aliases: aliases.split('|').filter((alias) => alias !== '') };
  });
  return genes.some((gene) => gene !== null) ? genes : null;
}

/** Sets with a name and at least one gene, of whose names all genes are meant that carry them. */
function readSets(raw, names) {
  const listed = asList(raw).filter((set) => asText(set?.name) !== '');
  if (listed.length === 0) return [];
  const genesOf = new Map();
  names.forEach((name, gene) => {
    if (genesOf.has(name)) genesOf.get(name).push(gene);
    else genesOf.set(name, [gene]);
  });
  return listed.map(({ name, colour, genes }) => ({
    name: asText(name),
    colour: asText(colour),
    genes: Int32Array.from(new Set(asTexts(genes).flatMap((gene) => genesOf.get(gene) ?? []))).sort(),
  })).filter(({ genes }) => genes.length > 0);
}

/**
 * Reads the page's data.
 *
 * @param {string} text JSON as the program wrote it
 * @returns texts as they came; per pair `x` and `y` (Float64Array, `count` long, NaN = no position),
 *   `placed` (number of points with a position) and `extent`; `names`, `functions`, `genes` (the name
 *   that the gene table has, where it is another) and the `labels` of each of the `colourings`, of which
 *   there is at least one, are `count` long or empty; `background` is the label of genes that step back;
 *   `aliases` is null, or has null or `systematic`, `sgd` and `aliases` (texts) of each gene; `sets` have
 *   a `name`, a `colour` ("#rrggbb" or anything else) and `genes` (ascending); `expression` is what the map was made of (`readExpression`), or null;
 *   `terms` as of `readTerms`; `quality` as of `readQuality`
 * @throws {SyntaxError} if the text is no JSON
 */
export function readDataset(text) {
  const raw = JSON.parse(text);
  const count = Number.isInteger(raw.pointCount) && raw.pointCount > 0 ? raw.pointCount : 0;
  const perPoint = (value) => (asList(value).length === count ? asTexts(value) : []);
  return {
    title: asText(raw.title),
    name: asText(raw.name),
    texts: asTexts(raw.texts).filter((line) => line !== ''),
    parameters: asList(raw.parameters).map((pair) => asTexts(pair)),
    layout: readLayout(raw.layout),
    showLabels: raw.showLabels === true,
    colourScheme: asText(raw.colourScheme),
    categoryOrder: asTexts(raw.categoryOrder),
    colours: asTexts(raw.colours),
    links: asTexts(raw.links),
    count,
    pairs: asList(raw.pairs).map((pair) => readPair(pair, count)),
    names: perPoint(raw.names),
    functions: perPoint(raw.functions),
    genes: perPoint(raw.genes),
    aliases: readAliases(raw.aliases, count),
    sets: readSets(raw.sets, perPoint(raw.names)),
    background: asText(raw.background),
    colourings: readColourings(raw.labelColumns, count, perPoint(raw.labels)),
    terms: readTerms(raw.terms, count),
    expression: readExpression(raw.matrix, count),
    quality: readQuality(raw.quality, count),
  };
}

/** The name of a gene, or its number where the data hold no names. */
export function nameOf(dataset, gene) {
  return dataset.names.length > 0 ? dataset.names[gene] : `row ${gene + 1}`;
}
