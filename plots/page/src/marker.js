/** The ring around the gene in question, and the card that says what it is. */

import { el, dataText } from './dom.js';
import { categoryText, coordinatesText } from './gene_text.js';
import { functionText } from './format.js';
import { nameOf } from './dataset.js';
import { contains } from './windows.js';

const RINGS = [{ radius: 8, ink: 'text' }, { radius: 10, ink: 'surface' }];
const CARD_GAP = 16;

function cardContent(model, state, gene) {
  const { dataset } = model;
  return [
    el('div', { class: 'tip-name' }, dataText(nameOf(dataset, gene))),
    el('div', { class: 'tip-group' }, dataText(categoryText(model, state, gene))),
    el('div', { class: 'tip-function' }, dataText(functionText(dataset.functions[gene] ?? ''))),
    el('div', { class: 'tip-place' }, coordinatesText(model, state, gene)),
  ];
}

/** A corner for a card of some size beside a point: within the plot, and not on the point. */
export function cardCorner(x, y, { width, height }, plot) {
  const right = x + CARD_GAP;
  const left = x - CARD_GAP - width;
  const keep = (value, low, high) => Math.max(Math.min(value, high), low);
  const at = right + width <= plot.left + plot.width || left < plot.left ? right : left;
  return {
    left: keep(at, plot.left, plot.left + plot.width - width),
    top: keep(y + CARD_GAP + height <= plot.top + plot.height ? y + CARD_GAP : y - CARD_GAP - height, plot.top, plot.top + plot.height - height),
  };
}

/** Keeps ring and card at the gene under the pointer or, without one, at the focused gene. */
export function createMarker(chart, model, store) {
  // The status line and the details say the same to screen readers.
  const card = el('div', { class: 'tip', 'aria-hidden': 'true', hidden: true });
  chart.element.append(card);
  let written = null;

  /** The gene to mark, or -1. */
  function marked() {
    const state = store.get();
    const gene = state.hover >= 0 ? state.hover : state.focus;
    if (gene < 0 || state.shown[model.categoriesOf(state).of[gene]] !== 1) return -1;
    const { x, y } = model.pointsOf(state);
    return contains(chart.view(), x[gene], y[gene]) ? gene : -1;
  }

  chart.marker.add((context, { ink }) => {
    const gene = marked();
    if (gene < 0) return;
    const [x, y] = chart.pixelOf(gene);
    context.lineWidth = 2;
    for (const ring of RINGS) {
      context.beginPath();
      context.arc(x, y, ring.radius, 0, 2 * Math.PI);
      context.strokeStyle = ink[ring.ink];
      context.stroke();
    }
  });

  function placeCard() {
    const state = store.get();
    const gene = marked();
    card.hidden = gene < 0;
    if (gene < 0) return;
    const { pair, colouring } = state;
    const isWritten = written && written.gene === gene && written.pair === pair && written.colouring === colouring;
    if (!isWritten) card.replaceChildren(...cardContent(model, state, gene));
    written = { gene, pair, colouring };
    const plot = chart.plot();
    card.style.setProperty('--card-room', `${plot.width}px`);
    const [x, y] = chart.pixelOf(gene);
    const corner = cardCorner(x, y, { width: card.offsetWidth, height: card.offsetHeight }, plot);
    card.style.setProperty('left', `${corner.left}px`);
    card.style.setProperty('top', `${corner.top}px`);
  }

  store.listen(['hover', 'focus'], () => {
    placeCard();
    chart.marker.repaint();
  });
  chart.onMove(placeCard);
}
