/** Sets of genes that have a name and a colour. */

/**
 * @typedef {object} NamedSet
 * @property {number} id the same as long as the page is open
 * @property {string} name not empty, and that of no other set
 * @property {string} colour "#rrggbb"
 * @property {Int32Array} genes ascending, at least one
 * @property {number} given its place among the sets that the page was written with, or -1
 */

/** Most sets that a page holds. */
export const MOST_SETS = 1000;
const LONGEST_NAME = 200;

// Seen on white and on black, and told apart with any colour vision.
const COLOURS = ['#d55e00', '#0072b2', '#009e73', '#cc79a7', '#b8860b', '#56a0d3', '#7570b3', '#a6611a'];

let lastId = 0;

/** A name like the wanted one that no set has yet: a number behind it makes the difference. */
function freeName(wanted, sets) {
  const taken = new Set(sets.map(({ name }) => name));
  // A line of a file, or of the address, holds a name.
  const name = wanted.replace(/[\t\r\n]+/g, ' ').trim().slice(0, LONGEST_NAME) || 'Set';
  for (let number = 1; ; number += 1) {
    const candidate = number === 1 ? name : `${name} (${number})`;
    if (!taken.has(candidate)) return candidate;
  }
}

/** The colour that the fewest sets have, of these the first. */
function freeColour(sets) {
  const uses = COLOURS.map((colour) => sets.filter((set) => set.colour === colour).length);
  return COLOURS[uses.indexOf(Math.min(...uses))];
}

/** Whether a text is a colour as sets have them. */
export const isColour = (text) => /^#[0-9a-f]{6}$/i.test(text);

/**
 * Adds a set, behind the others.
 *
 * @param {NamedSet[]} sets
 * @param {{name: string, genes: Int32Array, colour?: string, given?: number}} added
 * @returns {NamedSet[]} the same sets if there are as many as a page holds, or the new one is empty
 */
export function withSet(sets, { name, genes, colour = '', given = -1 }) {
  if (sets.length >= MOST_SETS || genes.length === 0) return sets;
  lastId += 1;
  const set = {
    id: lastId,
    name: freeName(name, sets),
    colour: isColour(colour) ? colour.toLowerCase() : freeColour(sets),
    genes,
    given,
  };
  return [...sets, Object.freeze(set)];
}

/** Adds several sets. */
export const withSets = (sets, added) => added.reduce(withSet, sets);

/** The sets with one of them changed; it is no longer as it was given. */
export function withChange(sets, id, { name, colour, genes }) {
  const others = sets.filter((set) => set.id !== id);
  return sets.map((set) => (set.id !== id ? set : Object.freeze({
    ...set,
    name: name === undefined ? set.name : freeName(name, others),
    colour: colour ?? set.colour,
    genes: genes ?? set.genes,
    given: -1,
  })));
}

/** The sets that the page was written with. */
export const givenSets = (dataset) => dataset.sets.reduce(
  (sets, { name, genes }, given) => withSet(sets, { name, genes, given }), []);
