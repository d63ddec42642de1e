/** The terms that the data give to genes. */

const ASPECTS = { P: 'process', F: 'function', C: 'component' };

function readTerm(raw) {
  if (!Array.isArray(raw)) return null;
  const [id, name, aspect] = raw.map((part) => (typeof part === 'string' ? part : ''));
  return id && name && Object.hasOwn(ASPECTS, aspect) ? { id, name, aspect: ASPECTS[aspect] } : null;
}

/** Ascending places of terms, each once. */
function readNumbers(raw, count) {
  const numbers = Array.isArray(raw) ? raw.filter((term) => Number.isInteger(term) && term >= 0 && term < count) : [];
  return Int32Array.from(new Set(numbers)).sort();
}

/** For each row of a gene that an earlier row is of, too, that row. */
function readRepeated(raw, count) {
  const pairs = Array.isArray(raw) ? raw.filter(Array.isArray) : [];
  return new Map(pairs.filter(([row, first]) =>
    Number.isInteger(row) && Number.isInteger(first) && first >= 0 && first < row && row < count));
}

/**
 * Reads the terms of the genes.
 *
 * @param raw `list` of `[id, name, 'P'|'F'|'C']`, `genes`: places of terms in the list for each gene, and `repeated`:
 *   `[row, first]` for rows of a gene that an earlier row is of
 * @param {number} count of genes
 * @returns the terms as `Groups` of enrichment.js, the aspect of each in words; null if there are none
 */
export function readTerms(raw, count) {
  if (!Array.isArray(raw?.list) || !Array.isArray(raw.genes) || raw.genes.length !== count) return null;
  const list = raw.list.map(readTerm);
  if (list.includes(null)) return null;
  const of = raw.genes.map((numbers) => readNumbers(numbers, list.length));
  const repeated = readRepeated(raw.repeated, count);
  if (of.every((numbers) => numbers.length === 0)) return null;
  return {
    list,
    of: (gene) => of[gene],
    annotated: (gene) => of[gene].length > 0,
    firstOf: (gene) => repeated.get(gene) ?? gene,
  };
}
