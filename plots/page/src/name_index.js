/** Finding genes by any name that they have. */

const upper = (text) => text.toUpperCase();

/** Puts a gene under a name; a list is made for the second one only. */
function add(genesOf, name, gene) {
  if (!name) return;
  const key = upper(name);
  const genes = genesOf.get(key);
  if (genes === undefined) genesOf.set(key, gene);
  else if (typeof genes === 'number') {
    if (genes !== gene) genesOf.set(key, [genes, gene]);
  } else if (genes.at(-1) !== gene) genes.push(gene);
}

function genesUnder(genesOf, name) {
  const genes = genesOf.get(upper(name)) ?? [];
  return typeof genes === 'number' ? [genes] : genes;
}

/** Genes by their names in capitals, and by their aliases. */
function readNames({ names, genes: listed, aliases, count }) {
  const [main, further] = [new Map(), new Map()];
  for (let gene = 0; gene < count; gene += 1) {
    add(main, names[gene], gene);
    add(main, listed[gene], gene);
    const known = aliases?.[gene];
    if (known) {
      add(main, known.systematic, gene);
      add(main, known.sgd, gene);
      for (const alias of known.aliases) add(further, alias, gene);
    }
  }
  return { main, further };
}

/**
 * Makes the index.
 *
 * @param {object} dataset as of `readDataset`
 * @returns a function from a name to the genes that it means, ascending, or null: those that carry this
 *   very name; else those that have it in any letter case, also as the name that the gene table lists,
 *   systematic name or identifier; else the one gene that has it as an alias; else, of a name with a "p"
 *   behind it, that of the protein, those of the name without it
 */
export function createNameIndex(dataset) {
  let known = null;

  function find(name) {
    known ??= readNames(dataset);
    const genes = genesUnder(known.main, name);
    const own = genes.filter((gene) => dataset.names[gene] === name);
    if (own.length > 0) return own;
    if (genes.length > 0) return genes;
    const further = genesUnder(known.further, name);
    const meant = new Set(further.map((gene) => dataset.aliases[gene].systematic));
    return meant.size === 1 ? further : null;
  }

  return (name) => find(name) ?? (/.p$/i.test(name) ? find(name.slice(0, -1)) : null);
}
