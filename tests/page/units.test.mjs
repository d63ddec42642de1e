import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { findCategories, findLevels, MOST_CATEGORIES, NUMBER_LEVELS } from '../../plots/page/src/categories.js';
import { buildLayers } from '../../plots/page/src/layers.js';
import { categoryStyles, levelStyles } from '../../plots/page/src/palette.js';
import { drawableText, fileStem, formatCoordinate, formatCount, formatTick } from '../../plots/page/src/format.js';
import { drawnGenes, genesInPolygon, genesInWindow, nearestGene, nextGene } from '../../plots/page/src/points.js';
import { includes, toggled, union } from '../../plots/page/src/sets.js';
import { between, fitWindow, fromPercent, toPercent, windowAt } from '../../plots/page/src/windows.js';
import { readDataset } from '../../plots/page/src/dataset.js';
import { createNumbers, LABEL_COLUMNS, smallData } from './support.mjs';

const perPixel = (view, width, height) => [(view.x1 - view.x0) / width, (view.y1 - view.y0) / height];

describe('windows', () => {
  test('a fitted window holds its extent, and a unit is as long on both axes', () => {
    const extent = { x0: -3, x1: 5, y0: 10, y1: 11 };
    const view = fitWindow(extent, 700, 300);
    const [across, up] = perPixel(view, 700, 300);
    assert.ok(Math.abs(across - up) < 1e-12);
    assert.ok(view.x0 < -3 && view.x1 > 5 && view.y0 < 10 && view.y1 > 11);
  });

  test('no extent, a single point and overflowing extents give finite windows', () => {
    const point = { x0: 2, x1: 2, y0: 3, y1: 3 };
    const huge = { x0: -1.7e308, x1: 1.7e308, y0: 0, y1: 0 };
    for (const extent of [null, point, huge]) {
      const view = fitWindow(extent, 200, 100);
      assert.ok(Object.values(view).every(Number.isFinite), JSON.stringify(view));
      assert.ok(view.x1 > view.x0 && view.y1 > view.y0);
    }
  });

  test('percent ranges lead back to the window', () => {
    const whole = { x0: -10, x1: 30, y0: 0, y1: 20 };
    const view = { x0: 0, x1: 4, y0: 5, y1: 7 };
    const back = fromPercent(whole, toPercent(whole, view));
    for (const side of Object.keys(view)) assert.ok(Math.abs(back[side] - view[side]) < 1e-12);
  });

  test('a window at the edge is moved into the whole', () => {
    const whole = { x0: 0, x1: 100, y0: 0, y1: 50 };
    assert.deepEqual(windowAt(whole, 99, -10, 0.1), { x0: 90, x1: 100, y0: 0, y1: 5 });
    assert.deepEqual(windowAt(whole, 7, 7, 3), whole);
  });

  test('a flight starts and ends where it should', () => {
    const whole = { x0: 0, x1: 100, y0: 0, y1: 50 };
    const to = windowAt(whole, 70, 30, 0.05);
    const close = (one, other) => Object.keys(one).every((side) => Math.abs(one[side] - other[side]) < 1e-9);
    assert.ok(close(between(whole, whole, to, 0), whole));
    assert.ok(close(between(whole, whole, to, 1), to));
    assert.ok(close(between(whole, to, to, 0.5), to));
  });
});

describe('points', () => {
  const points = {
    x: Float64Array.of(0, 10, 0, -10, 0, 0, NaN),
    y: Float64Array.of(0, 1, 10, 0, -10, 0, 0),
    genes: Int32Array.of(0, 1, 2, 3, 4, 5),
  };

  test('the nearest is the nearest of all, within reach', () => {
    const next = createNumbers(3);
    const x = Float64Array.from({ length: 200 }, next);
    const y = Float64Array.from({ length: 200 }, next);
    const genes = Int32Array.from({ length: 200 }, (_, gene) => gene);
    for (let trial = 0; trial < 50; trial += 1) {
      const [atX, atY] = [next(), next()];
      const distances = Array.from(genes, (gene) => Math.hypot(x[gene] - atX, y[gene] - atY));
      assert.equal(nearestGene({ x, y, genes }, atX, atY), distances.indexOf(Math.min(...distances)));
    }
    assert.equal(nearestGene(points, 5, 5, 1), -1);
    assert.equal(nearestGene(points, 0.1, 0), 5, 'of equals, the one drawn on top');
  });

  test('steps lead to the next gene in each direction, or nowhere', () => {
    assert.equal(nextGene(points, 5, 1, 0), 1);
    assert.equal(nextGene(points, 5, 0, 1), 2);
    assert.equal(nextGene(points, 0, -1, 0), 3);
    assert.equal(nextGene(points, 0, 0, -1), 4);
    assert.equal(nextGene(points, 1, 1, 0), -1);
  });

  test('genes on the same place are reached one after the other', () => {
    assert.equal(nextGene(points, 0, 1, 0), 5);
    assert.equal(nextGene(points, 5, -1, 0), 0);
  });

  test('polygons and windows hold what lies in them', () => {
    const triangle = [[-1, -1], [11, -1], [-1, 11]];
    assert.deepEqual([...genesInPolygon(points, triangle)], [0, 2, 5]);
    assert.deepEqual([...genesInWindow(points, { x0: -1, x1: 11, y0: -1, y1: 2 })], [0, 1, 5]);
  });

  test('genes without a position or with a hidden label are not drawn', () => {
    const pair = { x: Float64Array.of(1, NaN, 3), y: Float64Array.of(1, 2, 3), placed: 2 };
    const categories = { of: Uint16Array.of(0, 0, 1) };
    assert.deepEqual([...drawnGenes(pair, categories, Uint8Array.of(1, 1))], [0, 2]);
    assert.deepEqual([...drawnGenes(pair, categories, Uint8Array.of(1, 0))], [0]);
  });
});

test('sets of genes', () => {
  const genes = Int32Array.of(2, 5, 9);
  assert.deepEqual([0, 2, 3, 9, 10].map((gene) => includes(genes, gene)), [false, true, false, true, false]);
  assert.deepEqual([...union(genes, [10, 5, 1])], [1, 2, 5, 9, 10]);
  assert.deepEqual([...toggled(genes, 5)], [2, 9]);
  assert.deepEqual([...toggled(genes, 7)], [2, 5, 7, 9]);
});

describe('categories', () => {
  const entry = (text, count, position, grey = false) => ({ text, count, grey, position });
  const stylesOf = (list, scheme = '', own = []) => categoryStyles(list, { scheme, own, theme: 'light' });
  const bright = (count) => Array.from({ length: count }, (_, position) => entry('', 0, position));

  test('the stated order comes first, the rest as it appears, and what is none of these last', () => {
    const { list, of, labelled } = findCategories(['', 'b', 'a', 'b'], ['z', 'a'], 4);
    assert.ok(labelled);
    assert.deepEqual(list, [entry('a', 1, 0), entry('b', 2, 2), entry('(no label)', 1, 1, true)]);
    assert.deepEqual([...of], [2, 1, 0, 1]);
  });

  test('labels that say "none" in any way are grey, and keep a colour that is theirs', () => {
    const { list } = findCategories(['Other', 'x', 'NA', 'none ', 'UNKNOWN', 'others', 'n'], [], 7);
    assert.deepEqual(list.map(({ text }) => text), ['x', 'others', 'n', 'Other', 'NA', 'none ', 'UNKNOWN']);
    assert.deepEqual(list.map(({ grey }) => grey), [false, false, false, true, true, true, true]);
    const styles = stylesOf(list, '', ['#111111', '#222222']);
    assert.deepEqual(styles.map(({ colour }) => colour),
      ['#222222', '#d55e00', '#009e73', '#111111', '#b4bcc4', '#b4bcc4', '#b4bcc4']);
    assert.deepEqual(findCategories(['x', 'none'], ['none'], 2).list.map(({ text }) => text), ['none', 'x'], 'as stated');
    assert.deepEqual(styles.slice(3).map(({ shape }) => shape.name), ['circle', 'circle', 'circle', 'circle']);
  });

  test('numbered groups come by their number', () => {
    const texts = (order) => findCategories(['10', '9', 'other', '2'], order, 4).list.map(({ text }) => text);
    assert.deepEqual(texts([]), ['2', '9', '10', 'other']);
    assert.deepEqual(texts(['9']), ['9', '10', '2', 'other']);
  });

  test('the background is grey, last, and beneath the others', () => {
    const categories = findCategories(['new', 'old', 'new', 'old'], ['new'], 4, 'old');
    assert.deepEqual(categories.list.map(({ text, grey }) => [text, grey]), [['new', false], ['old', true]]);
    const styles = stylesOf(categories.list);
    assert.deepEqual(styles.map(({ colour }) => colour), ['#0072b2', '#b4bcc4']);
    const points = { x: [0, 1, 2, 3], y: [0, 1, 2, 3], genes: Int32Array.of(0, 1, 2, 3) };
    const roles = (highlight) => buildLayers(points, categories, styles, highlight)
      .map(({ category, role, count }) => `${role} ${category} ${count}`);
    assert.deepEqual(roles(null), ['plain 1 2', 'plain 0 2']);
    assert.deepEqual(roles(Int32Array.of(0, 1)), ['dim 1 1', 'dim 0 1', 'lit 1 1', 'lit 0 1']);
  });

  test('genes without a number lie beneath the others', () => {
    const categories = findLevels(Float64Array.of(0, NaN, 1), 'old');
    assert.deepEqual(categories.list.map(({ grey }) => grey).indexOf(true), NUMBER_LEVELS);
    assert.equal(categories.list.at(-1).text, 'old or no number');
    const points = { x: [0, 1, 2], y: [0, 1, 2], genes: Int32Array.of(0, 1, 2) };
    const styles = levelStyles(NUMBER_LEVELS, 'light');
    const order = buildLayers(points, categories, styles, null).map(({ category }) => category);
    assert.deepEqual(order, [NUMBER_LEVELS, 0, NUMBER_LEVELS - 1]);
  });

  test('no labels are one category', () => {
    assert.equal(findCategories(['', ''], [], 2).labelled, false);
    assert.equal(findCategories([], [], 2).list.length, 1);
  });

  test('too many labels share the last entry', () => {
    const labels = Array.from({ length: 1000 }, (_, index) => `label ${index}`);
    const { list, of } = findCategories(labels, [], 1000);
    assert.equal(list.length, MOST_CATEGORIES);
    assert.deepEqual(list.at(-1), entry('501 other labels', 501, 1000, true));
    assert.equal(of[999], MOST_CATEGORIES - 1);
  });

  test('the first 64 styles differ, invalid colours are ignored', () => {
    const styles = stylesOf(bright(70), '', ['red', '#12AB9f', 'url(x)']);
    assert.equal(new Set(styles.slice(0, 64).map(({ colour, shape }) => colour + shape.name)).size, 64);
    assert.equal(new Set(styles.slice(0, 8).map(({ shape }) => shape.name)).size, 8);
    assert.equal(styles[0].colour, '#0072b2');
    assert.equal(styles[1].colour, '#12ab9f');
  });

  test('numbers are sorted into equal steps, genes without one come last', () => {
    const { list, of, labelled, scale } = findLevels(Float64Array.of(0, NaN, 64, 31.9, 32));
    assert.ok(labelled);
    assert.deepEqual(scale, { least: 0, most: 64, lowest: 0, highest: 64, diverging: false });
    assert.deepEqual([...of], [0, NUMBER_LEVELS, NUMBER_LEVELS - 1, NUMBER_LEVELS / 2 - 1, NUMBER_LEVELS / 2]);
    assert.equal(list.length, NUMBER_LEVELS + 1);
    assert.deepEqual([list[0].text, list[0].count], ['0.000 to 1.000', 1]);
    assert.deepEqual([list.at(-1).text, list.at(-1).count], ['no number', 1]);
  });

  test('a few far numbers do not take the colours from the others', () => {
    const numbers = Float64Array.from({ length: 201 }, (_, gene) => (gene === 0 ? 1e6 : gene));
    const { list, of, scale } = findLevels(numbers);
    assert.deepEqual([scale.least, scale.most, scale.lowest, scale.highest], [3, 199, 1, 1e6]);
    assert.deepEqual([of[0], of[1], of[200]], [NUMBER_LEVELS - 1, 0, NUMBER_LEVELS - 1]);
    assert.equal(list[0].text, '1.000 to 6.063');
    assert.equal(list.at(-1).text, '195.938 to 1000000.000');
  });

  test('numbers of both signs have 0 in the middle, unless the scale is said to be another', () => {
    const { of, scale } = findLevels(Float64Array.of(-1, 0, 4));
    assert.deepEqual(scale, { least: -4, most: 4, lowest: -1, highest: 4, diverging: true });
    assert.deepEqual([...of], [24, NUMBER_LEVELS / 2, NUMBER_LEVELS - 1]);
    assert.equal(findLevels(Float64Array.of(-1, 4), '', false).scale.least, -1);
    assert.equal(findLevels(Float64Array.of(1, 4), '', true).scale.least, -4);
    assert.equal(findLevels(Float64Array.of(0, 4)).scale.diverging, false);
  });

  test('equal, huge and missing numbers have a place', () => {
    assert.deepEqual([...findLevels(Float64Array.of(3, 3)).of], [NUMBER_LEVELS / 2, NUMBER_LEVELS / 2]);
    assert.deepEqual([...findLevels(Float64Array.of(-1.7e308, 1.7e308)).of], [0, NUMBER_LEVELS - 1]);
    assert.deepEqual([...findLevels(Float64Array.of(0, 0), '', true).of], [NUMBER_LEVELS / 2, NUMBER_LEVELS / 2]);
    assert.equal(findLevels(Float64Array.of(NaN)).labelled, false);
  });

  test('levels have colours of their own and one shape', () => {
    for (const [theme, diverging] of [['light', false], ['light', true], ['dark', false], ['dark', true]]) {
      const styles = levelStyles(NUMBER_LEVELS, theme, diverging);
      assert.equal(new Set(styles.map(({ colour }) => colour)).size, NUMBER_LEVELS + 1);
      assert.equal(new Set(styles.map(({ shape }) => shape.name)).size, 1);
    }
    assert.equal(levelStyles(NUMBER_LEVELS, 'light')[0].colour, '#440154');
  });

  test('schemes', () => {
    const colours = (scheme, count) => stylesOf(bright(count), scheme).map(({ colour }) => colour);
    assert.deepEqual(colours('dark2', 2), ['#1b9e77', '#d95f02']);
    assert.deepEqual(colours('viridis', 3), ['#440154', '#25858d', '#bdde2e']);
    assert.deepEqual(colours('no such scheme', 1), ['#0072b2']);
  });
});

describe('texts', () => {
  test('counts and coordinates', () => {
    assert.equal(formatCount(1234567), '1,234,567');
    assert.equal(formatCoordinate(-2.62), '-2.620');
    assert.equal(formatCoordinate(1e300), '1.000e+300');
    assert.equal(formatCoordinate(NaN), 'none');
  });

  test('ticks have the wanted decimals, more only where they would lie', () => {
    assert.equal(formatTick(20, 0), '20');
    assert.equal(formatTick(0.25, 0), '0.25');
    assert.equal(formatTick(20, 2), '20.00');
    assert.equal(formatTick(-0, 0), '0');
    assert.equal(formatTick(0.1 + 0.2, 0), '0.3');
  });

  test('drawable texts and file names hold nothing harmful', () => {
    assert.equal(drawableText('a\u0000b\u202ec\ud800d\u{1f9ec}'), 'a\ufffdb\ufffdc\ufffdd\u{1f9ec}');
    assert.equal(drawableText('x'.repeat(300)).length, 200);
    assert.equal(fileStem('../a/b:c'), '__a_b_c');
    assert.equal(fileStem(''), 'genes');
  });
});

test('the data are read, whatever is missing or wrong', () => {
  const data = readDataset(JSON.stringify(smallData()));
  assert.equal(data.count, 7);
  assert.equal(data.pairs[0].placed, 7);
  assert.deepEqual(data.pairs[0].extent, { x0: -30, x1: 30, y0: -30, y1: 30 });
  const odd = readDataset('{"pointCount":2,"pairs":[{"x":[1,null],"y":["2"]}],"names":["a"],"layout":{"margins":[1,"x"],"grid":0}}');
  assert.equal(odd.pairs[0].placed, 0);
  assert.equal(odd.pairs[0].extent, null);
  assert.deepEqual(odd.names, []);
  assert.deepEqual(odd.layout.margins, [1, 180, 75, 120]);
  assert.equal(odd.layout.grid, true);
  assert.deepEqual(data.colourings, [{ title: '', labels: smallData().labels, numbers: null }]);
  const columns = readDataset(JSON.stringify(smallData({
    labelColumns: [{ title: 'short', texts: ['a'] }, ...LABEL_COLUMNS],
  }))).colourings;
  assert.deepEqual(columns.map(({ title }) => title), ['process', 'half-life <min>']);
  assert.equal(columns[0].numbers, null);
  assert.deepEqual([...columns[1].numbers], [0, 10, 20, 30, 40, 50, NaN]);
  assert.throws(() => readDataset('no JSON'), SyntaxError);
});
