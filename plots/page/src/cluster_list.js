/** The panel of the clusters: what they are, and choosing them. */

import { button, dataText, el } from './dom.js';
import { clusterNotes } from './staying.js';
import { clustersOf, topTerms } from './cluster_facts.js';
import { counted, formatCount } from './format.js';
import { formatChance } from './enrichment_table.js';
import { extremesOf, meanProfile } from './profiles.js';
import { isolated } from './label_legend.js';
import { noiseOf } from './quality.js';
import { sparkLine } from './spark_line.js';
import { swatch } from './swatch.js';
import { writeClusterNames } from './cluster_names.js';

const MOST_TERMS = 3;

/** A term of a higher rate of false discoveries is no name for a cluster on the map. */
const MOST_FALSE_OF_NAME = 1e-3;

/** Of so many clusters terms and profiles are shown; the others are small. */
const MOST_LISTED = 60;

function rangeOf(profiles) {
  const values = profiles.flatMap((profile) => Array.from(profile)).filter(Number.isFinite);
  return {
    least: values.reduce((one, other) => Math.min(one, other), 0),
    most: values.reduce((one, other) => Math.max(one, other), 0),
  };
}

/** Where a profile is highest and lowest, in words. */
function profileText(columns, profile) {
  const ends = extremesOf(profile);
  return ends === null ? 'no value is known' : `highest in ${columns[ends.most]}, lowest in ${columns[ends.least]}`;
}

/** What is known of each cluster, but for its terms. */
function describe({ expression }, list) {
  return list.slice(0, MOST_LISTED).map((cluster) => ({
    ...cluster,
    name: `Cluster ${cluster.label}`,
    terms: [],
    names: [cluster.label],
    profile: expression === null ? null : meanProfile(expression, cluster.genes),
  }));
}

/** Does something for each item, one at a time, when the page has nothing better to do. */
function oneByOne(items, action, end) {
  const soon = window.requestIdleCallback ?? setTimeout;
  function next(at) {
    if (at === items.length) return end();
    action(items[at], at);
    return soon(() => next(at + 1));
  }
  soon(() => next(0));
}

/** The terms of a cluster, each a button that colours its genes on the map by `colourBy(term)`. */
function termList(terms, colourBy) {
  if (terms.length === 0) return [];
  return [el('ul', { class: 'cluster-terms' }, ...terms.map(({ term, name, q }) => {
    const chosen = button('', () => colourBy(term), {
      class: 'quiet cluster-term', 'aria-pressed': 'false', 'data-term': term, title: 'Colour the genes of this term on the map',
    });
    chosen.append(dataText(name), el('span', { class: 'cluster-rate' }, ` q ${formatChance(q)}`));
    return el('li', {}, chosen);
  }))];
}

/** The note of a cluster that noise would also give. */
function noiseNote(quality, genes) {
  const noise = quality === null ? null : noiseOf(quality, genes);
  if (!noise?.isAsNoise) return [];
  return [el('p', { class: 'cluster-doubt noise-note', role: 'note' },
    `Noise would also give it: ${formatCount(noise.better)} of its ${formatCount(genes.length)} genes are better than 95 % of noise.`)];
}

function clusterItem(cluster, { columns, range, mark, notes, select, isolate, colourBy }) {
  const { name, genes, terms, profile } = cluster;
  return el('li', { class: 'cluster' },
    el('div', { class: 'cluster-head' },
      mark,
      button(name, select, { class: 'quiet', title: 'Select its genes', 'aria-label': `${name}: select its ${counted(genes.length, 'gene')}` }),
      el('span', { class: 'counts' }, counted(genes.length, 'gene')),
      button('Only', isolate, { class: 'quiet', title: 'Show this cluster alone, or all again', 'aria-label': `Only ${name}` })),
    ...(profile === null ? [] : [sparkLine(profile, range, `Mean profile of ${name}: ${profileText(columns, profile)}`)]),
    ...notes,
    ...termList(terms, colourBy));
}

/**
 * Fills the panel where the run found clusters, and writes their names on the map.
 *
 * @param {object} termColours as of `createTermColours`
 */
export function showClusters(element, chart, model, store, termColours) {
  const clusters = clustersOf(model);
  if (clusters === null) return;
  const { dataset } = model;
  const stability = clusters.isOfRun ? dataset.quality.stability : null;
  const found = describe(dataset, clusters.list);
  const range = rangeOf(found.map(({ profile }) => profile ?? []));
  const chosen = model.colouredBy(clusters.colouring);
  const categories = model.categoriesOf(chosen);

  const names = el('input', { type: 'checkbox', id: 'cluster-names', checked: true, on: { change: chart.repaintOverlays } });
  const list = el('ul', { class: 'clusters', tabindex: 0, 'aria-label': 'Clusters' });

  const colourBy = (term) => termColours.toggle(dataset.terms, term);

  /** Shows one cluster alone, coloured by clusters; the others again if it is alone already. */
  function isolate(category) {
    const { colouring, shown } = store.get();
    const before = colouring === clusters.colouring ? shown : chosen.shown;
    store.set({ colouring: clusters.colouring, shown: Uint8Array.from(isolated(before, category)) });
  }

  function itemOf(cluster) {
    const category = categories.of[cluster.genes[0]];
    return clusterItem(cluster, {
      columns: dataset.expression?.columns ?? [],
      range,
      mark: swatch(model.stylesOf({ ...store.get(), ...chosen })[category]),
      notes: [...noiseNote(dataset.quality, cluster.genes), ...clusterNotes(stability, cluster.label, cluster.genes)],
      select: () => store.set({ selection: cluster.genes }),
      isolate: () => isolate(category),
      colourBy,
    });
  }

  /** Adds the terms, which take a while, to one of the clusters. */
  function addTerms(cluster, place) {
    cluster.terms = topTerms(dataset, cluster.genes, MOST_TERMS);
    if (cluster.terms.length === 0) return;
    const [{ name, q }] = cluster.terms;
    if (q <= MOST_FALSE_OF_NAME) cluster.names = [`${cluster.label} ${name}`, cluster.label];
    list.children[place].append(...termList(cluster.terms, colourBy));
    chart.repaintOverlays();
  }

  const fill = () => list.replaceChildren(...found.map(itemOf));

  /** Marks the term that colours the map; the colours of clusters are shown while the map has them. */
  function showColours({ colouring }) {
    list.classList.toggle('on-map', colouring === clusters.colouring);
    for (const each of list.querySelectorAll('[data-term]')) {
      each.setAttribute('aria-pressed', String(termColours.isShown(dataset.terms, Number(each.dataset.term))));
    }
  }

  const rest = clusters.list.length - found.length;
  element.append(
    el('h2', {}, `Clusters: ${formatCount(clusters.list.length)}`),
    el('p', { class: 'counts' }, `${clusters.isOfRun ? 'Found among the nearest neighbours in the data, not on the map.' : 'Those of the labels.'}`
      + ' A click on one selects its genes, a click on a term colours them on the map.'),
    el('div', { class: 'row cluster-tools' },
      el('label', { class: 'switch', for: 'cluster-names' }, names, ' Names on the map'),
      button('Colour by cluster', () => store.set(chosen))),
    list,
    ...(rest > 0 ? [el('p', { class: 'counts' }, `and ${counted(rest, 'smaller one')}`)] : []),
  );
  fill();
  store.listen(['theme'], (state) => {
    fill();
    showColours(state);
  });
  store.listen(['colouring'], showColours);
  showColours(store.get());
  writeClusterNames(chart, model, store, found, () => names.checked);
  list.setAttribute('aria-busy', 'true');
  oneByOne(found, addTerms, () => list.removeAttribute('aria-busy'));
}
