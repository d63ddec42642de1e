/** Puts the comparison together. */

import { createStore } from '../state.js';
import { showSearch } from '../search.js';
import { applyTheme, onPreferredTheme, preferredTheme } from '../theme.js';
import { showChoice } from './choice.js';
import { coloursOf } from './colours.js';
import { createMap } from './map.js';
import { followKeyboard } from './keyboard.js';
import { followPointer } from './pointer.js';
import { readComparison } from './data.js';
import { showGene } from './gene.js';
import { showHelp } from './help.js';
import { showLegend } from './legend.js';
import { showSelection } from './selection.js';
import { showTools } from './tools.js';

const part = (id) => document.getElementById(id);

/** Fingers scroll the page unless the reader wants to draw. */
const firstTool = () => (matchMedia('(pointer: coarse)').matches ? 'look' : 'lasso');

function firstState({ choice }) {
  return {
    run: choice?.recommended ?? -1,
    colouring: 0,
    hover: -1,
    focus: -1,
    matches: null,
    selection: new Int32Array(0),
    theme: preferredTheme(),
    tool: firstTool(),
  };
}

/** The colours of a state; found once for as long as it has the same ones. */
function rememberedColours(comparison) {
  let last = { key: '', colours: null };
  return ({ colouring, theme }) => {
    const key = `${colouring} ${theme}`;
    if (last.key !== key) {
      const pale = getComputedStyle(document.documentElement).getPropertyValue('--axis').trim();
      last = { key, colours: coloursOf(comparison, colouring, theme, pale) };
    }
    return last.colours;
  };
}

/** Paper is white; maps without a picture of their own are printed as they are. */
function printLight(maps, store) {
  let onScreen = store.get().theme;
  window.addEventListener('beforeprint', () => {
    onScreen = store.get().theme;
    store.set({ theme: 'light' });
    // Printing does not wait for the next frame.
    for (const map of maps) map.flush();
  });
  window.addEventListener('afterprint', () => store.set({ theme: onScreen }));
}

function start() {
  const comparison = readComparison(part('comparison-data').textContent);
  if (comparison.count === 0) return;
  const store = createStore(firstState(comparison));
  applyTheme(store.get().theme);
  store.listen(['theme'], ({ theme }) => applyTheme(theme));
  onPreferredTheme((theme) => store.set({ theme }));
  const say = (text) => {
    part('status').textContent = text;
  };

  const colours = rememberedColours(comparison);
  showTools(part('tools'), comparison, store, part('work'));
  const maps = [];
  document.querySelectorAll('.run').forEach((card, which) => {
    const run = comparison.runs[which];
    if (!run || run.genes.length === 0) return;
    const map = createMap(card.querySelector('.map'), comparison, which, store, colours);
    followPointer(map, store);
    followKeyboard(map, store);
    card.dataset.drawn = 'true';
    maps.push(map);
  });
  if (comparison.choice !== null && part('choice') !== null) {
    showChoice(part('choice'), comparison, store, [...document.querySelectorAll('.run')]);
  }
  showSearch(part('find'), { dataset: comparison }, store, (focus) => store.set({ focus, hover: -1 }));
  showGene(part('details'), comparison, store, say);
  showSelection(part('selection'), comparison, store, say);
  showLegend(part('legend'), comparison, store, colours);
  showHelp(part('help'));
  printLight(maps, store);
  window.ovikComparison = Object.freeze({
    pixelOf: (which, gene) => maps.find(({ run }) => run === comparison.runs[which]).pixelOf(gene),
    state: () => ({ ...store.get() }),
  });
}

try {
  start();
} finally {
  document.documentElement.dataset.ready = 'true';
}
