/** The genes that are nearest to the focused one in the data, and lines to them on the map. */

import { button, dataText, el } from './dom.js';
import { nameOf } from './dataset.js';

const NEIGHBOURS = 10;

const METRIC_NAMES = {
  euclidean: 'Euclidean distance',
  pearson: 'correlation distance',
  cosine: 'cosine distance',
  spearman: 'rank correlation distance',
};

/**
 * How many of some genes are, on the map, among as many genes nearest to another one.
 *
 * @param {{x: Float64Array, y: Float64Array}} pair coordinates, not finite where there is no position
 */
export function countOnMap({ x, y }, gene, others) {
  const distance = (other) => (x[other] - x[gene]) ** 2 + (y[other] - y[gene]) ** 2;
  const placed = Float64Array.from(x, (_, other) => (other === gene ? NaN : distance(other))).filter(Number.isFinite).sort();
  const reach = placed[Math.min(others.length, placed.length) - 1];
  return others.filter((other) => distance(other) <= reach).length;
}

function neighbourRow(dataset, { gene, distance, correlation }, { choose, format }) {
  const name = button('', () => choose(gene), { class: 'quiet gene-link' });
  name.append(dataText(nameOf(dataset, gene)));
  return el('tr', {}, el('th', { scope: 'row' }, name),
    el('td', { class: 'number' }, format(distance)),
    el('td', { class: 'number' }, Number.isNaN(correlation) ? '' : correlation.toFixed(2)));
}

function drawLines(pen, { pixelOf, ink }, gene, neighbours) {
  const from = pixelOf(gene);
  const places = neighbours.map((neighbour) => pixelOf(neighbour.gene)).filter((place) => place.every(Number.isFinite));
  if (!from.every(Number.isFinite)) return;
  const lines = places.map((place) => [...from, ...place]);
  // A rim in the colour of the paper, so that lines are seen over points of any colour.
  pen.lines(lines, { stroke: ink.surface, width: 3.5 });
  pen.lines(lines, { stroke: ink.text, width: 1.3 });
  const dot = { colour: ink.text, shape: null, size: 6, opacity: 1, edge: null, halo: null };
  for (const [x, y] of places) pen.mark(dot, x, y);
}

/**
 * Fills the element and keeps it true. The lines are drawn while it is unfolded, which it stays from gene to gene.
 *
 * @param {object} ways `choose(gene)` is called for a neighbour that the reader picks, `format(value)` writes a distance
 */
export function showTrueNeighbours(element, chart, model, store, ways) {
  const { dataset } = model;
  const { expression } = dataset;
  let neighbours = [];
  const kept = el('p', { class: 'counts' });
  const lines = el('input', { type: 'checkbox', on: { change: chart.repaintOverlays } });
  lines.checked = true;
  const rows = el('tbody');
  const body = el('details', { hidden: true, on: { toggle: chart.repaintOverlays } },
    el('summary', {}, el('h3', {}, 'Nearest genes in the data')),
    el('p', { class: 'counts' }, `By ${METRIC_NAMES[expression.metric] ?? 'distance'} over all conditions, wherever the map puts them.`),
    kept,
    el('label', { class: 'switch' }, lines, 'Lines to them on the map'),
    el('table', { class: 'neighbours' },
      el('thead', {}, el('tr', {}, ...['Name', 'Distance', 'Correlation'].map((title, column) =>
        el('th', { scope: 'col', class: column > 0 && 'number' }, title)))),
      rows));
  element.append(body);

  function tellKept(state) {
    const isTold = neighbours.length > 0 && model.isPlaced(state, state.focus);
    const count = isTold ? countOnMap(model.pairOf(state), state.focus, neighbours.map(({ gene }) => gene)) : 0;
    kept.textContent = isTold ? `${count} of these ${neighbours.length} are among its ${neighbours.length} nearest on the map, too.` : '';
  }

  function update({ focus }) {
    const hadFocus = rows.contains(document.activeElement);
    neighbours = focus >= 0 ? expression.nearest(focus, NEIGHBOURS) : [];
    body.hidden = neighbours.length === 0;
    tellKept(store.get());
    rows.replaceChildren(...neighbours.map((neighbour) => neighbourRow(dataset, neighbour, ways)));
    if (hadFocus) rows.querySelector('button')?.focus();
    chart.repaintOverlays();
  }

  chart.addDrawing((pen, scene) => {
    const state = store.get();
    if (!body.open || !lines.checked || neighbours.length === 0 || !model.isPlaced(state, state.focus)) return;
    const { shown } = state;
    const { of } = model.categoriesOf(state);
    drawLines(pen, scene, state.focus, neighbours.filter(({ gene }) => shown[of[gene]] === 1 && model.isPlaced(state, gene)));
  });
  store.listen(['focus'], update);
  store.listen(['pair'], tellKept);
  update(store.get());
}
