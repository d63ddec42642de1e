/**
 * The frame of the plot, the names of its axes and, if wanted, their numbers. The directions of a map mean
 * nothing, so that numbers are there for those who look for a place.
 */

import { drawableText, formatTick } from './format.js';
import { shortened, widthOf } from './pen.js';

const TICK_SIZE = 11;
const TITLE_SIZE = 12.5;
const TICK_LENGTH = 5;
const PIXELS_BETWEEN_TICKS = 90;
const LEAST_GAP = 14;

/** Numbers at equal, round steps within a range, at most about `count` of them. */
export function ticksWithin(low, high, count) {
  const rough = (high - low) / Math.max(count, 1);
  if (!(rough > 0) || !Number.isFinite(rough)) return [];
  const decade = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((multiple) => multiple * decade).find((each) => each >= rough * 0.999) ?? rough;
  const first = Math.ceil(low / step);
  const ticks = [];
  for (let i = first; i * step <= high && ticks.length < 100; i += 1) ticks.push(Number((i * step).toPrecision(12)));
  return ticks;
}

/** Ticks of the horizontal axis: fewer of them where their numbers are long. */
function ticksAcross(low, high, width, decimals) {
  for (let count = Math.max(Math.round(width / PIXELS_BETWEEN_TICKS), 1); count >= 1; count -= 1) {
    const ticks = ticksWithin(low, high, count);
    const widest = Math.max(0, ...ticks.map((tick) => widthOf(formatTick(tick, decimals), TICK_SIZE)));
    if (ticks.length < 2 || ((ticks[1] - ticks[0]) / (high - low)) * width >= widest + LEAST_GAP) return ticks;
  }
  return [];
}

function ticksOf(view, plot, decimals) {
  return {
    x: ticksAcross(view.x0, view.x1, plot.width, decimals),
    y: ticksWithin(view.y0, view.y1, Math.max(Math.round(plot.height / PIXELS_BETWEEN_TICKS), 2)),
  };
}

/** The room that numbers of the vertical axis take, over all windows as large as a part of the whole. */
export function tickRoom(whole, decimals) {
  const ends = [whole.y0, whole.y1, ...ticksWithin(whole.y0, whole.y1, 6)];
  const texts = ends.map((value) => formatTick(Number(value.toPrecision(2)), decimals));
  // Zoomed in, numbers have up to three decimals more.
  return Math.max(...texts.map((text) => widthOf(text, TICK_SIZE))) + widthOf('.000', TICK_SIZE);
}

/**
 * Lines through the plot at the ticks, in pixels from the corner given.
 *
 * @param {import('./pen.js').Pen} pen
 */
export function drawGrid(pen, { view, plot, ink, layout }) {
  const ticks = ticksOf(view, plot, layout.tickDecimals);
  const x = (value) => plot.left + ((value - view.x0) / (view.x1 - view.x0)) * plot.width;
  const y = (value) => plot.top + ((view.y1 - value) / (view.y1 - view.y0)) * plot.height;
  const crisp = (value) => Math.round(value) + 0.5;
  pen.lines([
    ...ticks.x.map((tick) => [crisp(x(tick)), plot.top, crisp(x(tick)), plot.top + plot.height]),
    ...ticks.y.map((tick) => [plot.left, crisp(y(tick)), plot.left + plot.width, crisp(y(tick))]),
  ], { stroke: ink.grid });
}

function drawNumbers(pen, { view, plot, ink, layout }, room) {
  const { tickDecimals } = layout;
  const ticks = ticksOf(view, plot, tickDecimals);
  const bottom = plot.top + plot.height;
  const style = { size: TICK_SIZE, fill: ink.muted };
  for (const tick of ticks.x) {
    const x = plot.left + ((tick - view.x0) / (view.x1 - view.x0)) * plot.width;
    pen.lines([[x, bottom, x, bottom + TICK_LENGTH]], { stroke: ink.axis });
    pen.text(formatTick(tick, tickDecimals), x, bottom + TICK_LENGTH + 12, { ...style, align: 'middle' });
  }
  for (const tick of ticks.y) {
    const y = plot.top + ((view.y1 - tick) / (view.y1 - view.y0)) * plot.height;
    pen.lines([[plot.left - TICK_LENGTH, y, plot.left, y]], { stroke: ink.axis });
    pen.text(shortened(formatTick(tick, tickDecimals), room, TICK_SIZE), plot.left - TICK_LENGTH - 3, y + 4, { ...style, align: 'end' });
  }
}

/**
 * Draws frame, names and numbers.
 *
 * @param {import('./pen.js').Pen} pen
 * @param {object} scene
 * @param {{x0, x1, y0, y1}} scene.view window shown
 * @param {{left, top, width, height}} scene.plot
 * @param {object|undefined} scene.pair as of `readDataset`
 * @param {object} scene.ink colours
 * @param {object} scene.layout as of `readDataset`
 * @param {boolean} scene.numbers whether the axes have numbers
 * @param {number[]} scene.margins top, right, bottom, left
 */
export function drawAxes(pen, scene) {
  const { plot, pair, ink, layout, numbers, margins } = scene;
  const [, , bottom, left] = margins;
  pen.box(plot.left + 0.5, plot.top + 0.5, plot.width - 1, plot.height - 1, { stroke: ink.axis });
  if (numbers) drawNumbers(pen, scene, left - TITLE_SIZE - 20);
  const style = { size: TITLE_SIZE, fill: ink.text, align: 'middle' };
  const title = (text, length) => shortened(drawableText(text), length, TITLE_SIZE);
  pen.text(title(pair?.xTitle ?? '', plot.width), plot.left + plot.width / 2, plot.top + plot.height + bottom - 8, style);
  pen.text(title(pair?.yTitle ?? '', plot.height), plot.left - left + TITLE_SIZE + 4, plot.top + plot.height / 2, {
    ...style,
    turn: layout.yTitleTurn,
  });
}

/** Pixels below and beside the plot that axes need: `[bottom, left]`. */
export function axisRoom(whole, layout, numbers) {
  return numbers ? [46, Math.ceil(tickRoom(whole, layout.tickDecimals)) + TITLE_SIZE + 24] : [28, 28];
}
