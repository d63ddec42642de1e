/** Puts the page together. */

import { createAddress } from './address.js';
import { createChart } from './chart.js';
import { createHistory, followUndoKeys } from './history.js';
import { createMarker } from './marker.js';
import { createModel } from './model.js';
import { createStore } from './state.js';
import { createTermColours } from './term_colours.js';
import { followKeyboard } from './keyboard.js';
import { followPointer } from './pointer.js';
import { followStatus } from './status.js';
import { fillWindow, placeLegend } from './stage.js';
import { givenSets } from './named_sets.js';
import { printLight } from './print.js';
import { readDataset } from './dataset.js';
import { savePicture } from './picture.js';
import { showClusters } from './cluster_list.js';
import { showDetails } from './details.js';
import { showExpression } from './expression_panels.js';
import { showFooter } from './footer.js';
import { showHelp } from './help.js';
import { showLegend } from './legend.js';
import { showSearch } from './search.js';
import { showSelection } from './selection.js';
import { showSets } from './set_list.js';
import { showSpotlight } from './spotlight.js';
import { showSummary } from './summary.js';
import { showTerms } from './enrichment_panel.js';
import { showToolbar } from './toolbar.js';
import { showTrust } from './trust.js';
import { showDensityScale } from './view_options.js';
import { applyTheme, onPreferredTheme, preferredTheme } from './theme.js';
import { shareOf, windowAt } from './windows.js';

const FLIGHT_SHARE = 0.12;

const part = (id) => document.getElementById(id);

function firstState(model) {
  return {
    pair: 0,
    ...model.colouredBy(0),
    faded: null,
    spotlight: -1,
    hover: -1,
    focus: -1,
    matches: null,
    selection: new Int32Array(0),
    sets: givenSets(model.dataset),
    theme: preferredTheme(),
    tool: 'move',
    coordinates: false,
    shading: false,
    contours: false,
    pointSize: 1,
    pointOpacity: 1,
  };
}

/** Focuses a gene that was picked from a list and flies to it; a hidden label is shown again. */
function chooser(chart, model, store) {
  return (gene) => {
    const { shown } = store.get();
    const category = model.categoriesOf(store.get()).of[gene];
    if (!shown[category]) store.set({ shown: shown.map((value, index) => (index === category ? 1 : value)) });
    store.set({ focus: gene, hover: -1 });
    if (!model.isPlaced(store.get(), gene)) return;
    const { x, y } = model.pointsOf(store.get());
    const share = Math.min(shareOf(chart.whole(), chart.view()), FLIGHT_SHARE);
    chart.flyTo(windowAt(chart.whole(), x[gene], y[gene], share));
  };
}

function start() {
  const dataset = readDataset(part('chart-data').textContent);
  const model = createModel(dataset);
  const store = createStore(firstState(model));
  applyTheme(store.get().theme);
  store.listen(['theme'], ({ theme }) => applyTheme(theme));
  onPreferredTheme((theme) => store.set({ theme }));

  showSummary(part('head'), part('chart-frame'), model, store);
  const chart = createChart(part('chart'), model, store);
  const { say } = followStatus(part('status'), chart, model, store);
  const choose = chooser(chart, model, store);
  createMarker(chart, model, store);
  followPointer(chart, model, store);
  printLight(chart, store);
  followKeyboard(part('chart-frame'), chart, model, store);
  showToolbar(part('toolbar'), chart, model, store, (kind) => savePicture(kind, chart, model, store));
  showLegend(part('legend'), chart, model, store);
  showSpotlight(chart, model, store);
  const moveLegend = placeLegend(part('stage'), part('legend'), chart, dataset.layout);
  showSearch(part('find'), model, store, choose);
  showDetails(part('details'), model, store);
  const address = createAddress(model, store, store.get().sets);
  const sets = showSets(part('sets'), model, store, { say, copyLink: address.copyLink });
  address.restore(sets.tell);
  const history = createHistory(store, ['selection', 'sets']);
  followUndoKeys(history);
  showSelection(part('selection'), model, store, choose, { say, history, saveSet: sets.saveSet });
  const termColours = createTermColours(model, store, say);
  showTerms(part('terms'), model, store, choose, termColours);
  address.follow(sets.tell);
  showExpression(part, chart, model, store, choose, say);
  showClusters(part('clusters'), chart, model, store, termColours);
  showTrust(part('trust'), part('selection'), chart, model, store, choose);
  showHelp(part('help'));
  showFooter(part('foot'), dataset);
  fillWindow(part('stage'), part('help'), chart, () => {
    chart.resize();
    moveLegend();
  });
  showDensityScale(part('density-scale'), chart);
  window.ovikPage = Object.freeze({
    view: chart.view,
    pixelOf: chart.pixelOf,
    look: chart.look,
  });
  document.documentElement.dataset.ready = 'true';
}

try {
  start();
} catch (error) {
  part('head').textContent = `This page could not be shown: ${error.message}`;
  throw error;
}
