/** The panel that says everything about the focused gene. */

import { button, dataText, el } from './dom.js';
import { coordinatesText, databaseAddress } from './gene_text.js';
import { functionText } from './format.js';
import { nameOf } from './dataset.js';
import { includes, toggled } from './sets.js';

function databaseLink(address) {
  return el('p', {}, el('a', { href: address, target: '_blank', rel: 'noopener noreferrer' },
    'Public database page', el('span', { class: 'unseen' }, ' (opens a new tab)')));
}

/** Fills the panel and keeps it true. */
export function showDetails(element, model, store) {
  const heading = el('h2', {}, 'Gene');
  const body = el('div');
  element.append(heading, body);

  function entry(term, text) {
    return [el('dt', {}, term), el('dd', {}, dataText(text))];
  }

  /** What it is called besides, and the named sets that it is in. */
  function otherNames({ sets }, gene) {
    const known = model.dataset.aliases?.[gene];
    const names = known ? [known.systematic, ...known.aliases].filter((name) => name !== nameOf(model.dataset, gene)) : [];
    const its = sets.filter(({ genes }) => includes(genes, gene)).map(({ name }) => name);
    return [
      ...(names.length > 0 ? entry('Also called', names.join(', ')) : []),
      ...(its.length > 0 ? entry('Sets', its.join(', ')) : []),
    ];
  }

  function describe(state, gene) {
    const { dataset } = model;
    const labels = dataset.colourings.filter((colouring) => (colouring.labels[gene] ?? '') !== '');
    const listed = dataset.genes[gene] ?? '';
    const address = databaseAddress(dataset, gene);
    const chosen = includes(state.selection, gene);
    return [
      el('p', { class: 'gene-name' }, dataText(nameOf(dataset, gene))),
      el('p', { class: 'gene-function' }, dataText(functionText(dataset.functions[gene] ?? ''))),
      el('dl', {},
        ...(listed === '' ? [] : entry('Listed as', listed)),
        ...otherNames(state, gene),
        ...labels.flatMap((colouring) => entry(colouring.title || 'Label', colouring.labels[gene])),
        ...entry('Group', model.pairOf(state)?.group ?? ''),
        ...entry('Place', coordinatesText(model, state, gene))),
      el('div', { class: 'row gene-ways' },
        button(chosen ? 'Remove from selection' : 'Add to selection',
          () => store.set({ selection: toggled(store.get().selection, gene) })),
        ...(address === '' ? [] : [databaseLink(address)])),
    ];
  }

  function update(state) {
    const hint = el('p', { class: 'hint' }, 'Click a point, or press an arrow key in the chart, to see what the gene does.');
    const hadFocus = body.contains(document.activeElement);
    body.replaceChildren(...(state.focus >= 0 ? describe(state, state.focus) : [hint]));
    if (hadFocus) body.querySelector('button')?.focus();
  }

  store.listen(['focus', 'pair', 'selection', 'sets'], update);
  update(store.get());
}
