/** Colouring the map by the genes of one term, wherever on the page the term is listed. */

const TITLE = 'Chosen term';
const REST = 'other';
const REST_OF_OTHER = 'all others';

/**
 * Keeps track of the term that colours the map.
 *
 * @param {function} say tells a text to those who listen
 * @returns `isShown(groups, term)`; `toggle(groups, term)` colours the genes of a term, or brings the colours back
 *   that were there before; `groups` as of `dataset.terms`
 */
export function createTermColours(model, store, say) {
  let [shown, before] = [{ colouring: -1 }, null];
  const isShown = (groups, term) => store.get().colouring === shown.colouring && shown.groups === groups && shown.term === term;
  return {
    isShown,
    toggle(groups, term) {
      const { colouring, shown: labels } = store.get();
      if (isShown(groups, term)) {
        store.set(before);
        say('Coloured as before');
        return;
      }
      if (colouring !== shown.colouring) before = { colouring, shown: labels };
      const { name } = groups.list[term];
      const rest = name === REST ? REST_OF_OTHER : REST;
      const texts = Array.from({ length: model.dataset.count }, (_, gene) => (groups.of(gene).includes(term) ? name : rest));
      shown = { groups, term, colouring: model.addColouring({ title: TITLE, labels: texts, order: [name], rest }) };
      store.set(model.colouredBy(shown.colouring));
      say(`Coloured by ${name}`);
    },
  };
}
