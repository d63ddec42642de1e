/** Undoing and doing again what was done to the selection and to the sets. */

const MOST_STEPS = 200;

/**
 * Follows some keys of the store.
 *
 * @returns `undo()` and `redo()`, each without effect where there is nothing to go to; `canUndo()` and
 *   `canRedo()`
 */
export function createHistory(store, keys) {
  const part = (state) => Object.fromEntries(keys.map((key) => [key, state[key]]));
  let past = [];
  let future = [];
  let present = part(store.get());
  let isTravelling = false;

  store.listen(keys, (state) => {
    if (!isTravelling) {
      past = [...past, present].slice(-MOST_STEPS);
      future = [];
    }
    present = part(state);
  });

  function travel(to) {
    isTravelling = true;
    store.set(to);
    isTravelling = false;
  }

  return {
    canUndo: () => past.length > 0,
    canRedo: () => future.length > 0,
    undo() {
      if (past.length === 0) return;
      const to = past.at(-1);
      past = past.slice(0, -1);
      future = [...future, present];
      travel(to);
    },
    redo() {
      if (future.length === 0) return;
      const to = future.at(-1);
      future = future.slice(0, -1);
      past = [...past, present];
      travel(to);
    },
  };
}

const isWriting = (target) =>
  target instanceof Element && target.matches('textarea, input:not([type="checkbox"], [type="color"], [type="range"], [type="file"])');

/** Makes Ctrl+Z and Shift+Ctrl+Z (or Ctrl+Y) go back and forth, except in fields, which have it themselves. */
export function followUndoKeys(history) {
  window.addEventListener('keydown', (event) => {
    const key = event.key.toLowerCase();
    if (!(event.ctrlKey || event.metaKey) || event.altKey || isWriting(event.target)) return;
    if (key !== 'z' && key !== 'y') return;
    event.preventDefault();
    if (key === 'y' || event.shiftKey) history.redo();
    else history.undo();
  });
}
