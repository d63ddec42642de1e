/** The list of what a selection has more of than chance gives. */

import { button, dataText, el, svg } from './dom.js';
import { counted, formatCount } from './format.js';
import { formatChance, formatFold } from './enrichment_table.js';
import { nameOf } from './dataset.js';

const MOST_GENES = 200;

/** A bar of the share in the selection, with a mark at the share in the background. */
function shareBar({ hits, drawn, size, total }) {
  const [share, usual] = [(100 * hits) / drawn, (100 * size) / total];
  return svg('svg', { class: 'share', viewBox: '0 0 100 6', preserveAspectRatio: 'none', 'aria-hidden': 'true' },
    svg('rect', { class: 'share-track', width: 100, height: 6 }),
    svg('rect', { class: 'share-hits', width: share, height: 6 }),
    svg('rect', { class: 'share-usual', x: Math.min(usual, 99), width: 1, height: 6 }));
}

function geneButton(dataset, gene, choose) {
  const chosen = button('', () => choose(gene), { class: 'quiet gene-link' });
  chosen.append(dataText(nameOf(dataset, gene)));
  return el('li', {}, chosen);
}

/** The genes of a result, which are only listed once they are asked for. */
function genesOf(result, dataset, { choose, select, membersOf }) {
  const body = el('div');
  const fill = () => {
    if (!details.open || body.childElementCount > 0) return;
    const members = membersOf(result.term);
    const more = result.genes.length - MOST_GENES;
    body.append(
      el('ul', { class: 'term-genes' }, ...result.genes.slice(0, MOST_GENES).map((gene) => geneButton(dataset, gene, choose))),
      ...(more > 0 ? [el('p', { class: 'counts' }, `and ${formatCount(more)} more`)] : []),
      el('div', { class: 'row' },
        button(result.hits === 1 ? 'Select this one' : `Select these ${formatCount(result.hits)}`, () => select(result.genes)),
        button(`Select all ${formatCount(members.length)}`, () => select(members))));
  };
  const details = el('details', { on: { toggle: fill } },
    el('summary', {}, counted(result.hits, 'gene')), body);
  return details;
}

/**
 * One result: a button that colours its genes on the map, what was counted, and the genes.
 *
 * @param {object} actions `colour(term)`, `choose(gene)`, `select(genes)` and `membersOf(term)`: all genes of a term
 */
export function termRow(result, { name, aspect }, dataset, actions) {
  const colour = button('', () => actions.colour(result.term), {
    class: 'term', 'aria-pressed': 'false', 'data-term': result.term, title: 'Colour these genes on the map',
  });
  colour.append(
    dataText(name, 'term-name'),
    ...(aspect ? [' ', el('span', { class: 'term-aspect' }, aspect)] : []),
    shareBar(result),
    el('span', { class: 'term-numbers' },
      `${formatCount(result.hits)} of ${formatCount(result.size)} \u00b7 ${formatFold(result.fold)} times \u00b7 q ${formatChance(result.q)}`));
  return el('li', {}, colour, genesOf(result, dataset, actions));
}
