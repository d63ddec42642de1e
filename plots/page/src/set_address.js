/**
 * The selection and the named sets as a fragment of the page's address.
 *
 * Bytes: a version, a fingerprint of the genes' names, the genes of the selection, then the sets. A set
 * that the page was written with is its place; any other one has its name, its colour and its genes. Genes
 * are the gaps between their numbers, or a bit for each gene of the page, whichever is shorter. Numbers
 * take seven bits a byte, the lowest first.
 */

import { isColour, withSet } from './named_sets.js';
import { nameOf } from './dataset.js';

/** What begins a fragment of sets. */
export const MARK = '#sets=';

/** Longer addresses are cut by some programs that pass them on. */
export const LONGEST_ADDRESS = 8000;

const VERSION = 1;
const [GAPS, BITS] = [0, 1];

/** A number that tells lists of names apart: FNV-1a over their UTF-16 units. */
export function fingerprintOf(dataset) {
  let hash = 0x811c9dc5;
  const take = (unit) => {
    hash = Math.imul(hash ^ unit, 0x01000193);
  };
  for (let gene = 0; gene < dataset.count; gene += 1) {
    const name = nameOf(dataset, gene);
    for (let at = 0; at < name.length; at += 1) take(name.charCodeAt(at));
    take(0x0a);
  }
  return hash >>> 0;
}

function numberBytes(number) {
  const bytes = [];
  for (let rest = number; ; rest = Math.floor(rest / 128)) {
    if (rest < 128) return [...bytes, rest];
    bytes.push((rest % 128) + 128);
  }
}

function gapBytes(genes) {
  const bytes = [];
  let last = -1;
  for (const gene of genes) {
    bytes.push(...numberBytes(gene - last - 1));
    last = gene;
  }
  return bytes;
}

function geneBytes(genes, count) {
  const gaps = gapBytes(genes);
  if (gaps.length <= Math.ceil(count / 8)) return [GAPS, ...numberBytes(genes.length), ...gaps];
  const bits = new Uint8Array(Math.ceil(count / 8));
  for (const gene of genes) bits[gene >> 3] |= 1 << (gene & 7);
  return [BITS].concat(Array.from(bits));
}

function textBytes(text) {
  const bytes = new TextEncoder().encode(text);
  return [...numberBytes(bytes.length), ...bytes];
}

const colourBytes = (colour) => [1, 3, 5].map((at) => parseInt(colour.slice(at, at + 2), 16));

const setBytes = (set, count) => (set.given >= 0
  ? numberBytes(set.given + 1)
  : [0, ...textBytes(set.name), ...colourBytes(set.colour), ...geneBytes(set.genes, count)]);

function toBase64(bytes) {
  const text = Array.from(bytes, (byte) => String.fromCharCode(byte)).join('');
  return btoa(text).replaceAll('+', '-').replaceAll('/', '_').replace(/=+$/, '');
}

/**
 * The fragment for a state; empty for one without a selection whose sets are those of the page.
 *
 * @param {number} fingerprint as of `fingerprintOf`
 */
export function toFragment({ selection, sets }, dataset, fingerprint) {
  const isAsGiven = sets.length === dataset.sets.length && sets.every(({ given }, index) => given === index);
  if (selection.length === 0 && isAsGiven) return '';
  const bytes = [VERSION, ...numberBytes(fingerprint)]
    .concat(geneBytes(selection, dataset.count), numberBytes(sets.length), ...sets.map((set) => setBytes(set, dataset.count)));
  return MARK + toBase64(bytes);
}

/** Takes bytes from the front; what is not there is an error. */
function createReader(bytes) {
  let at = 0;
  const byte = () => {
    if (at >= bytes.length) throw new Error('it is cut off');
    at += 1;
    return bytes[at - 1];
  };
  const many = (length) => Uint8Array.from({ length: Math.min(length, bytes.length - at + 1) }, byte);
  function number() {
    let value = 0;
    for (let place = 1; ; place *= 128) {
      const next = byte();
      value += (next % 128) * place;
      if (next < 128) return value;
      if (place > 2 ** 42) throw new Error('it is damaged');
    }
  }
  return { byte, many, number };
}

function readGenes(reader, count) {
  const genes = [];
  if (reader.byte() === BITS) {
    reader.many(Math.ceil(count / 8)).forEach((byte, index) => {
      for (let bit = 0; bit < 8; bit += 1) if (byte & (1 << bit)) genes.push(8 * index + bit);
    });
  } else {
    const length = reader.number();
    for (let gene = -1; genes.length < length;) {
      gene += reader.number() + 1;
      genes.push(gene);
    }
  }
  if (genes.length > 0 && genes.at(-1) >= count) throw new Error('it is damaged');
  return Int32Array.from(genes);
}

function readSet(reader, dataset, sets, given) {
  const place = reader.number();
  if (place > 0) {
    const known = given[place - 1];
    if (!known || sets.includes(known)) throw new Error('it is damaged');
    return [...sets, known];
  }
  const name = new TextDecoder().decode(reader.many(reader.number()));
  const colour = `#${Array.from(reader.many(3), (byte) => byte.toString(16).padStart(2, '0')).join('')}`;
  if (!isColour(colour)) throw new Error('it is cut off');
  return withSet(sets, { name, colour, genes: readGenes(reader, dataset.count) });
}

/**
 * Reads a fragment.
 *
 * @param {object[]} given the sets that the page was written with, as of `givenSets`
 * @returns `selection` and `sets`; null for a fragment of something else
 * @throws {Error} that says why it cannot be taken: nothing of it is
 */
export function readFragment(fragment, dataset, fingerprint, given) {
  if (!fragment.startsWith(MARK)) return null;
  let bytes;
  try {
    const text = atob(fragment.slice(MARK.length).replaceAll('-', '+').replaceAll('_', '/'));
    bytes = Uint8Array.from(text, (character) => character.charCodeAt(0));
  } catch {
    throw new Error('it is damaged');
  }
  const reader = createReader(bytes);
  if (reader.byte() !== VERSION) throw new Error('a later version of the page wrote it');
  if (reader.number() !== fingerprint) throw new Error('it is that of a page of other genes');
  const selection = readGenes(reader, dataset.count);
  let sets = [];
  for (let left = reader.number(); left > 0; left -= 1) sets = readSet(reader, dataset, sets, given);
  return { selection, sets };
}
