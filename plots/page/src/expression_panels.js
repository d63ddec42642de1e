/** What the page shows of the values that the map was made of; pages without them go without. */

import { el } from './dom.js';
import { showConditions } from './conditions.js';
import { showDistanceSwitch } from './distance_colouring.js';
import { showGeneProfile } from './gene_profile.js';
import { colourReach } from './heat_lines.js';
import { showHeatMap } from './heat_map.js';
import { showTrueNeighbours } from './true_neighbours.js';
import { valueFormat } from './format.js';

/**
 * Adds to the card of the gene, and fills the sections below the chart and of conditions.
 *
 * @param {function(string): HTMLElement} part the place of the page with an id
 */
export function showExpression(part, chart, model, store, choose, say) {
  if (!model.dataset.expression) return;
  const [profile, neighbours, distances] = ['gene-profile', 'true-neighbours', 'distances'].map((id) => el('div', { id }));
  part('details').append(profile, neighbours, distances);
  const format = valueFormat(colourReach(model.dataset.expression, false));
  showGeneProfile(profile, model, store, format);
  showTrueNeighbours(neighbours, chart, model, store, { choose, format });
  showDistanceSwitch(distances, model, store);
  showHeatMap(part('profiles'), chart, model, store, { choose, say, format });
  showConditions(part('conditions'), model, store, format);
}
