/** What is known of the gene that is pointed at or picked. */

import { button, dataText, el } from '../dom.js';
import { functionText } from '../format.js';
import { databaseAddress } from '../gene_text.js';
import { nameOf } from '../dataset.js';
import { runsWithout } from './data.js';
import { toggled } from '../sets.js';

/** A label and its title for each of the columns that say something of a gene. */
function labelsOf(comparison, gene) {
  return comparison.colourings.filter(({ labels }) => labels[gene] !== '').flatMap(({ title, labels }) =>
    [el('dt', {}, dataText(title || 'Label')), el('dd', {}, dataText(labels[gene]))]);
}

/** Fills the card and keeps it true. `say` tells screen readers of a gene that was picked. */
export function showGene(element, comparison, store, say) {
  const body = el('div');
  element.append(el('h2', {}, 'Gene'), body);

  function update({ hover, focus, selection }) {
    const gene = hover >= 0 ? hover : focus;
    if (gene < 0) {
      body.replaceChildren(el('p', { class: 'hint' }, 'Point at a gene: it lights up in all maps.'));
      return;
    }
    const known = functionText(comparison.functions[gene] ?? '');
    const missing = runsWithout(comparison, gene);
    const address = databaseAddress(comparison, gene);
    body.replaceChildren(
      el('p', { class: 'gene-name' }, dataText(nameOf(comparison, gene))),
      el('p', { class: 'gene-function' }, dataText(known)),
      el('dl', {}, ...labelsOf(comparison, gene)),
      ...(missing.length > 0 ? [el('p', { class: 'missing' }, 'Not in the map of ', dataText(missing.join(', ')))] : []),
      ...(address ? [el('a', { href: address, target: '_blank', rel: 'noopener noreferrer' }, 'Saccharomyces Genome Database')] : []),
      ...(focus === gene ? [el('p', {}, button(
        selection.includes(gene) ? 'Take out of the selection' : 'Add to the selection',
        () => store.set({ selection: toggled(store.get().selection, gene) }),
      ))] : []),
    );
  }

  store.listen(['hover', 'focus', 'selection'], update);
  store.listen(['focus'], ({ focus }) => {
    if (focus < 0) return;
    const missing = runsWithout(comparison, focus);
    say([nameOf(comparison, focus), functionText(comparison.functions[focus] ?? ''),
      ...(missing.length > 0 ? [`not in the map of ${missing.join(', ')}`] : [])].join('; '));
  });
  update(store.get());
}
