/** The legend of a picture: the labels in view, or the scale of numbers. */

import { NUMBER_LEVELS } from './categories.js';
import { categoryOf } from './layers.js';
import { drawableText } from './format.js';
import { endsOf } from './scale_legend.js';
import { shortened as shortenedTo } from './pen.js';
import { cutApart } from './short_labels.js';
import { contains } from './windows.js';

const STEP = 20;
const MARK = 12;
const SIZE = 12;
const MOST_ENTRIES = 36;
const LONGEST = 32;
const BAR = { width: 16, height: 170 };

/** The categories of the points in view, ascending. */
function categoriesInView(list, view) {
  const seen = new Set();
  for (let i = 0; i < list.count; i += 1) {
    if (contains(view, list.x[i], list.y[i])) seen.add(categoryOf(list.kinds[i]));
  }
  return [...seen].sort((a, b) => a - b);
}

function drawEntry(pen, { colour, shape }, text, [left, middle], { ink, width }) {
  pen.mark({ colour, shape, size: MARK - 2, opacity: 1, edge: null, halo: null }, left + MARK / 2, middle);
  pen.text(shortenedTo(text, width - MARK - 6, SIZE), left + MARK + 6, middle + 4, { size: SIZE, fill: ink.text });
}

function drawTitle(pen, title, { left, top, ink, width }) {
  pen.text(shortenedTo(drawableText(title), width, SIZE + 1, 600), left, top + SIZE, { size: SIZE + 1, fill: ink.text, weight: 600 });
}

function drawLabels(pen, { list }, styles, present, room) {
  const named = present.slice(0, MOST_ENTRIES);
  const texts = cutApart(named.map((category) => drawableText(list[category].text)), LONGEST);
  named.forEach((category, row) => {
    drawEntry(pen, styles[category], texts[row], [room.left, room.top + STEP + MARK / 2 + row * STEP], room);
  });
  return named.length;
}

function drawScale(pen, { list, scale }, styles, room) {
  const { left, top, ink } = room;
  const barTop = top + STEP + 4;
  const height = BAR.height / NUMBER_LEVELS;
  for (let level = 0; level < NUMBER_LEVELS; level += 1) {
    // A little higher than its step, so that no seam is seen.
    const y = barTop + BAR.height - (level + 1) * height;
    pen.box(left, y, BAR.width, height + (level > 0 ? 0.5 : 0), { fill: styles[level].colour });
  }
  const [least, most] = endsOf(scale);
  const style = { size: SIZE, fill: ink.text };
  pen.text(most, left + BAR.width + 6, barTop + SIZE - 2, style);
  if (scale.diverging) pen.text('0', left + BAR.width + 6, barTop + BAR.height / 2 + 4, style);
  pen.text(least, left + BAR.width + 6, barTop + BAR.height, style);
  if (list[NUMBER_LEVELS]) {
    drawEntry(pen, styles[NUMBER_LEVELS], list[NUMBER_LEVELS].text, [left, barTop + BAR.height + STEP], room);
  }
}

/**
 * Draws the legend.
 *
 * @param {import('./pen.js').Pen} pen
 * @param {object} model as of `createModel`
 * @param {object} scene `state`, `list` (as of `listPoints`), `view` and `ink`
 * @param {{left: number, top: number, width: number}} place
 * @returns {{named: number, present: number}|null} how many labels it names of those in view, if not all
 */
export function drawLegend(pen, model, { state, list, view, ink }, place) {
  const categories = model.categoriesOf(state);
  if (!categories.labelled) return null;
  const room = { ...place, ink };
  const styles = model.stylesOf(state);
  drawTitle(pen, model.colouringOf(state).title || 'Labels', room);
  if (categories.scale) {
    drawScale(pen, categories, styles, room);
    return null;
  }
  const present = categoriesInView(list, view);
  const named = drawLabels(pen, categories, styles, present, room);
  return named === present.length ? null : { named, present: present.length };
}
