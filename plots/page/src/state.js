/** What the reader has chosen; the parts of the page listen to it and change it. */

/**
 * @typedef {object} State
 * @property {number} pair index of the pair of components that is drawn
 * @property {number} colouring index of what genes are coloured by
 * @property {Uint8Array} shown 1 for each category that is drawn
 * @property {Int32Array|null} faded genes that step back, ascending; null for none
 * @property {number} spotlight the category that the reader points at in the legend, or -1
 * @property {number} hover gene under the pointer, or -1
 * @property {number} focus gene whose details are shown, or -1
 * @property {Int32Array|null} matches genes that the search found, ascending; null without a search
 * @property {Int32Array} selection chosen genes, ascending
 * @property {object[]} sets named sets of genes, as of `named_sets.js`
 * @property {'light'|'dark'} theme
 * @property {'move'|'box'|'lasso'} tool what dragging in the chart does
 * @property {boolean} coordinates whether the axes have numbers
 * @property {boolean} shading whether density is shaded
 * @property {boolean} contours whether lines of equal density are drawn
 * @property {number} pointSize size of the points, as a factor of what suits their number
 * @property {number} pointOpacity the same of their opacity
 */

/**
 * Makes the store.
 *
 * @param {State} initial
 * @returns `get()`, `set(patch)` and `listen(keys, listener)`; a listener is called after a change of
 *   one of its keys, in the order in which listeners came
 */
export function createStore(initial) {
  let state = Object.freeze({ ...initial });
  const listeners = [];
  return {
    get: () => state,
    set(patch) {
      const changed = Object.keys(patch).filter((key) => patch[key] !== state[key]);
      if (changed.length === 0) return;
      state = Object.freeze({ ...state, ...patch });
      for (const { keys, listener } of listeners) {
        if (keys.some((key) => changed.includes(key))) listener(state);
      }
    },
    listen(keys, listener) {
      listeners.push({ keys, listener });
    },
  };
}
