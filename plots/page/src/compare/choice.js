/** The choice of a perplexity as a chart, linked to the maps. */

import { button, el, svg } from '../dom.js';
import { layoutOf, nearestTo, piecesOf, sentenceOf } from './choice_layout.js';

const HEIGHT = 250;
const LEAST_WIDTH = 220;
const GRID = [0, 0.2, 0.4, 0.6, 0.8, 1];
const REACH = 4.5;

/** A mark of its own for each curve, so that colours are not all that tells them apart. */
const MARKS = [
  (x, y) => svg('circle', { cx: x, cy: y, r: REACH }),
  (x, y) => svg('rect', { x: x - REACH, y: y - REACH, width: 2 * REACH, height: 2 * REACH }),
  (x, y) => svg('path', { d: `M${x} ${y - 1.2 * REACH}l${1.2 * REACH} ${2.2 * REACH}h${-2.4 * REACH}z` }),
];

const markOf = (which) => MARKS[which % MARKS.length];

function line(x1, y1, x2, y2, attributes) {
  return svg('line', { x1, y1, x2, y2, ...attributes });
}

function axes({ frame, x, y, labelled }, { perplexities }) {
  const parts = GRID.flatMap((share) => [
    line(frame.left, y(share), frame.right, y(share), { class: 'grid' }),
    svg('text', { x: frame.left - 6, y: y(share) + 4, 'text-anchor': 'end' }, `${100 * share} %`),
  ]);
  for (const which of labelled) {
    parts.push(svg('text', { x: x[which], y: frame.bottom + 16, 'text-anchor': 'middle' }, String(perplexities[which])));
  }
  parts.push(svg('text', {
    x: (frame.left + frame.right) / 2, y: frame.bottom + 31, 'text-anchor': 'middle',
  }, 'Perplexity'));
  return parts;
}

function curveOf(curve, number, layout) {
  const group = svg('g', { class: `curve curve-${number % MARKS.length}` });
  for (const piece of piecesOf(curve, layout)) {
    group.append(svg('polyline', { points: piece.map((place) => place.join(',')).join(' ') }));
    for (const [x, y] of piece) group.append(markOf(number)(x, y));
  }
  return group;
}

function drawing(choice, width, run) {
  const layout = layoutOf(choice, width, HEIGHT);
  const { frame, x, y } = layout;
  const parts = axes(layout, choice);
  if (run >= 0) parts.push(line(x[run], frame.top, x[run], frame.bottom, { class: 'pointed' }));
  if (Number.isFinite(choice.ofNoise)) {
    parts.push(line(frame.left, y(choice.ofNoise), frame.right, y(choice.ofNoise), { class: 'of-noise' }));
  }
  parts.push(...choice.curves.map((curve, number) => curveOf(curve, number, layout)));
  return { layout, picture: svg('svg', { viewBox: `0 0 ${width} ${HEIGHT}`, width, height: HEIGHT, 'aria-hidden': 'true' }, ...parts) };
}

function legendOf({ curves, ofNoise }) {
  const items = curves.map(({ name }, number) => el('li', {},
    svg('svg', { class: `curve curve-${number % MARKS.length}`, viewBox: '0 0 26 14', 'aria-hidden': 'true' },
      svg('polyline', { points: '0,7 26,7' }), markOf(number)(13, 7)), name));
  if (Number.isFinite(ofNoise)) {
    items.push(el('li', {}, svg('svg', { viewBox: '0 0 26 14', 'aria-hidden': 'true' },
      line(0, 7, 26, 7, { class: 'of-noise' })), 'Better than noise, at most, of noise itself'));
  }
  return el('ul', { class: 'choice-legend' }, ...items);
}

/**
 * Fills the chart and keeps it true: the perplexity that the reader points at is that of the map which is
 * marked, and the other way round.
 *
 * @param {HTMLElement} section of the choice
 * @param {object} comparison as of `readComparison`, with a `choice`
 * @param {object} store of the reader's choices
 * @param {HTMLElement[]} cards one per run
 */
export function showChoice(section, { choice }, store, cards) {
  const frame = el('div', { class: 'choice-frame' });
  const sentence = el('p', { class: 'counts' });
  // What is pointed at or focused changes the sentence, too, and would be read out again and again.
  const announced = el('p', { class: 'announced', 'aria-live': 'polite' });
  const go = (run) => {
    store.set({ run });
    cards[run].scrollIntoView({ block: 'nearest' });
  };
  const announce = (run) => {
    go(run);
    announced.textContent = sentenceOf(choice, run);
  };
  const buttons = choice.perplexities.map((perplexity, run) => button(String(perplexity), () => announce(run), {
    'aria-label': `Perplexity ${perplexity}${choice.recommended === run ? ', recommended' : ''}: mark its map`,
    class: choice.recommended === run ? 'recommended' : undefined,
  }));
  section.querySelector('.choice-chart').append(legendOf(choice), frame,
    el('div', { class: 'group choice-runs', role: 'group', 'aria-label': 'Perplexity' }, ...buttons), sentence, announced);
  section.dataset.drawn = 'true';

  let layout = null;
  function update() {
    const { run } = store.get();
    const drawn = drawing(choice, Math.max(frame.clientWidth, LEAST_WIDTH), run);
    layout = drawn.layout;
    frame.replaceChildren(drawn.picture);
    sentence.textContent = run >= 0 ? sentenceOf(choice, run) : '';
    buttons.forEach((node, which) => node.setAttribute('aria-pressed', String(which === run)));
    cards.forEach((card, which) => card.classList.toggle('pointed', which === run));
  }
  const runAt = (event) => nearestTo(layout, event.clientX - frame.getBoundingClientRect().left);
  frame.addEventListener('pointermove', (event) => store.set({ run: runAt(event) }));
  frame.addEventListener('click', (event) => go(runAt(event)));
  cards.forEach((card, run) => {
    for (const kind of ['pointerenter', 'focusin']) card.addEventListener(kind, () => store.set({ run }));
  });
  store.listen(['run'], update);
  new ResizeObserver(update).observe(frame);
  update();
}
