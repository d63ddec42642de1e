/** The false and torn neighbours of the gene that is pointed at, and fading genes whose place says little. */

import { button, dataText, el } from './dom.js';
import { dashes } from './reliability.js';
import { counted, formatCount } from './format.js';
import { doubtfulGenes, noiseRates } from './quality.js';
import { nameOf } from './dataset.js';

/** Pixels of the chart that a line may reach at most, however far its end lies beyond the view. */
const REACH = 4000;

function lineTo([x0, y0], [x1, y1]) {
  const length = Math.hypot(x1 - x0, y1 - y0);
  const share = length > REACH ? REACH / length : 1;
  return [x0, y0, x0 + (x1 - x0) * share, y0 + (y1 - y0) * share];
}

function drawLines(pen, { pixelOf, ink }, gene, { falselyNear, torn }, isDrawn) {
  const from = pixelOf(gene);
  if (!from.every(Number.isFinite)) return;
  const linesTo = (others) => others.filter(isDrawn).map((other) => lineTo(from, pixelOf(other)));
  const tornLines = linesTo(torn[gene]);
  const falseLines = linesTo(falselyNear[gene]);
  const pieces = falseLines.flatMap((line) => dashes(line));
  // A rim in the colour of the paper, so that lines are seen over points of any colour.
  pen.lines([...tornLines, ...pieces], { stroke: ink.surface, width: 3.5 });
  pen.lines(tornLines, { stroke: ink.accent, width: 1.5 });
  pen.lines(pieces, { stroke: ink.text, width: 1.5 });
  const dot = { shape: null, size: 6, opacity: 1, edge: null, halo: null };
  for (const [, , x, y] of tornLines) pen.mark({ ...dot, colour: ink.accent }, x, y);
  for (const [, , x, y] of falseLines) pen.mark({ ...dot, colour: ink.surface, edge: ink.text }, x, y);
}

/** Genes as buttons, between commas. */
function geneButtons(dataset, genes, choose) {
  return genes.flatMap((gene, at) => {
    const name = button('', () => choose(gene), { class: 'quiet gene-link' });
    name.append(dataText(nameOf(dataset, gene)));
    return at === 0 ? [name] : [', ', name];
  });
}

function showLists(element, model, store, choose) {
  const { dataset } = model;
  const { reliability } = dataset.quality;
  store.listen(['focus'], ({ focus }) => {
    element.hidden = focus < 0;
    if (focus < 0) return;
    const line = (title, genes) => el('p', { class: 'counts' }, `${title} of `, dataText(nameOf(dataset, focus)), ': ',
      ...(genes.length > 0 ? geneButtons(dataset, genes, choose) : ['none']), '.');
    element.replaceChildren(
      line('False neighbours', reliability.falselyNear[focus]),
      line('Torn neighbours', reliability.torn[focus]),
    );
  });
}

/** The switch that fades doubtful genes, with what they are. */
function fadeSwitch(model, store) {
  const { quality } = model.dataset;
  const doubtful = doubtfulGenes(quality);
  const box = el('input', {
    type: 'checkbox',
    on: { change: () => store.set({ faded: box.checked ? doubtful : null }) },
  });
  const what = noiseRates(quality) !== null ? 'that are not told from noise' : 'that keep few of their neighbours';
  return el('label', { class: 'switch' }, box,
    `Fade ${counted(doubtful.length, 'gene', 'genes')} ${what}, of ${formatCount(quality.reliability.torn.length)}`);
}

/**
 * Fills an element of the panel of trust where the run tells something of each gene. The lines follow the pointer, and
 * stay at the gene that is focused.
 */
export function showMisplaced(element, chart, model, store, choose) {
  const { reliability } = model.dataset.quality;
  const lines = el('input', { type: 'checkbox', on: { change: chart.repaintOverlays } });
  const lists = el('div', { hidden: true });
  for (const { title, values } of reliability.columns) model.addColouring({ title, numbers: values, diverging: false });
  element.append(
    fadeSwitch(model, store),
    el('label', { class: 'switch' }, lines, 'Lines to the false and torn neighbours of the gene pointed at'),
    el('p', { class: 'counts' }, `Dashed to false neighbours: among the ${reliability.near} nearest on the map, not among the `
      + `${reliability.far} nearest in the data. Solid to torn ones: among the ${reliability.near} nearest in the data, not among `
      + `the ${reliability.far} nearest on the map. The list of colours has all that is known of each gene.`),
    lists,
  );
  showLists(lists, model, store, choose);
  chart.addDrawing((pen, scene) => {
    const state = store.get();
    const gene = state.hover >= 0 ? state.hover : state.focus;
    if (!lines.checked || gene < 0 || !model.isPlaced(state, gene)) return;
    const { of } = model.categoriesOf(state);
    const isDrawn = (other) => state.shown[of[other]] === 1 && model.isPlaced(state, other);
    drawLines(pen, scene, gene, reliability, isDrawn);
  });
  store.listen(['hover', 'focus'], () => {
    if (lines.checked) chart.repaintOverlays();
  });
}
