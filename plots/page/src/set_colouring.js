/** Colouring the map by named sets. */

/** More combinations of sets than this share one label and one colour. */
const MOST_COMBINATIONS = 12;
const SEVERAL = { text: 'in several sets', colour: '#6b7280' };

/** The colour between all of some colours. */
function mixed(colours) {
  const channel = (at) => Math.round(colours.reduce((sum, colour) => sum + parseInt(colour.slice(at, at + 2), 16), 0) / colours.length);
  return `#${[1, 3, 5].map((at) => channel(at).toString(16).padStart(2, '0')).join('')}`;
}

/** Which of the sets each gene is in, as text of their places; empty for none. */
function membersOf(sets, count) {
  const members = Array(count).fill('');
  sets.forEach(({ genes }, place) => {
    for (const gene of genes) members[gene] += `${members[gene] === '' ? '' : ','}${place}`;
  });
  return members;
}

/**
 * Labels and colours of genes by the sets that they are in.
 *
 * @param {object[]} sets as of `named_sets.js`
 * @param {number} count number of genes
 * @returns `labels`, one per gene: the name of its set, or the names of its sets joined by " + ", empty for
 *   none; `order`: the labels that there are, sets in their order and then combinations; `own`: their colours
 */
export function setColouring(sets, count) {
  const members = membersOf(sets, count);
  const found = [...new Set(members)].filter((key) => key !== '');
  const single = found.filter((key) => !key.includes(',')).sort((a, b) => Number(a) - Number(b));
  const combined = found.filter((key) => key.includes(','));
  const isCrowded = combined.length > MOST_COMBINATIONS;
  const lookOf = (key) => {
    const places = key.split(',').map((place) => sets[place]);
    return { text: places.map(({ name }) => name).join(' + '), colour: mixed(places.map(({ colour }) => colour)) };
  };
  const looks = new Map(single.map((key) => [key, lookOf(key)]));
  for (const key of combined) looks.set(key, isCrowded ? SEVERAL : lookOf(key));
  const listed = new Map([...looks.values()].map(({ text, colour }) => [text, colour]));
  return {
    labels: members.map((key) => looks.get(key)?.text ?? ''),
    order: [...listed.keys()],
    own: [...listed.values()],
    rest: '',
  };
}

/**
 * Keeps track of the sets that colour the map.
 *
 * @returns `has(id)`: whether the map shows its colour now; `toggle(id, isOn)`: from then on the map is coloured by the sets that are on, or,
 *   without any, as it was before
 */
export function followSetColours(model, store) {
  const taken = model.dataset.colourings.map(({ title }) => title);
  const title = taken.includes('Sets') ? 'Sets of this page' : 'Sets';
  const on = new Set();
  let before = 0;
  const isShown = () => model.colouringOf(store.get()).title === title;

  /** Brings the colouring up to date; on the map, too, where it is shown or `isWanted`. */
  function refresh(isWanted) {
    const wasShown = isShown();
    if (isWanted && !wasShown) before = store.get().colouring;
    const sets = store.get().sets.filter(({ id }) => on.has(id));
    const index = model.addColouring({ title, ...setColouring(sets, model.dataset.count) });
    if (sets.length === 0 && wasShown) store.set(model.colouredBy(before));
    else if (sets.length > 0 && (isWanted || wasShown)) store.set(model.colouredBy(index));
  }

  store.listen(['sets'], () => {
    if (on.size > 0) refresh(false);
  });
  return {
    has: (id) => on.has(id) && isShown(),
    toggle(id, isOn) {
      // Those that were on before other colours came would come as a surprise.
      if (!isShown()) on.clear();
      if (isOn) on.add(id);
      else on.delete(id);
      refresh(true);
    },
  };
}
