/** How the map is drawn: size and strength of the points, density, numbers on the axes; and its scale. */

import { densityOf, scaleOf, SQUARE } from './density.js';
import { el } from './dom.js';
import { formatCount } from './format.js';

const SWITCHES = [
  ['shading', 'Density', 'Shade the map where genes lie densely'],
  ['contours', 'Contours', 'Draw lines of equal density, each twice as dense as the one before'],
  ['coordinates', 'Numbers on the axes', 'Directions and units of a map mean nothing; numbers help to find a place again'],
];

const SLIDERS = [
  ['pointSize', 'Size of points'],
  ['pointOpacity', 'Opacity of points'],
];

/** Where genes lie singly there is no density to speak of. */
const LEAST_SHOWN = 2;

/** Sliders go from a quarter to four times, in steps of equal factors. */
const SLIDER_REACH = 2;

function switchOf([key, text, title], store) {
  const box = el('input', { type: 'checkbox', on: { change: () => store.set({ [key]: box.checked }) } });
  const update = (state) => {
    box.checked = state[key];
  };
  store.listen([key], update);
  update(store.get());
  return el('label', { title }, box, text);
}

function sliderOf([key, text], store) {
  const slider = el('input', {
    type: 'range',
    min: -SLIDER_REACH,
    max: SLIDER_REACH,
    step: 0.25,
    id: key,
    on: { input: () => store.set({ [key]: 2 ** Number(slider.value) }) },
  });
  const update = (state) => {
    slider.value = String(Math.log2(state[key]));
    slider.setAttribute('aria-valuetext', `${Math.round(100 * state[key])} %`);
  };
  store.listen([key], update);
  update(store.get());
  return el('div', { class: 'slider' }, el('label', { for: key }, text), slider);
}

/** Makes the panel of the toolbar. */
export function viewOptions(store) {
  const panel = el('div', { class: 'look-panel' },
    ...SLIDERS.map((each) => sliderOf(each, store)),
    ...SWITCHES.map((each) => switchOf(each, store)));
  const details = el('details', { class: 'look' }, el('summary', { title: 'How the map is drawn' }, 'Drawing'), panel);
  details.addEventListener('keydown', (event) => {
    if (event.key !== 'Escape' || !details.open) return;
    event.stopPropagation();
    details.open = false;
    details.querySelector('summary').focus();
  });
  document.addEventListener('pointerdown', (event) => {
    if (!details.contains(event.target)) details.open = false;
  });
  return details;
}

function amount(value) {
  return value < 10 ? String(Math.round(value * 10) / 10) : formatCount(Math.round(value));
}

/** Keeps the scale true: how many genes a square of the map holds. */
export function showDensityScale(element, chart) {
  const text = el('span');
  const square = el('span', { class: 'density-square', 'aria-hidden': 'true' });
  element.append(square, text);
  function update() {
    const { usual, most } = scaleOf(densityOf(chart.list(), chart.view(), chart.plot()));
    element.hidden = most < LEAST_SHOWN;
    text.textContent = `${SQUARE} \u00d7 ${SQUARE} pixels hold ${amount(usual)} genes where there are any, ${amount(most)} at most`;
  }
  chart.onSettle(update);
  update();
}
