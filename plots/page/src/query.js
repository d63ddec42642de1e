/** What the reader asks for: words, phrases, or a list of genes. */

const QUOTE = /["\u201c\u201d\u201e]/;
const PHRASE_OR_WORD = /["\u201c\u201d\u201e]([^"\u201c\u201d\u201e]*)["\u201c\u201d\u201e]?|\S+/g;
const BETWEEN_NAMES = /[,;\t\r\n]+/;

/** Words in small letters, and phrases that stand in double quotes. */
function wordsOf(query) {
  return Array.from(query.toLowerCase().matchAll(PHRASE_OR_WORD), ([whole, phrase]) =>
    (phrase === undefined ? whole.replace(/[,;]+$/, '') : phrase.trim())).filter((word) => word !== '');
}

/** Names between separators; a name may hold blanks if there is a gene of that name. */
function namesOf(parts, find) {
  const names = parts.flatMap((part) => (find(part) ? [part] : part.split(/\s+/)));
  return [...new Map(names.map((name) => [name.toUpperCase(), name])).values()];
}

/**
 * Takes a text as a list of names.
 *
 * @param {string} text names between blanks, commas, semicolons, tabs or line ends; each counts once
 * @param {function} find as of `createNameIndex`
 * @returns `names` in their order, `genes` (each once, in the order of the names), and `missing`: names of
 *   no gene
 */
export function readNameList(text, find) {
  const parts = text.split(BETWEEN_NAMES).map((part) => part.trim()).filter((part) => part !== '');
  const names = namesOf(parts, find);
  return {
    names,
    genes: [...new Set(names.flatMap((name) => find(name) ?? []))],
    missing: names.filter((name) => !find(name)),
    isSeparated: parts.length > 1,
  };
}

/**
 * Reads a query. It is a list of genes if it has several names and no quotes, and most of them, or any
 * where commas, semicolons, tabs or line ends separate them, are names of genes.
 *
 * @returns {{words: string[], list: object|null, isList: boolean}} `list` as of `readNameList`, of which
 *   `isList` says that it is meant; a list with a gene in it is kept for words that find nothing
 */
export function readQuery(query, find) {
  const words = wordsOf(query);
  if (QUOTE.test(query) || words.length === 0) return { words, list: null, isList: false };
  const list = readNameList(query, find);
  const known = list.names.length - list.missing.length;
  if (list.names.length < 2 || known === 0) return { words, list: null, isList: false };
  return { words, list, isList: list.isSeparated || 2 * known > list.names.length };
}
