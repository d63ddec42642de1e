/** The keys that the chart listens to. */

import { el } from './dom.js';

const KEYS = [
  [['\u2190', '\u2192', '\u2191', '\u2193'], 'nearest gene in that direction'],
  [['Shift', '\u2190'], 'move the view'],
  [['+', '\u2212'], 'zoom'],
  [['Home', '0'], 'show everything'],
  [['Enter', 'Space'], 'add the gene to the selection, or remove it'],
  [['Ctrl', 'Z'], 'undo the last change of selection or sets'],
  [['Shift', 'Ctrl', 'Z'], 'do it again'],
  [['Esc'], 'let go of the gene, then of the tool, then of the selection'],
];

/** Fills the help's element. */
export function showHelp(element) {
  const rows = KEYS.map(([keys, meaning]) => el('div', {},
    el('dt', {}, ...keys.map((key) => el('kbd', {}, key))),
    el('dd', {}, meaning)));
  element.append(
    el('summary', {}, 'Keys and gestures'),
    el('dl', {}, ...rows),
    el('p', {}, 'Drag or scroll sideways to move, turn the wheel or pinch to zoom. With Box or Lasso, dragging chooses genes; Shift adds them to those already chosen.'),
    el('p', {}, 'What the search found has a yellow rim, what is chosen a dark one.'),
  );
}
