/** Ways to group genes by what the data say of them, as `Groups` of enrichment.js. */

// Functions of so many characters are cut in the gene table, and with them their last word.
const CUT_LENGTH = 70;

const WORD = /[a-z][a-z0-9'-]*[a-z0-9]/g;
const SHORTEST_WORD = 3;
const NO_LABEL = /^\s*(na|none|unknown)?\s*$/i;
const REST = /^\s*other\s*$/i;
const NO_GROUPS = new Int32Array(0);

// Words that say nothing of what a gene does.
const FILLERS = new Set(['and', 'are', 'but', 'can', 'for', 'from', 'has', 'have', 'into', 'its', 'may', 'not', 'one', 'that',
  'the', 'this', 'via', 'which', 'with']);

/** Groups by their texts: `textsOf(gene)` are those of a gene, each once, or null if nothing is known of it. */
function groupsOf(count, textsOf) {
  const places = new Map();
  const of = Array.from({ length: count }, (_, gene) => {
    const texts = textsOf(gene);
    if (texts === null) return null;
    return Int32Array.from(texts, (text) => {
      if (!places.has(text)) places.set(text, places.size);
      return places.get(text);
    }).sort();
  });
  return {
    list: Array.from(places.keys(), (name) => ({ id: name, name, aspect: '' })),
    of: (gene) => of[gene] ?? NO_GROUPS,
    annotated: (gene) => of[gene] !== null,
    firstOf: (gene) => gene,
  };
}

/** Genes of one label; those whose label stands for none are not annotated, and others of no label are in no group. */
export function labelGroups(labels) {
  return groupsOf(labels.length, (gene) => {
    if (NO_LABEL.test(labels[gene])) return null;
    return REST.test(labels[gene]) ? [] : [labels[gene]];
  });
}

/** The words of a gene's function in small letters, each once. */
export function wordsOf(text) {
  const whole = text.length < CUT_LENGTH ? text : text.replace(/\S*$/, '');
  const words = whole.toLowerCase().match(WORD) ?? [];
  return [...new Set(words)].filter((word) => word.length >= SHORTEST_WORD && !FILLERS.has(word));
}

/** Genes whose functions have a word; those without a function are not annotated. */
export function wordGroups(functions) {
  return groupsOf(functions.length, (gene) =>
    (functions[gene] === '' || functions[gene] === 'NULL' ? null : wordsOf(functions[gene])));
}
