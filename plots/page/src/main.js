/** Puts the page together. */

import { createChart } from './chart.js';
import { createMarker } from './marker.js';
import { createModel } from './model.js';
import { createStore } from './state.js';
import { followBrush } from './brush.js';
import { followKeyboard } from './keyboard.js';
import { followPointer } from './pointer.js';
import { followStatus } from './status.js';
import { placeLegend } from './stage.js';
import { printLight } from './print.js';
import { readDataset } from './dataset.js';
import { savePicture } from './picture.js';
import { showClusters } from './cluster_list.js';
import { showDetails } from './details.js';
import { showFooter } from './footer.js';
import { showHelp } from './help.js';
import { showLegend } from './legend.js';
import { showSearch } from './search.js';
import { showSelection } from './selection.js';
import { showSpotlight } from './spotlight.js';
import { showSummary } from './summary.js';
import { showToolbar } from './toolbar.js';
import { showTrust } from './trust.js';
import { applyTheme, onPreferredTheme, preferredTheme } from './theme.js';
import { shareOf, windowAt } from './windows.js';

const FLIGHT_SHARE = 0.12;

const part = (id) => document.getElementById(id);

function firstState(model) {
  return {
    pair: 0,
    ...model.colouredBy(0),
    spotlight: -1,
    hover: -1,
    focus: -1,
    matches: null,
    selection: new Int32Array(0),
    theme: preferredTheme(),
    tool: 'move',
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
  followBrush(chart, model, store);
  printLight(chart, store);
  followKeyboard(part('chart-frame'), chart, model, store);
  showToolbar(part('toolbar'), chart, model, store, (kind) => savePicture(kind, chart, model, store));
  showLegend(part('legend'), chart, model, store);
  showSpotlight(chart, model, store);
  placeLegend(part('stage'), part('legend'), chart, dataset.layout);
  showSearch(part('find'), model, store, choose);
  showDetails(part('details'), model, store);
  showSelection(part('selection'), model, store, choose, say);
  showClusters(part('clusters'), chart, model, store);
  showTrust(part('trust'), part('selection'), model, store);
  showHelp(part('help'));
  showFooter(part('foot'), dataset);
  window.ovikPage = Object.freeze({
    view: chart.view,
    pixelOf: chart.pixelOf,
    look: () => ({ ...chart.look() }),
  });
  document.documentElement.dataset.ready = 'true';
}

try {
  start();
} catch (error) {
  part('head').textContent = `This page could not be shown: ${error.message}`;
  throw error;
}
