/** The matrix in the page's data, and what genes can be coloured by. */

import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { readDataset } from '../../plots/page/src/dataset.js';
import { correlationOf, formOf } from '../../plots/page/src/directions.js';
import { readExpression } from '../../plots/page/src/expression.js';
import { createModel } from '../../plots/page/src/model.js';
import { numbersOf } from '../../plots/page/src/numeric_labels.js';
import { textOf } from '../../plots/page/src/colourings.js';
import { createNumbers, matrixOf, smallData } from './support.mjs';

const near = (one, other, bound = 1e-12) => assert.ok(Math.abs(one - other) <= bound, `${one} is not ${other}`);

const next = createNumbers(11);
const ROWS = Array.from({ length: 40 }, () => Array.from({ length: 6 }, (_, column) => (next() - 0.5) * 10 ** column));
const euclid = (one, other) => Math.hypot(...one.map((value, column) => value - other[column]));

describe('the matrix of the page', () => {
  test('values come back within half a step of their column', () => {
    for (const bits of [16, 8]) {
      const raw = matrixOf(ROWS, { bits });
      const expression = readExpression(raw, 40);
      assert.deepEqual(expression.columns, ['condition 1', 'condition 2', 'condition 3', 'condition 4', 'condition 5', 'condition 6']);
      assert.equal(expression.rows, 40);
      ROWS.forEach((row, gene) => row.forEach((value, column) => {
        near(expression.value(gene, column), value, raw.steps[column] * 0.5000001);
        near(expression.profile(gene)[column], value, raw.steps[column] * 0.51);
      }));
      near(expression.distance(3, 17), euclid(ROWS[3], ROWS[17]), 6 * Math.max(...raw.steps));
    }
  });

  test('missing values are NaN, and those that the run filled in count in its distances', () => {
    const raw = matrixOf([[1, 2, 3], [4, 5, 6], [7, 8, 10]], { filled: [4] });
    const expression = readExpression(raw, 3);
    assert.ok(Number.isNaN(expression.value(1, 1)));
    assert.deepEqual([...expression.profile(1)].map(Number.isNaN), [false, true, false]);
    near(expression.distance(0, 1), Math.sqrt(27), 1e-3);
    assert.ok(Number.isNaN(expression.correlation(0, 1)), 'of two columns there is none');
    const unknown = readExpression(matrixOf([[0, 0, 0], [3, 4, NaN], [9, 9, 9]]), 3);
    assert.ok(Number.isNaN(unknown.value(1, 2)));
    near(unknown.distance(0, 1), 5 * Math.sqrt(3 / 2), 1e-3);
  });

  test('distances are those of the metric', () => {
    const [one, other] = [[1, 2, 4, 3], [2, 1, 9, 4]];
    const r = correlationOf(one, other);
    const cosine = (2 + 2 + 36 + 12) / Math.sqrt((1 + 4 + 16 + 9) * (4 + 1 + 81 + 16));
    const expected = { euclidean: euclid(one, other), pearson: Math.sqrt(2 - 2 * r), cosine: Math.sqrt(2 - 2 * cosine), spearman: Math.sqrt(2 - 2 * 0.8) };
    for (const [metric, distance] of Object.entries(expected)) {
      near(readExpression(matrixOf([one, other], { metric }), 2).distance(0, 1), distance, 1e-3);
    }
    assert.deepEqual([...formOf(Float64Array.of(5, 5, 1), 'spearman')].map((value) => Math.sign(value)), [1, 1, -1]);
  });

  test('nearest genes come by distance, with their correlation', () => {
    const expression = readExpression(matrixOf(ROWS), 40);
    const found = expression.nearest(5, 4);
    const sorted = ROWS.map((row, gene) => [euclid(row, ROWS[5]), gene]).sort((a, b) => a[0] - b[0]).slice(1, 5);
    assert.deepEqual(found.map(({ gene }) => gene), sorted.map(([, gene]) => gene));
    found.forEach(({ gene, distance, correlation }) => {
      assert.equal(distance, expression.distance(5, gene));
      near(correlation, correlationOf(ROWS[5], ROWS[gene]), 1e-3);
    });
    assert.equal(expression.nearest(0, 100).length, 39);
  });

  test('correlations leave out what one of the two lacks', () => {
    near(correlationOf([1, 2, NaN, 3], [2, 4, 9, 6]), 1);
    near(correlationOf([1, 2, 3], [-1e100, -2e100, -3e100]), -1);
    assert.ok(Number.isNaN(correlationOf([1, 2, 3], [5, 5, 5])));
    assert.ok(Number.isNaN(correlationOf([1, 2, NaN], [5, 6, 7])));
  });

  test('a damaged matrix is none', () => {
    const raw = matrixOf(ROWS);
    const damages = [
      null, 'text', {}, { ...raw, columns: [] }, { ...raw, bits: 12 }, { ...raw, lows: ['a'] }, { ...raw, steps: [1] },
      { ...raw, values: raw.values.slice(4) }, { ...raw, values: '@' }, { ...raw, metric: 'other' }, { ...raw, filled: 'AA==' },
    ];
    for (const damaged of damages) assert.equal(readExpression(damaged, 40), null);
    assert.equal(readExpression(raw, 41), null);
    assert.equal(readDataset(JSON.stringify(smallData())).expression, null);
    assert.equal(readDataset(JSON.stringify(smallData({ matrix: matrixOf(ROWS.slice(0, 7)) }))).expression.rows, 7);
  });
});

describe('what genes can be coloured by', () => {
  const model = () => createModel(readDataset(JSON.stringify(smallData({ matrix: matrixOf(ROWS.slice(0, 7)) }))));

  test('a title that is added again is replaced, and what was drawn stays for once', () => {
    const { addColouring, colouringOf, colouredBy, categoriesOf, colourings } = model();
    const first = addColouring({ title: 'distance', numbers: Float64Array.of(0, 1, 2, 3, 4, 5, NaN) });
    const second = addColouring({ title: 'distance', numbers: Float64Array.of(0, 1, 2, 3, 4, 5, 6) });
    assert.notEqual(first, second);
    assert.ok(Number.isNaN(colouringOf({ colouring: first }).numbers[6]));
    assert.equal(colourings.titled('distance'), second);
    const third = addColouring({ title: 'distance', labels: ['a', 'b', 'a', 'b', 'a', 'b', 'other'] });
    assert.equal(third, first);
    assert.deepEqual(colourings.listed().map(({ title }) => title), ['', 'distance']);
    assert.deepEqual(categoriesOf(colouredBy(third)).list.map(({ text }) => text), ['a', 'b', 'other']);
    assert.equal(colouredBy(third).shown.length, 3);
    assert.equal(colourings.titled('none such'), -1);
  });

  test('conditions are colourings of their own', () => {
    const { colourings, colouringOf, categoriesOf, dataset } = model();
    const index = colourings.condition(2);
    assert.equal(colourings.condition(2), index);
    assert.equal(colouringOf({ colouring: index }).title, 'condition 3');
    assert.equal(textOf(colouringOf({ colouring: index }), 4), dataset.expression.value(4, 2).toFixed(3));
    assert.equal(categoriesOf({ colouring: index }).scale.diverging, true);
    assert.deepEqual(colourings.listed().length, 1);
  });
});

test('labels that are quantities are told from those that are groups', () => {
  const tenths = Array.from({ length: 86 }, (_, gene) => ((gene + 1) / 10).toFixed(1));
  assert.deepEqual([...numbersOf([...tenths, 'NA', ''])].slice(84), [8.5, 8.6, NaN, NaN]);
  const upTo = (count) => Array.from({ length: count }, (_, gene) => `${gene + 1}`);
  assert.equal(numbersOf(upTo(40)), null, 'clusters');
  assert.equal(numbersOf(['3', '7', '70']), null, 'few groups');
  assert.equal(numbersOf(upTo(20).map((text) => text * 10).map(String)).length, 20);
  assert.equal(numbersOf([...tenths, 'ten']), null);
  assert.equal(numbersOf(['', 'none']), null);
});
