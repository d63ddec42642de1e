/** The page's head: title, spare texts, and what is shown in one sentence. */

import { el, dataText } from './dom.js';
import { counted, formatCoordinate, formatCount } from './format.js';

const MOST_LABELS_NAMED = 8;

/** The title, or the name where there is none. */
export function titleOf(dataset) {
  return dataset.title || dataset.name || 'Genes';
}

function categoriesText({ list, labelled, scale }) {
  if (!labelled) return '';
  if (scale) return `Colours from ${formatCoordinate(scale.least)} to ${formatCoordinate(scale.most)}.`;
  const named = list.slice(0, MOST_LABELS_NAMED).map(({ text, count }) => `${text} (${formatCount(count)})`);
  const rest = list.length - named.length;
  return `${counted(list.length, 'label')}: ${named.join(', ')}${rest > 0 ? ` and ${formatCount(rest)} more` : ''}.`;
}

/** What the chart shows, for those who do not see it. */
function chartSentence(model, state) {
  const { dataset } = model;
  const categories = model.categoriesOf(state);
  const pair = model.pairOf(state);
  if (!pair?.extent) return 'Scatter without any points.';
  const { x0, x1, y0, y1 } = pair.extent;
  const range = (title, low, high) => `${title || 'the axis'} runs from ${formatCoordinate(low)} to ${formatCoordinate(high)}`;
  return [
    `Scatter of ${counted(pair.placed, 'gene')} of ${formatCount(dataset.count)}; `,
    `${range(pair.xTitle, x0, x1)}, ${range(pair.yTitle, y0, y1)}. `,
    categoriesText(categories),
  ].join('').trim();
}

function leadText({ dataset }, categories, pair) {
  if (dataset.count === 0 || !pair) return 'There are no points to show.';
  const labels = categories.labelled && !categories.scale ? `, in ${counted(categories.list.length, 'label')}` : '';
  const missing = dataset.count - pair.placed;
  const unplaced = missing > 0
    ? ` ${counted(missing, 'gene has', 'genes have')} no finite position and ${missing === 1 ? 'is' : 'are'} not drawn.`
    : '';
  return `${counted(dataset.count, 'gene')}${labels}; genes that behave alike lie close together.${unplaced}`;
}

/** Fills the head of the page and keeps it true. */
export function showSummary(element, chartElement, model, store) {
  const lead = el('p', { class: 'lead' });
  element.append(
    el('h1', {}, dataText(titleOf(model.dataset))),
    lead,
    ...model.dataset.texts.map((text) => el('p', { class: 'spare' }, dataText(text))),
  );
  function update(state) {
    lead.textContent = leadText(model, model.categoriesOf(state), model.pairOf(state));
    chartElement.setAttribute('aria-label', chartSentence(model, state));
  }
  store.listen(['pair', 'colouring'], update);
  update(store.get());
}
