/** Sets of genes as files: GMT and JSON. */

import { isColour } from './named_sets.js';
import { nameOf } from './dataset.js';
import { readNameList } from './query.js';

const FORMAT = 'gene sets';

const namesOf = (dataset, genes) => Array.from(genes, (gene) => nameOf(dataset, gene));

/** A line per set: name, colour, then the names of its genes, with tabs between. */
export function toGmt(dataset, sets) {
  const field = (text) => text.replace(/[\t\r\n]+/g, ' ');
  const line = ({ name, colour, genes }) => [name, colour, ...namesOf(dataset, genes)].map(field).join('\t');
  return sets.map((set) => `${line(set)}\n`).join('');
}

/** The same as JSON, which keeps every character of the names. */
export function toJson(dataset, sets) {
  const listed = sets.map(({ name, colour, genes }) => ({ name, colour, genes: namesOf(dataset, genes) }));
  return `${JSON.stringify({ format: FORMAT, sets: listed }, null, 1)}\n`;
}

const isTexts = (value) => Array.isArray(value) && value.every((text) => typeof text === 'string');

function readJson(text) {
  let raw;
  try {
    raw = JSON.parse(text);
  } catch (error) {
    throw new Error(`is no JSON (${error.message})`);
  }
  const sets = Array.isArray(raw) ? raw : raw.sets;
  if (!Array.isArray(sets)) throw new Error('holds no list "sets"');
  return sets.map((set, index) => {
    if (typeof set?.name !== 'string' || !isTexts(set.genes)) {
      throw new Error(`set ${index + 1} has no "name", or no list "genes" of texts`);
    }
    return { name: set.name, colour: typeof set.colour === 'string' ? set.colour : '', names: set.genes };
  });
}

function readGmt(lines) {
  return lines.flatMap((line, index) => {
    if (line.trim() === '') return [];
    const [name, description, ...names] = line.split('\t').map((field) => field.trim());
    if (names.length === 0 || name === '') {
      throw new Error(`line ${index + 1} is no set: a name, a description and genes, with tabs between`);
    }
    return [{ name, colour: isColour(description) ? description : '', names: names.filter((gene) => gene !== '') }];
  });
}

/** The sets that a text lists; one that is neither JSON nor GMT is one set, its names between blanks, commas or line ends. */
function readListed(text, title, find) {
  if (/^\s*[[{]/.test(text)) return readJson(text);
  const lines = text.split(/\r\n|\r|\n/);
  if (lines.some((line) => line.split('\t').length > 2)) return readGmt(lines);
  return [{ name: title, colour: '', names: readNameList(text, find).names }];
}

/**
 * Reads a file of sets.
 *
 * @param {string} text GMT, JSON as of `toJson`, or names of genes
 * @param {string} title what a set is called of which a file has but names
 * @param {function} find as of `createNameIndex`
 * @returns `sets` of which a gene is there, each with `name`, `colour` (maybe empty) and `genes`; `names`
 *   (each once) and those `missing` of them; `empty`: names of the sets of which no gene is there
 * @throws {Error} that says what is wrong with the file
 */
export function readSetFile(text, title, find) {
  const listed = readListed(text.replace(/^\ufeff/, ''), title, find);
  const names = [...new Set(listed.flatMap((set) => set.names))];
  if (names.length === 0) throw new Error('names no gene');
  const sets = listed.map((set) => ({
    name: set.name,
    colour: set.colour,
    genes: Int32Array.from(new Set(set.names.flatMap((name) => find(name) ?? []))).sort(),
  }));
  return {
    sets: sets.filter(({ genes }) => genes.length > 0),
    names,
    missing: names.filter((name) => !find(name)),
    empty: sets.filter(({ genes }) => genes.length === 0).map(({ name }) => name),
  };
}
