/** Finding genes by any name that they have. */

const upper = (text) => text.toUpperCase();

function add(genesOf, name, gene) {
  if (name === '') return;
  const genes = genesOf.get(name);
  if (genes === undefined) genesOf.set(name, [gene]);
  else if (genes.at(-1) !== gene) genes.push(gene);
}

/** Maps from names to genes, those that count first ahead. */
function readNames({ names, genes: listed, aliases, count }) {
  const [own, main, further] = [new Map(), new Map(), new Map()];
  for (let gene = 0; gene < count; gene += 1) {
    const known = aliases?.[gene];
    add(own, names[gene] ?? '', gene);
    for (const name of [names[gene], listed[gene], known?.systematic, known?.sgd]) add(main, upper(name ?? ''), gene);
    for (const alias of known?.aliases ?? []) add(further, upper(alias), gene);
  }
  return { own, main, further };
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
    const genes = known.own.get(name) ?? known.main.get(upper(name));
    if (genes) return genes;
    const further = known.further.get(upper(name));
    const meant = new Set(further?.map((gene) => dataset.aliases[gene].systematic));
    return meant.size === 1 ? further : null;
  }

  return (name) => find(name) ?? (/.p$/i.test(name) ? find(name.slice(0, -1)) : null);
}
