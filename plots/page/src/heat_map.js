/** The heat map of the selection: a line per gene, ordered by likeness, and a column per condition. */

import { button, dataText, debounced, el } from './dom.js';
import { fileStem } from './format.js';
import { download } from './files.js';
import { createHeatFrame } from './heat_frame.js';
import { followHeat } from './heat_pointing.js';
import { heatKey } from './heat_key.js';
import { createScene, leadText, placeText, valueTable } from './heat_scene.js';
import { heatTable } from './heat_table.js';
import { inkOf } from './theme.js';

const PAUSE_MILLISECONDS = 40;

const WAYS = 'Point to light a gene, click to go to it.';

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

/** Calls back after the element has another width. */
function onNewWidth(element, action) {
  let width = element.clientWidth;
  new ResizeObserver(debounced(() => {
    if (element.clientWidth === width) return;
    width = element.clientWidth;
    action();
  }, PAUSE_MILLISECONDS)).observe(element);
}

/** The parts of the section; `change(patch)` is called when the reader wants to see the scene another way. */
function createParts(model, scene, { change, choose }) {
  const save = () => download(
    new Blob([valueTable(scene.get())], { type: 'text/tab-separated-values' }),
    `${fileStem(model.dataset.name)}_profiles.tsv`,
  );
  const parts = {
    heading: el('h2', {}, 'Profiles of the selection'),
    hint: el('p', { class: 'hint' }, 'Select genes in the chart, by a search or from a set, to see their profiles here side by side.'),
    named: button('Names', () => change({ isNamed: !scene.get().isNamed }), { title: 'A line for each gene, with its name, or all genes at once' }),
    centred: button('Less the mean', () => change({ centred: !scene.get().centred }), { title: 'Each value less the mean of its gene' }),
    key: heatKey(),
    lead: el('p', { class: 'counts heat-lead' }),
    frame: createHeatFrame({
      role: 'application',
      'aria-roledescription': 'heat map',
      'aria-label': 'Profiles of the selection',
      'aria-describedby': 'heat-help',
    }),
    // Screen readers are told by the status line.
    readout: el('p', { class: 'heat-readout', 'aria-hidden': 'true' }, WAYS),
    table: heatTable(model, scene, choose),
  };
  const saved = button('Download TSV', save, { title: 'The values of the selection, in the order shown' });
  const body = el('div', {},
    el('div', { class: 'row heat-tools' }, parts.named, parts.centred, saved, parts.key.element),
    parts.lead,
    parts.frame.element,
    parts.readout,
    el('p', { id: 'heat-help', class: 'unseen' },
      'Arrow keys move over genes and conditions, Enter goes to the gene. The same values stand in the table below.'),
    parts.table.element);
  return { ...parts, body };
}

/**
 * Fills the section and keeps it true.
 *
 * @param {object} ways `choose(gene)` is called for the gene that the reader picks, `say(text)` tells screen readers of
 *   the place that the keys have come to, and `format(value)` writes a value
 */
export function showHeatMap(element, chart, model, store, { choose, say, format }) {
  const scene = createScene(model, store, format);
  const parts = createParts(model, scene, { change, choose });
  const { frame, body, readout } = parts;
  const pointing = followHeat(frame, scene.get().columns.length, { pointAt, moveTo, pick });
  // The genes of a line that stands for several; one gene alone is lit as any gene that is pointed at.
  let lit = [];
  chart.addOverlay((context, { pixelOf, ink }) => ringGenes(context, pixelOf, ink, lit));

  function genesOfLine(line) {
    const { perLine } = frame.layout();
    return scene.get().genes.subarray(line * perLine, (line + 1) * perLine);
  }

  function mark() {
    if (!body.isConnected) return;
    const { hover, focus } = store.get();
    const { perLine } = frame.layout();
    const places = [hover, focus].map(scene.placeOf).filter((place) => place !== undefined);
    frame.mark(places.map((place) => Math.floor(place / perLine)), pointing.cursor());
  }

  function show() {
    const now = { ...scene.get(), ink: inkOf(store.get().theme) };
    const shown = now.genes.length > 0 ? body : parts.hint;
    if (!shown.isConnected) element.replaceChildren(parts.heading, shown);
    if (shown !== body) return;
    frame.show(now);
    parts.named.setAttribute('aria-pressed', String(now.isNamed));
    parts.centred.setAttribute('aria-pressed', String(now.centred));
    parts.lead.textContent = leadText(now, frame.layout());
    parts.key.show(now);
    parts.table.show();
    mark();
  }

  /** Lights the genes of a place on the map, and tells of them. */
  function pointAt(place) {
    readout.replaceChildren(place ? dataText(placeText(model, scene.get(), frame.layout(), place)) : WAYS);
    const genes = place ? genesOfLine(place.line) : [];
    lit = genes.length > 1 ? genes : [];
    store.set({ hover: genes[0] ?? -1 });
    chart.repaintOverlays();
    mark();
  }

  function moveTo(place) {
    frame.reveal(place.line, place.column);
    pointAt(place);
    say(placeText(model, scene.get(), frame.layout(), place));
  }

  function startAnew() {
    pointing.forget();
    lit = [];
    readout.textContent = WAYS;
    show();
  }

  function change(patch) {
    scene.change(patch);
    startAnew();
  }

  /** Goes to the gene of a line; a line of several is shown gene by gene. */
  function pick(line) {
    const genes = genesOfLine(line);
    if (genes.length === 1) {
      choose(genes[0]);
    } else {
      change({ isNamed: true });
      frame.reveal(scene.placeOf(genes[0]), -1);
    }
  }

  // The map shows the selection first; then the genes are ordered.
  store.listen(['selection'], debounced(() => {
    scene.order();
    startAnew();
  }, PAUSE_MILLISECONDS));
  store.listen(['theme'], show);
  store.listen(['hover', 'focus'], mark);
  onNewWidth(element, show);
  scene.order();
  show();
}
