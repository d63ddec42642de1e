/** What screen readers are told while things change. */

import { debounced } from './dom.js';
import { counted } from './format.js';
import { geneSentence } from './gene_text.js';

const PAUSE_MILLISECONDS = 150;

/** Fills the live region `element`; of quick changes only the last is said. */
export function followStatus(element, chart, model, store) {
  const say = debounced((text) => {
    element.textContent = text;
  }, PAUSE_MILLISECONDS);

  store.listen(['focus'], (state) => {
    if (state.focus >= 0) say(geneSentence(model, state, state.focus));
  });
  store.listen(['selection'], (state) => say(`${counted(state.selection.length, 'gene')} chosen`));
  store.listen(['sets'], (state) => say(`${counted(state.sets.length, 'set')}`));
  store.listen(['matches'], (state) => {
    if (state.matches) say(`${counted(state.matches.length, 'gene matches', 'genes match')}`);
  });
  store.listen(['colouring'], (state) => say(`Coloured by ${model.colouringOf(state).title}`));
  store.listen(['shown', 'pair'], (state) => say(`${counted(model.pointsOf(state).genes.length, 'gene')} drawn`));
  return { say };
}
