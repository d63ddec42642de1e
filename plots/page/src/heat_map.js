/** The heat map of the selection: a line per gene, ordered by likeness, and a column per condition. */

import { button, dataText, debounced, el } from './dom.js';
import { counted, fileStem, formatCount } from './format.js';
import { download } from './files.js';
import { createHeatFrame } from './heat_frame.js';
import { heatKey } from './heat_key.js';
import { colourReach, isAroundZero, lineValues } from './heat_lines.js';
import { heatTable } from './heat_table.js';
import { nameOf } from './dataset.js';
import { orderGenes } from './row_order.js';
import { tabTable } from './csv.js';
import { inkOf } from './theme.js';

/** Up to so many genes have their names beside them at first. */
const MOST_NAMED = 40;
const PAUSE_MILLISECONDS = 40;
const MOST_NAMES_SAID = 3;

/** The page has values with no more digits than these. */
const VALUE_DIGITS = 5;

const WAYS = 'Point at a line to light its genes on the map, click it to go there; arrow keys and Enter do the same.';

/** Before the first line and column, so that the first key leads to these. */
const NOWHERE = { line: -1, column: -1 };

/** How many genes there are, and what was done to show so many. */
function leadText({ genes, clustered, columns }, { perLine }) {
  const sentences = [`${counted(genes.length, 'gene')} in ${counted(columns.length, 'condition')}.`];
  sentences.push(clustered < genes.length
    ? `Too many to cluster one by one: ${formatCount(clustered)} are, the others stand beside those that they are most like.`
    : 'Ordered by average linkage on correlation.');
  if (perLine > 1) sentences.push(`Each line is the mean of ${formatCount(perLine)} genes.`);
  return sentences.join(' ');
}

/** What is told of a place: whose line it is, and the value in its column. */
function placeText(model, scene, layout, { line, column }) {
  const { expression, genes, columns, centred, format } = scene;
  const own = Array.from(genes.subarray(line * layout.perLine, (line + 1) * layout.perLine), (gene) => nameOf(model.dataset, gene));
  const names = own.slice(0, MOST_NAMES_SAID).join(', ');
  const who = own.length > MOST_NAMES_SAID ? `${names} and ${formatCount(own.length - MOST_NAMES_SAID)} more` : names;
  if (column < 0) return who;
  const value = lineValues(expression, genes, { perLine: layout.perLine, centred }, line, line + 1)[column];
  return `${who}; ${columns[column]}: ${format(value)}`;
}

/** The values of the genes as they are, in their order, as tab-separated text; what is missing is empty. */
function valueTable(expression, genes, geneNames) {
  return tabTable([
    ['name', ...expression.columns],
    ...Array.from(genes, (gene, line) => [geneNames[line], ...Array.from(expression.profile(gene), (value) => Number(value.toPrecision(VALUE_DIGITS)))]),
  ]);
}

/** What the heat map shows now. */
function createScene(model, store, format) {
  const { expression } = model.dataset;
  const reaches = [false, true].map((centred) => () => colourReach(expression, centred));
  const known = [];
  let scene = { genes: new Int32Array(0), clustered: 0, geneNames: [] };
  let lineOf = new Map();
  const own = { isNamed: true, centred: !isAroundZero(expression) };
  return {
    /** Orders the chosen genes anew. */
    order() {
      const { selection } = store.get();
      const ordered = orderGenes(expression, selection);
      scene = { ...ordered, geneNames: Array.from(ordered.genes, (gene) => nameOf(model.dataset, gene)) };
      lineOf = new Map(Array.from(scene.genes, (gene, line) => [gene, line]));
      own.isNamed = selection.length <= MOST_NAMED;
    },
    change: (patch) => Object.assign(own, patch),
    /** The number of a gene in the order; undefined if it is not shown. */
    placeOf: (gene) => lineOf.get(gene),
    get() {
      const which = Number(own.centred);
      known[which] ??= reaches[which]();
      return { ...scene, ...own, expression, columns: expression.columns, format, reach: known[which], ink: inkOf(store.get().theme) };
    },
  };
}

function ringGenes(context, pixelOf, ink, genes) {
  context.strokeStyle = ink.text;
  context.lineWidth = 1.5;
  for (const gene of genes) {
    const [x, y] = pixelOf(gene);
    context.beginPath();
    context.arc(x, y, 5, 0, 2 * Math.PI);
    context.stroke();
  }
}

/** Moves a cursor over lines and columns by keys; `act` is told of each move, `choose` of Enter. */
function followKeys(frame, cursor, scene, act, choose) {
  frame.element.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey || scene.get().genes.length === 0) return;
    const { lines, rowHeight, top } = frame.layout();
    const page = Math.max(1, Math.floor((frame.element.clientHeight - top) / rowHeight) - 1);
    const steps = {
      ArrowDown: [1, 0], ArrowUp: [-1, 0], ArrowRight: [0, 1], ArrowLeft: [0, -1],
      PageDown: [page, 0], PageUp: [-page, 0], Home: [-lines, 0], End: [lines, 0],
    };
    if (event.key === 'Enter') {
      event.preventDefault();
      choose(cursor.line);
    } else if (Object.hasOwn(steps, event.key)) {
      event.preventDefault();
      const [down, right] = steps[event.key];
      const columns = scene.get().columns.length;
      cursor.line = Math.max(0, Math.min(lines - 1, cursor.line + down));
      cursor.column = Math.max(0, Math.min(columns - 1, cursor.column + right));
      act();
    }
  });
}

/**
 * Fills the section and keeps it true.
 *
 * @param {object} ways `choose(gene)` is called for the gene that the reader picks, `say(text)` tells screen readers of
 *   the place that the keys have come to, and `format(value)` writes a value
 */
export function showHeatMap(element, chart, model, store, { choose, say, format }) {
  const scene = createScene(model, store, format);
  const cursor = { ...NOWHERE };
  const lead = el('p', { class: 'counts heat-lead' });
  const readout = el('p', { class: 'heat-readout', 'aria-hidden': 'true' }, WAYS);
  const key = heatKey();
  const frame = createHeatFrame({
    role: 'application',
    'aria-roledescription': 'heat map',
    'aria-label': 'Profiles of the selection',
    'aria-describedby': 'heat-help',
  });
  const named = button('Names', () => change({ isNamed: !scene.get().isNamed }), { title: 'A line for each gene, with its name, or all genes at once' });
  const centred = button('Less the mean', () => change({ centred: !scene.get().centred }), { title: 'Each value less the mean of its gene' });
  function save() {
    const { expression, genes, geneNames } = scene.get();
    const table = new Blob([valueTable(expression, genes, geneNames)], { type: 'text/tab-separated-values' });
    download(table, `${fileStem(model.dataset.name)}_profiles.tsv`);
  }
  const saved = button('Download TSV', save, { title: 'The values of the selection, in the order shown' });
  const hint = el('p', { class: 'hint' }, 'Select genes in the chart, by a search or from a set, to see their profiles here side by side.');
  const table = heatTable(model, scene, choose);
  const body = el('div', {},
    el('div', { class: 'row heat-tools' }, named, centred, saved, key.element),
    lead,
    frame.element,
    readout,
    el('p', { id: 'heat-help', class: 'unseen' }, 'Arrow keys move over genes and conditions, Enter goes to the gene. The same values stand in the table below.'),
    table.element);
  const heading = el('h2', {}, 'Profiles of the selection');

  // The genes of a line that stands for several; one gene alone is lit as any gene that is pointed at.
  let lit = [];
  chart.addOverlay((context, { pixelOf, ink }) => ringGenes(context, pixelOf, ink, lit));

  const genesOfLine = (line) => {
    const { perLine } = frame.layout();
    return scene.get().genes.subarray(line * perLine, (line + 1) * perLine);
  };

  function mark() {
    if (!body.isConnected) return;
    const { hover, focus } = store.get();
    const { perLine } = frame.layout();
    const places = [hover, focus].map(scene.placeOf).filter((place) => place !== undefined);
    frame.mark(places.map((place) => Math.floor(place / perLine)), cursor.line >= 0 ? cursor : null);
  }

  function show() {
    const now = scene.get();
    const shown = now.genes.length > 0 ? body : hint;
    if (!shown.isConnected) element.replaceChildren(heading, shown);
    if (shown === hint) return;
    frame.show(now);
    named.setAttribute('aria-pressed', String(now.isNamed));
    centred.setAttribute('aria-pressed', String(now.centred));
    lead.textContent = leadText(now, frame.layout());
    key.show(now);
    table.show();
    mark();
  }

  function leave() {
    Object.assign(cursor, NOWHERE);
    readout.textContent = WAYS;
  }

  function change(patch) {
    scene.change(patch);
    leave();
    show();
  }

  /** Lights the genes of a place on the map, and tells of them. */
  function pointAt(place) {
    readout.replaceChildren(place ? dataText(placeText(model, scene.get(), frame.layout(), place)) : WAYS);
    const genes = place ? genesOfLine(place.line) : [];
    lit = genes.length > 1 ? genes : [];
    store.set({ hover: genes[0] ?? -1 });
    chart.repaintOverlays();
  }

  function pick(line) {
    const genes = line >= 0 ? genesOfLine(line) : [];
    if (genes.length === 1) {
      choose(genes[0]);
    } else if (genes.length > 1) {
      const place = scene.placeOf(genes[0]);
      change({ isNamed: true });
      frame.reveal(place, -1);
    }
  }

  followKeys(frame, cursor, scene, () => {
    frame.reveal(cursor.line, cursor.column);
    pointAt(cursor);
    mark();
    say(placeText(model, scene.get(), frame.layout(), cursor));
  }, pick);
  frame.element.addEventListener('pointermove', (event) => {
    if (event.pointerType === 'mouse') pointAt(frame.placeOf(event));
  });
  frame.element.addEventListener('pointerleave', () => pointAt(null));
  frame.element.addEventListener('blur', () => {
    leave();
    pointAt(null);
    mark();
  });
  frame.element.addEventListener('click', (event) => pick(frame.placeOf(event)?.line ?? -1));

  // The map shows the selection first; then the genes are ordered.
  store.listen(['selection'], debounced(() => {
    scene.order();
    leave();
    show();
  }, PAUSE_MILLISECONDS));
  store.listen(['theme'], show);
  store.listen(['hover', 'focus'], mark);
  let width = element.clientWidth;
  new ResizeObserver(debounced(() => {
    if (element.clientWidth === width) return;
    width = element.clientWidth;
    show();
  }, PAUSE_MILLISECONDS)).observe(element);
  scene.order();
  show();
}
