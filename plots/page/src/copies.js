/** Genes as texts to take along. */

import { copy } from './files.js';
import { counted, formatCount } from './format.js';
import { nameOf } from './dataset.js';

const KINDS = [
  { key: 'name', title: 'names', one: 'name', of: nameOf },
  { key: 'systematic', title: 'systematic names', one: 'systematic name', of: ({ aliases }, gene) => aliases[gene]?.systematic ?? '' },
  { key: 'sgd', title: 'SGD ids', one: 'SGD id', of: ({ aliases }, gene) => aliases[gene]?.sgd ?? '' },
];

/** What genes can be copied as: always their names; other ones where the data have them. */
export const kindsOf = (dataset) => (dataset.aliases ? KINDS : KINDS.slice(0, 1));

/**
 * The genes as one of the `KINDS`, a line each.
 *
 * @returns `text`, and `words` that say how many there are and how many genes have none
 */
export function namesText(dataset, genes, { one, title, of }) {
  const names = Array.from(genes, (gene) => of(dataset, gene)).filter((name) => name !== '');
  const lacking = genes.length - names.length;
  return {
    text: names.join('\n'),
    words: `${counted(names.length, one, title)} copied`
      + (lacking > 0 ? `; ${formatCount(lacking)} of ${counted(genes.length, 'gene')} without one` : ''),
  };
}

/** Copies a text, and tells what was copied, or that nothing was. */
export async function copyAndTell(text, words, note) {
  note.tell((await copy(text)) ? words : 'The browser did not allow copying');
}
