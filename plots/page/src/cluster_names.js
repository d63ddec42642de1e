/** The names of the clusters, written on the map. */

import { drawableText } from './format.js';
import { middleGene } from './cluster_facts.js';
import { placeBoxes } from './free_boxes.js';
import { widthOf } from './pen.js';

const SIZE = 13;
const WEIGHT = 600;
const LINE_HEIGHT = 18;

/** From the middle of a line down to where its letters stand. */
const BASE = 4.5;

const ROOM = 6;
const LONGEST = 30;

/** Clusters of fewer genes have no name on the map. */
const FEWEST_GENES = 10;

/**
 * Writes the names at the middles of the clusters.
 *
 * @param {object[]} clusters `genes` and `names` of each, the largest first; the first of its names that has room is
 *   written, on a narrow chart the last; names may change
 * @param {function(): boolean} isWanted
 */
export function writeClusterNames(chart, model, store, clusters, isWanted) {
  const large = clusters.filter(({ genes }) => genes.length >= FEWEST_GENES);
  let pair = null;
  let middles = [];

  function placed(state) {
    if (model.pairOf(state) !== pair) {
      pair = model.pairOf(state);
      middles = large.map(({ genes }) => (pair ? middleGene(pair, genes) : -1));
    }
    return large.map(({ names }, index) => ({ names, gene: middles[index] })).filter(({ gene }) => gene >= 0);
  }

  chart.addDrawing((pen, { pixelOf, plot, ink, isNarrow }) => {
    if (!isWanted()) return;
    const right = plot.left + plot.width;
    const bottom = plot.top + plot.height;
    const wanted = placed(store.get())
      .map(({ gene, names }) => {
        const [x, y] = pixelOf(gene);
        const texts = (isNarrow ? names.slice(-1) : names).map((name) => drawableText(name, LONGEST));
        return { x, y, texts, sizes: texts.map((text) => ({ width: widthOf(text, SIZE, WEIGHT) + ROOM, height: LINE_HEIGHT })) };
      })
      .filter(({ x, y }) => x >= plot.left && x <= right && y >= plot.top && y <= bottom);
    placeBoxes(wanted, plot).forEach((box, index) => {
      if (box === null) return;
      pen.text(wanted[index].texts[box.size], box.left + box.width / 2, box.top + box.height / 2 + BASE, {
        size: SIZE, weight: WEIGHT, align: 'middle', fill: ink.text, halo: ink.surface,
      });
    });
  });
}
