import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { colouringTitles, coloursOf, drawingOrder } from '../../plots/page/src/compare/colours.js';
import { layoutOf, nearestTo, piecesOf, sentenceOf } from '../../plots/page/src/compare/choice_layout.js';
import { readComparison, runsWithout } from '../../plots/page/src/compare/data.js';
import { channelsOf, discOf, drawDisc, fillPixels } from '../../plots/page/src/compare/raster.js';
import { shareTogether, togetherText } from '../../plots/page/src/compare/together.js';
import { findCategories } from '../../plots/page/src/categories.js';
import { createNumbers } from './support.mjs';

const PALE = '#102030';

const rawComparison = (changes = {}) => ({
  title: 'Yeast',
  name: 'yeast',
  pointCount: 3,
  reference: 0,
  names: ['A', 'B', 'C'],
  functions: ['kinase', '', 'NULL'],
  genes: [],
  labelColumns: [{ title: 'process', texts: ['x', 'y', 'x'], numbers: [] }],
  runs: [
    { title: 'one', window: [0, 2, -4, 4], places: 'AAAAAP9//3/+//7/' },
    { title: 'two', window: [7, 7, 1, 3], places: 'AAAAAP////8AAP7/' },
  ],
  ...changes,
});

const read = (changes) => readComparison(JSON.stringify(rawComparison(changes)));

describe('the data of a comparison', () => {
  test('have the places that the program wrote', () => {
    const { runs, window } = read();
    assert.deepEqual([...runs[0].x], [0, 1, 2]);
    assert.deepEqual([...runs[0].y], [-4, 0, 4]);
    assert.deepEqual([...runs[1].x], [7, NaN, 7]);
    assert.deepEqual([...runs[1].y], [1, NaN, 3]);
    assert.deepEqual([...runs[1].genes], [0, 2]);
    for (const { x, y, genes } of runs) {
      for (const gene of genes) {
        assert.ok(window.x0 < x[gene] && x[gene] < window.x1 && window.y0 < y[gene] && y[gene] < window.y1);
      }
    }
  });

  test('say which runs lack a gene', () => {
    assert.deepEqual(runsWithout(read(), 1), ['two']);
    assert.deepEqual(runsWithout(read(), 0), []);
  });

  test('may be missing or damaged', () => {
    for (const places of ['', '!', 'AAAA', 7, null]) {
      const { runs, window } = read({ runs: [{ title: 'one', window: [0, 1, 0, 1], places }] });
      assert.equal(runs[0].genes.length, 0);
      assert.ok(window.x1 > window.x0);
    }
    assert.equal(read({ runs: [{ places: 'AAAAAP9//3/+//7/', window: [0, null, 0, 1] }] }).runs[0].genes.length, 0);
    assert.deepEqual(read({ names: ['A'], labelColumns: [{ title: 'x', texts: ['a'] }, null] }).colourings, []);
    assert.equal(read({ reference: 9 }).reference, 0);
    assert.equal(readComparison('{}').count, 0);
    assert.throws(() => readComparison('{'), SyntaxError);
  });
});

/** Points in two clouds: the first half around one place, the second around another. */
function clouds(count) {
  const next = createNumbers(3);
  const x = Float64Array.from({ length: count }, (_, gene) => next() + (gene < count / 2 ? 0 : 50));
  const y = Float64Array.from({ length: count }, () => next());
  return { x, y, genes: Int32Array.from(x.keys()) };
}

/** The same count, by sorting. */
function plainShare({ x, y, genes }, chosen, neighbours) {
  let together = 0;
  for (const gene of chosen) {
    const others = [...genes].filter((other) => other !== gene);
    const distance = (other) => (x[other] - x[gene]) ** 2 + (y[other] - y[gene]) ** 2;
    others.sort((a, b) => distance(a) - distance(b));
    together += others.slice(0, neighbours).filter((other) => chosen.includes(other)).length;
  }
  return together / (chosen.length * neighbours);
}

describe('how chosen genes lie together', () => {
  test('is the share of their nearest genes that are chosen', () => {
    const map = clouds(200);
    const scattered = Int32Array.from({ length: 60 }, (_, index) => 3 * index);
    const found = shareTogether(map, scattered);
    assert.equal(found.neighbours, 10);
    assert.ok(Math.abs(found.share - plainShare(map, scattered, 10)) < 1e-12);
    assert.ok(found.share > 0.1 && found.share < 0.6);
    assert.ok(Math.abs(found.chance - 59 / 199) < 1e-12);
  });

  test('is all of them for a group that stands apart, however small', () => {
    const map = clouds(40);
    assert.equal(shareTogether(map, map.genes.slice(0, 20)).share, 1);
    const few = shareTogether({ ...map, x: map.x.map((x, gene) => (gene < 3 ? -99 - gene : x)) }, Int32Array.of(0, 1, 2));
    assert.deepEqual([few.neighbours, few.share, few.placed], [2, 1, 3]);
  });

  test('leaves out genes that the map lacks', () => {
    const map = clouds(40);
    map.x[5] = NaN;
    map.genes = map.genes.filter((gene) => gene !== 5);
    assert.equal(shareTogether(map, Int32Array.of(4, 5, 6)).placed, 2);
    assert.equal(shareTogether(map, Int32Array.of(4, 5)), null);
    assert.equal(shareTogether(map, new Int32Array(0)), null);
    assert.equal(togetherText(null), '');
  });

  test('is told in a sentence', () => {
    assert.equal(
      togetherText({ neighbours: 10, share: 0.834, chance: 0.06 }),
      'Of the 10 genes nearest to each chosen one 83\u00a0% are chosen, too (by chance 6\u00a0%).',
    );
  });
});

describe('points as discs', () => {
  test('have the area of a disc', () => {
    for (const radius of [0.8, 2, 4.5]) {
      const disc = discOf(radius);
      const area = disc.reduce((sum, [, , share]) => sum + share / 256, 0);
      assert.ok(Math.abs(area - Math.PI * radius ** 2) < 0.16 * Math.PI * radius ** 2 + 0.6, `${radius}: ${area}`);
      for (const [right, down] of disc) {
        assert.ok(disc.some(([x, y]) => x === -right && y === down));
      }
    }
  });

  test('are drawn within the picture alone', () => {
    const image = { data: new Uint8ClampedArray(4 * 9), width: 3, height: 3 };
    fillPixels(image.data, [10, 20, 30]);
    drawDisc(image, 2.9, 1.2, [200, 100, 50], [[0, 0, 256], [1, 0, 256], [0, 1, 128], [0, -2, 256]]);
    const pixel = (at) => [...image.data.slice(4 * at, 4 * at + 4)];
    assert.deepEqual(pixel(5), [200, 100, 50, 255]);
    assert.deepEqual(pixel(8), [105, 60, 40, 255]);
    for (const at of [0, 1, 2, 3, 4, 6, 7]) assert.deepEqual(pixel(at), [10, 20, 30, 255]);
  });
});

describe('the colours of a comparison', () => {
  test('draw grey genes lowest, and small groups over large ones', () => {
    const labels = [...Array(5).fill('large'), ...Array(2).fill('small'), ...Array(9).fill('other')];
    const categories = findCategories(labels, [], labels.length);
    const drawn = Array.from(drawingOrder(categories, labels.length), (gene) => labels[gene]);
    assert.deepEqual(drawn, [...Array(9).fill('other'), ...Array(5).fill('large'), ...Array(2).fill('small')]);
    assert.deepEqual([...drawingOrder(categories, 16)], [...drawingOrder(categories, 16)]);
  });

  test('are those of labels, of numbers, or of places in the reference', () => {
    const comparison = read({
      labelColumns: [
        { title: 'process', texts: ['x', 'y', 'x'], numbers: [] },
        { title: '', texts: ['1', '', '2'], numbers: [1, null, 2] },
      ],
    });
    assert.deepEqual(colouringTitles(comparison), ['process', 'Label', 'Place in one']);
    const [labels, numbers, places] = [0, 1, 2].map((index) => coloursOf(comparison, index, 'light', PALE));
    assert.deepEqual(labels.colours[0], labels.colours[2]);
    assert.notDeepEqual(labels.colours[0], labels.colours[1]);
    assert.deepEqual(labels.colours[0], channelsOf(labels.styles[0].colour));
    assert.ok(numbers.categories.scale);
    assert.deepEqual([0, 1, 2].map(numbers.isGrey), [false, true, false]);
    assert.equal(places.categories, null);
    assert.equal(new Set(places.colours.map(String)).size, 3);
    for (const { colours, order } of [labels, numbers, places]) {
      assert.deepEqual([...order].sort(), [0, 1, 2]);
      assert.ok(colours.flat().every((channel) => Number.isInteger(channel) && channel >= 0 && channel <= 255));
    }
  });

  test('are pale for genes that the reference lacks', () => {
    const places = coloursOf(read({ reference: 1, labelColumns: [] }), 0, 'dark', PALE);
    assert.deepEqual(places.colours[1], [16, 32, 48]);
    assert.ok(places.isGrey(1) && !places.isGrey(0));
  });
});

const rawChoice = (changes = {}) => ({
  perplexities: [5, 50],
  curves: [{ name: 'Better than noise', shares: [0.5, null] }, { name: 'Stability', shares: [0.25, 0.75] }],
  ofNoise: 0.06,
  recommended: 50,
  ...changes,
});

const choiceOf = (changes) => read({ choice: rawChoice(changes) }).choice;

describe('the choice of a perplexity', () => {
  test('is there if it is whole', () => {
    const choice = choiceOf();
    assert.deepEqual(choice.perplexities, [5, 50]);
    assert.deepEqual([...choice.curves[0].shares], [0.5, NaN]);
    assert.equal(choice.ofNoise, 0.06);
    assert.equal(choice.recommended, 1);
    assert.equal(choiceOf({ recommended: null }).recommended, -1);
    assert.ok(Number.isNaN(choiceOf({ ofNoise: null }).ofNoise));
    assert.equal(choiceOf({ curves: [{ name: 'x', shares: [1] }, { name: 'y', shares: [0, 1] }] }).curves.length, 1);
    for (const changes of [{ perplexities: [5] }, { perplexities: [5, 'x'] }, { curves: [] }, { curves: 7 }]) {
      assert.equal(choiceOf(changes), null);
    }
    assert.equal(read().choice, null);
  });

  test('lies on a logarithmic scale within its frame', () => {
    const layout = layoutOf(choiceOf(), 400, 250);
    const { frame, x, y, labelled } = layout;
    assert.ok(frame.left < x[0] && x[0] < x[1] && x[1] < frame.right);
    assert.equal(y(0), frame.bottom);
    assert.equal(y(1), frame.top);
    assert.deepEqual(labelled, [0, 1]);
    const three = layoutOf({ perplexities: [5, 50, 500] }, 400, 250);
    assert.ok(Math.abs(2 * three.x[1] - three.x[0] - three.x[2]) < 1e-9);
    assert.deepEqual(layoutOf({ perplexities: [5, 5.1, 50] }, 400, 250).labelled, [0, 2]);
    assert.ok(layoutOf({ perplexities: [7] }, 0, 250).x.every(Number.isFinite));
    assert.equal(nearestTo(three, three.x[1] + 3), 1);
    assert.equal(nearestTo(three, -9), 0);
  });

  test('has curves with gaps, and words', () => {
    const choice = choiceOf();
    const layout = layoutOf(choice, 400, 250);
    assert.equal(piecesOf(choice.curves[0], layout).length, 1);
    assert.equal(piecesOf(choice.curves[0], layout)[0].length, 1);
    assert.equal(piecesOf({ shares: [NaN, 1] }, layout)[0][0][0], layout.x[1]);
    assert.equal(sentenceOf(choice, 0), 'Perplexity 5: better than noise 50.0 %, stability 25.0 %.');
    assert.equal(sentenceOf(choice, 1), 'Perplexity 50: stability 75.0 %.');
  });
});
