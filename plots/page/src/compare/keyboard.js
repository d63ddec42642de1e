/** What the keyboard does in a map. */

import { nearestGene, nextGene } from '../points.js';
import { toggled } from '../sets.js';

const DIRECTIONS = { ArrowRight: [1, 0], ArrowLeft: [-1, 0], ArrowUp: [0, 1], ArrowDown: [0, -1] };

/** Lets a map answer to keys: arrows go from gene to gene, Enter chooses, Escape lets go. */
export function followKeyboard(map, store) {
  const { frame, run } = map;

  function step([right, up]) {
    const { focus } = store.get();
    if (!Number.isFinite(run.x[focus] ?? NaN)) {
      const middle = map.placeOf(frame.clientWidth / 2, frame.clientHeight / 2);
      store.set({ focus: nearestGene(run, ...middle) });
      return;
    }
    const next = nextGene(run, focus, right, up);
    if (next >= 0) store.set({ focus: next });
  }

  frame.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const { focus, selection } = store.get();
    if (event.key in DIRECTIONS) {
      step(DIRECTIONS[event.key]);
    } else if (event.key === 'Enter' && focus >= 0) {
      store.set({ selection: toggled(selection, focus) });
    } else if (event.key === 'Escape') {
      store.set({ focus: -1, hover: -1 });
    } else {
      return;
    }
    event.preventDefault();
  });
}
