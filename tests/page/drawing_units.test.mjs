import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { contourOf, densityOf, levelsOf, scaleOf, SQUARE } from '../../plots/page/src/density.js';
import { cardCorner } from '../../plots/page/src/marker.js';
import { countInWindow, genesInPolygon, nearestGene } from '../../plots/page/src/points.js';
import { drawingOrder, listPoints, roleOf, shuffleStep } from '../../plots/page/src/layers.js';
import { findCategories, findLevels } from '../../plots/page/src/categories.js';
import { lookOf, markOf } from '../../plots/page/src/detail.js';
import { panned, shareOf, windowAt, zoomAbout } from '../../plots/page/src/windows.js';
import { ticksWithin } from '../../plots/page/src/axes.js';
import { wheelAction } from '../../plots/page/src/gestures.js';
import { createNumbers } from './support.mjs';

const WHOLE = { x0: 0, x1: 100, y0: 0, y1: 50 };
const INK = { theme: 'light', surface: '#ffffff', text: '#1b2530', found: '#f5b800' };

function randomPoints(count, seed = 3) {
  const next = createNumbers(seed);
  return {
    x: Float64Array.from({ length: count }, () => 100 * next() ** 2),
    y: Float64Array.from({ length: count }, () => 50 * next()),
    genes: Int32Array.from({ length: count }, (_, gene) => gene),
  };
}

describe('the order of drawing', () => {
  const pairOf = (count) => ({ x: new Float64Array(count), y: new Float64Array(count), placed: count });
  const everything = (categories) => ({ shown: new Uint8Array(categories.list.length).fill(1), matches: null, selection: new Int32Array(0) });

  test('has every placed gene once: small groups over large ones, grey ones beneath', () => {
    const labels = [...Array(3).fill('small'), ...Array(9).fill('large'), ...Array(2).fill('grey'), ...Array(5).fill('middle'), 'large'];
    const categories = findCategories(labels, [], labels.length);
    categories.list.find(({ text }) => text === 'grey').grey = true;
    const pair = pairOf(labels.length);
    pair.x[0] = NaN;
    pair.placed -= 1;
    const order = drawingOrder(pair, categories);
    assert.deepEqual([...order].sort((a, b) => a - b), labels.map((_, gene) => gene).slice(1));
    const groups = Array.from(order, (gene) => labels[gene]).filter((label, i, all) => label !== all[i - 1]);
    assert.deepEqual(groups, ['grey', 'large', 'middle', 'small']);
  });

  test('shuffles within a group, the same way each time', () => {
    const categories = findCategories([], [], 100);
    const order = [...drawingOrder(pairOf(100), categories)];
    assert.deepEqual(order, [...drawingOrder(pairOf(100), findCategories([], [], 100))]);
    assert.deepEqual(order.slice(0, 4), [0, 63, 26, 89]);
    for (const count of [1, 2, 3, 10, 5537, 6600, 100000]) {
      const step = shuffleStep(count);
      let gene = step % count;
      let steps = 1;
      while (gene !== 0) {
        gene = (gene + step) % count;
        steps += 1;
      }
      assert.equal(steps, count);
    }
  });

  test('of numbers, draws those without one first and the others by no rank', () => {
    const categories = findLevels(Float64Array.of(...Array(40).fill(1), NaN, 2, NaN));
    const order = [...drawingOrder(pairOf(43), categories)];
    assert.deepEqual(order.slice(0, 2).sort((a, b) => a - b), [40, 42]);
    assert.notEqual(order.at(-1), 41, 'the rare number is not on top for being rare');
  });

  test('the background lies beneath the others', () => {
    const categories = findCategories(['new', 'old', 'new', 'old', 'old', 'new', 'new'], ['new'], 7, 'old');
    const order = drawingOrder(pairOf(7), categories);
    assert.deepEqual([...order.slice(0, 3)].sort(), [1, 3, 4]);
  });

  test('what stands out is listed last, and the rest keeps its order whatever is hidden', () => {
    const labels = Array.from({ length: 30 }, (_, gene) => (gene % 3 === 0 ? 'a' : 'b'));
    const categories = findCategories(labels, [], 30);
    const pair = { ...pairOf(30), x: Float64Array.from({ length: 30 }, (_, gene) => gene) };
    const order = drawingOrder(pair, categories);
    const all = listPoints(pair, order, categories, everything(categories));
    assert.deepEqual([all.count, all.lit, all.present.lit], [30, 30, []]);
    assert.deepEqual([...all.x], [...order]);
    const hidden = listPoints(pair, order, categories, { ...everything(categories), shown: Uint8Array.of(1, 0) });
    assert.deepEqual([...hidden.x.slice(0, hidden.count)], [...order].filter((gene) => labels[gene] === 'a'));
    const lit = listPoints(pair, order, categories, { ...everything(categories), matches: Int32Array.of(1, 2, 3), selection: Int32Array.of(3, 4) });
    assert.equal(lit.lit, 26);
    assert.deepEqual([...lit.x.slice(26, 28)].sort(), [1, 2]);
    assert.deepEqual([...lit.x.slice(28, 30)], [4, 3]);
    assert.deepEqual([...lit.kinds.slice(26)].map(roleOf), ['found', 'found', 'chosen', 'both']);
    assert.ok([...lit.kinds.slice(0, 26)].every((kind) => roleOf(kind) === 'dim'));
  });
});

describe('looks', () => {
  test('get smaller with the number of points, and follow the reader\'s wish', () => {
    const counts = [1, 150, 300, 1500, 1501, 6600, 20000, 100000, 1e6, 1e7];
    const sizes = counts.map((count) => lookOf(count).size);
    assert.deepEqual(sizes, [...sizes].sort((a, b) => b - a));
    assert.deepEqual([lookOf(1500).shapes, lookOf(1501).shapes], [true, false]);
    assert.equal(lookOf(150, { size: 2, opacity: 1 }).size, 24);
    assert.equal(lookOf(150, { size: 1, opacity: 4 }).opacity, 1);
    assert.ok(lookOf(150, { size: 1, opacity: 0.5 }).opacity < 0.4);
  });

  test('what is found, what is chosen and what is both differ', () => {
    const style = { colour: '#0072b2', shape: { name: 'circle' } };
    const mark = (role, count) => markOf(style, role, lookOf(6600), INK, count);
    const rims = (role, count) => [mark(role, count).halo, mark(role, count).edge];
    assert.deepEqual(rims('found', 5), [INK.found, null]);
    assert.deepEqual(rims('chosen', 5), [null, INK.text]);
    assert.deepEqual(rims('both', 5), [INK.found, INK.text]);
    assert.ok(mark('found', 5).size > mark('plain', 0).size);
    assert.ok(mark('dim', 5).opacity < 0.2);
    assert.equal(mark('chosen', 3000).shape, null);
  });
});

describe('moving', () => {
  test('the place under the pointer stays while zooming in, and the whole comes back', () => {
    const near = zoomAbout(WHOLE, WHOLE, { x: 90, y: 10 }, 4);
    assert.ok(Math.abs(shareOf(WHOLE, near) - 0.25) < 1e-12);
    assert.ok(Math.abs((90 - near.x0) / (near.x1 - near.x0) - 0.9) < 1e-12);
    assert.deepEqual(zoomAbout(WHOLE, near, { x: 95, y: 12 }, 0.1), WHOLE);
    assert.ok(Math.abs(shareOf(WHOLE, zoomAbout(WHOLE, WHOLE, { x: 0, y: 0 }, 1e9)) - 0.0005) < 1e-12);
  });

  test('the whole can be moved, as far as its middle stays in it, and zooming out brings it back', () => {
    assert.deepEqual(panned(WHOLE, WHOLE, 20, -10), { x0: 20, x1: 120, y0: -10, y1: 40 });
    assert.deepEqual(panned(WHOLE, WHOLE, -1000, 0), { x0: -50, x1: 50, y0: 0, y1: 50 });
    assert.deepEqual(zoomAbout(WHOLE, panned(WHOLE, WHOLE, 20, 0), { x: 3, y: 4 }, 0.5), WHOLE);
    const aside = panned(WHOLE, windowAt(WHOLE, 50, 25, 0.5), 45, 0);
    const steps = [0.6, 0.8, 1].map((share) => zoomAbout(WHOLE, aside, { x: 60, y: 25 }, 0.5 / share));
    assert.deepEqual(steps[2], WHOLE);
    assert.ok(steps[0].x1 > steps[1].x1 && steps[1].x1 > 100);
  });

  test('zoom follows the scrolled distance, whatever it is made of', () => {
    const wheel = (change) => wheelAction({ deltaX: 0, deltaY: 0, deltaMode: 0, ctrlKey: false, ...change }, 600);
    const small = wheel({ deltaY: -4 });
    assert.ok(Math.abs(small.factor ** 30 - wheel({ deltaY: -120 }).factor) < 1e-12);
    assert.ok(wheel({ deltaY: -120 }).factor > 1.2 && wheel({ deltaY: -120 }).factor < 1.4);
    assert.equal(wheel({ deltaY: -3, deltaMode: 1 }).factor, wheel({ deltaY: -48 }).factor);
    assert.equal(wheel({ deltaY: 1, deltaMode: 2 }).factor, wheel({ deltaY: 600 }).factor);
    assert.ok(wheel({ deltaY: 120 }).factor * wheel({ deltaY: -120 }).factor - 1 < 1e-12);
    assert.deepEqual(wheel({ deltaX: 50, deltaY: 12 }), { factor: 1, right: 50 });
    assert.ok(Math.abs(wheel({ deltaY: -100 * Math.log(4), ctrlKey: true }).factor - 4) < 1e-12);
  });
});

describe('the index of places', () => {
  test('counts and finds as a walk over all points does', () => {
    const points = randomPoints(3000);
    const { x, y, genes } = points;
    const next = createNumbers(9);
    for (let trial = 0; trial < 60; trial += 1) {
      const [x0, y0] = [120 * next() - 10, 60 * next() - 5];
      const box = { x0, x1: x0 + 40 * next(), y0, y1: y0 + 20 * next() };
      const inside = genes.filter((gene) => x[gene] >= box.x0 && x[gene] <= box.x1 && y[gene] >= box.y0 && y[gene] <= box.y1);
      assert.equal(countInWindow(points, box), inside.length);
      const distances = Array.from(genes, (gene) => (x[gene] - x0) ** 2 + (y[gene] - y0) ** 2);
      const least = Math.min(...distances);
      assert.equal(nearestGene(points, x0, y0), distances.indexOf(least));
      assert.equal(nearestGene(points, x0, y0, Math.sqrt(least) * 0.99), -1);
    }
    assert.equal(countInWindow(points, { x0: -Infinity, x1: Infinity, y0: -Infinity, y1: Infinity }), 3000);
  });

  test('takes points on one line, on one spot, far apart and none', () => {
    const genes = Int32Array.of(0, 1, 2);
    const line = { x: Float64Array.of(1, 2, 3), y: Float64Array.of(5, 5, 5), genes };
    assert.deepEqual([nearestGene(line, 2.9, 6), countInWindow(line, { x0: 1.5, x1: 9, y0: 5, y1: 5 })], [2, 2]);
    const spot = { x: new Float64Array(3), y: new Float64Array(3), genes };
    assert.equal(nearestGene(spot, 0, 0, 1), 2);
    assert.equal(nearestGene(spot, 0, 0, 1, (gene, other) => gene < other), 0);
    const far = { x: Float64Array.of(-1.7e308, 0, 1.7e308), y: new Float64Array(3), genes };
    assert.equal(countInWindow(far, { x0: -1, x1: 1, y0: -1, y1: 1 }), 1);
    const none = { x: line.x, y: line.y, genes: new Int32Array(0) };
    assert.deepEqual([nearestGene(none, 0, 0), countInWindow(none, WHOLE)], [-1, 0]);
  });

  test('a polygon holds what lies within its line', () => {
    const points = randomPoints(500);
    const bow = [[10, 10], [90, 10], [90, 40], [50, 20], [10, 40]];
    const expected = points.genes.filter((gene) => {
      const [x, y] = [points.x[gene], points.y[gene]];
      return x > 10 && x < 90 && y > 10 && y < (x < 50 ? 40 - (x - 10) / 2 : 20 + (x - 50) / 2);
    });
    assert.deepEqual(genesInPolygon(points, bow), expected);
    assert.deepEqual([...genesInPolygon(points, [])], []);
  });
});

describe('density', () => {
  const view = { x0: 0, x1: 400, y0: 0, y1: 400 };
  const plot = { width: 400, height: 400 };

  test('of points spread evenly is what a square holds', () => {
    const list = { count: 10000, x: new Float64Array(10000), y: new Float64Array(10000) };
    for (let i = 0; i < 10000; i += 1) [list.x[i], list.y[i]] = [4 * (i % 100) + 2, 4 * Math.floor(i / 100) + 2];
    const density = densityOf(list, view, plot);
    const middle = density.values[50 * density.columns + 50];
    assert.ok(Math.abs(middle - (SQUARE / 4) ** 2) < 1e-3, `${middle}`);
    assert.ok(Math.abs(scaleOf(density).usual - 25) < 0.5);
  });

  test('contours of a heap are rings around it', () => {
    const list = { count: 400, x: new Float64Array(400).fill(200), y: new Float64Array(400).fill(120) };
    const density = densityOf(list, view, plot);
    assert.deepEqual(levelsOf(density).map((level) => level / density.most), [1 / 32, 1 / 16, 1 / 8, 1 / 4, 1 / 2]);
    const reaches = levelsOf(density).map((level) => {
      const segments = contourOf(density, level);
      assert.ok(segments.length > 4);
      const ends = segments.flatMap(([x0, y0, x1, y1]) => [`${x0},${y0}`, `${x1},${y1}`]);
      for (const end of ends) assert.equal(ends.filter((other) => other === end).length, 2, 'the ring is closed');
      return Math.max(...segments.map(([x, y]) => Math.hypot(x - 202, y - 282)));
    });
    assert.deepEqual(reaches, [...reaches].sort((a, b) => b - a));
    assert.ok(reaches[0] < 40 && reaches[4] > 4);
  });

  test('of nothing is nothing', () => {
    const density = densityOf({ count: 0, x: [], y: [] }, view, plot);
    assert.equal(density.most, 0);
    assert.deepEqual(levelsOf(density), []);
    assert.deepEqual(scaleOf(density), { usual: 0, most: 0 });
  });
});

test('ticks are round numbers within the range', () => {
  assert.deepEqual(ticksWithin(-31, 31, 6), [-20, 0, 20]);
  assert.deepEqual(ticksWithin(-31, 31, 7), [-30, -20, -10, 0, 10, 20, 30]);
  assert.deepEqual(ticksWithin(0.00011, 0.00042, 3), [0.0002, 0.0004]);
  assert.deepEqual(ticksWithin(5, 5, 3), []);
  assert.deepEqual(ticksWithin(-1e308, 1e308 * 1.7, 0.5).length <= 3, true);
});

test('the card stands in the plot and not on its point', () => {
  const plot = { left: 30, top: 10, width: 400, height: 300 };
  const size = { width: 150, height: 80 };
  for (const [x, y] of [[30, 10], [430, 10], [430, 310], [30, 310], [230, 160], [420, 200]]) {
    const { left, top } = cardCorner(x, y, size, plot);
    assert.ok(left >= 30 && left + 150 <= 430 && top >= 10 && top + 80 <= 310, `${x} ${y}`);
    assert.ok(x < left || x > left + 150 || y < top || y > top + 80, `${x} ${y}`);
  }
});
