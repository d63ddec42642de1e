import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { readFile } from 'node:fs/promises';
import { createContrasts } from '../../plots/page/src/condition_contrasts.js';
import { rankStatistic, rankValues } from '../../plots/page/src/rank_statistic.js';
import { averageLinkage, MOST_CLUSTERED, orderGenes } from '../../plots/page/src/row_order.js';
import { extremesOf, meanOf, meanProfile, unitProfiles } from '../../plots/page/src/profiles.js';
import { createNumbers } from './support.mjs';

/** What the page has of a matrix, of rows of numbers. */
function expressionOf(rows, columns = rows[0].map((_, column) => `C${column + 1}`)) {
  const profiles = rows.map((row) => Float32Array.from(row));
  return { columns, rows: rows.length, profile: (gene) => profiles[gene], value: (gene, column) => profiles[gene][column] };
}

const genesOf = (count) => Int32Array.from({ length: count }, (_, gene) => gene);
const isClose = (value, wanted, reach = 1e-12) => assert.ok(Math.abs(value - wanted) <= reach, `${value}, not ${wanted}`);

describe('profiles', () => {
  const expression = expressionOf([[1, 2, NaN], [3, NaN, NaN], [5, 4, 0]]);

  test('the mean takes known values alone', () => {
    assert.deepEqual([...meanProfile(expression, [0, 1])], [2, 2, NaN]);
    assert.deepEqual([...meanProfile(expression, [0, 1, 2])], [3, 3, 0]);
    assert.deepEqual([...meanProfile(expression, [])], [NaN, NaN, NaN]);
    assert.equal(meanOf([NaN, 1, 2]), 1.5);
    assert.ok(Number.isNaN(meanOf([NaN])));
  });

  test('the extremes are the first of their kind', () => {
    assert.deepEqual(extremesOf([NaN, 2, -1, 2, -1]), { least: 2, most: 1 });
    assert.equal(extremesOf([NaN, NaN]), null);
  });

  test('products of unit profiles are correlations; rows that do not vary are zero', () => {
    const rows = [[1, 2, 4, 3], [2, 1, 0, 1], [7, 7, 7, 7], [NaN, NaN, NaN, NaN]];
    const units = unitProfiles(expressionOf(rows), genesOf(4));
    let correlation = 0;
    for (let column = 0; column < 4; column += 1) correlation += units[column] * units[4 + column];
    // cor(c(1, 2, 4, 3), c(2, 1, 0, 1)) in R
    isClose(correlation, -0.94868329805051377, 1e-6);
    assert.ok(units.slice(8).every((value) => value === 0));
  });
});

/** Average linkage by its definition: the mean over all pairs of rows, of each two clusters anew. */
function plainLinkage(distances, count) {
  const clusters = new Map(Array.from({ length: count }, (_, row) => [row, [row]]));
  const found = [];
  while (clusters.size > 1) {
    let best = { height: Infinity };
    const list = [...clusters];
    list.forEach(([one, first], at) => list.slice(at + 1).forEach(([other, second]) => {
      let sum = 0;
      for (const row of first) for (const column of second) sum += distances[row * count + column];
      const height = sum / (first.length * second.length);
      if (height < best.height) best = { height, one, other };
    }));
    const rows = [...clusters.get(best.one), ...clusters.get(best.other)].sort((a, b) => a - b);
    clusters.delete(best.one);
    clusters.delete(best.other);
    clusters.set(count + found.length, rows);
    found.push(rows.join());
  }
  return new Set(found);
}

/** The rows beneath each merge. */
function rowsOfMerges(merges, count) {
  const rows = Array.from({ length: count }, (_, row) => [row]);
  merges.forEach(([one, other]) => rows.push([...rows[one], ...rows[other]].sort((a, b) => a - b)));
  return new Set(rows.slice(count).map((each) => each.join()));
}

function randomRows(count, width, seed) {
  const next = createNumbers(seed);
  return Array.from({ length: count }, () => Array.from({ length: width }, () => next() - 0.5));
}

/** Rows of a few shapes that come by turns, with noise. */
function shapedRows(count, width, shapes) {
  const next = createNumbers(11);
  return Array.from({ length: count }, (_, row) => Array.from({ length: width }, (__, column) =>
    Math.sin(((column + 1) * (1 + (row % shapes))) / 3) + 0.2 * (next() - 0.5)));
}

describe('the order of rows', () => {
  test('the tree is that of average linkage by its definition', () => {
    for (const seed of [1, 2, 3]) {
      const count = 24;
      const next = createNumbers(seed);
      const distances = new Float64Array(count * count);
      for (let one = 0; one < count; one += 1) {
        for (let other = 0; other < one; other += 1) {
          distances[one * count + other] = next();
          distances[other * count + one] = distances[one * count + other];
        }
      }
      const wanted = plainLinkage(distances, count);
      const merges = averageLinkage(distances.slice(), count);
      assert.equal(merges.length, count - 1);
      assert.deepEqual(rowsOfMerges(merges, count), wanted);
    }
  });

  test('rows of a shape stand together, each gene once, the same each time', () => {
    const expression = expressionOf(shapedRows(90, 12, 3));
    const genes = genesOf(90).filter((gene) => gene % 10 !== 4);
    const { genes: ordered, clustered } = orderGenes(expression, genes);
    assert.equal(clustered, genes.length);
    assert.deepEqual([...ordered].sort((a, b) => a - b), [...genes]);
    const changes = ordered.filter((gene, place) => place > 0 && gene % 3 !== ordered[place - 1] % 3);
    assert.equal(changes.length, 2);
    assert.deepEqual(orderGenes(expression, genes).genes, ordered);
  });

  test('equal rows, rows that do not vary and rows without values have an order', () => {
    for (const row of [[1, 2, 3], [5, 5, 5], [NaN, NaN, NaN]]) {
      const { genes } = orderGenes(expressionOf(Array.from({ length: 40 }, () => row)), genesOf(40));
      assert.deepEqual([...genes].sort((a, b) => a - b), [...genesOf(40)]);
    }
    for (const count of [0, 1, 2]) {
      assert.deepEqual([...orderGenes(expressionOf([[1], [2]]), genesOf(count)).genes], [...genesOf(count)]);
    }
  });

  test('more rows follow a sample of them, which says so', () => {
    const count = MOST_CLUSTERED + 500;
    const expression = expressionOf(shapedRows(count, 12, 4));
    const { genes, clustered } = orderGenes(expression, genesOf(count));
    assert.ok(clustered > 0 && clustered < count);
    assert.deepEqual([...genes].sort((a, b) => a - b), [...genesOf(count)]);
    const changes = genes.filter((gene, place) => place > 0 && gene % 4 !== genes[place - 1] % 4);
    assert.equal(changes.length, 3);
  });
});

/** U by its definition: of each pair of a row and another, who is larger. */
function plainU(values, rows) {
  const chosen = new Set(rows);
  let u = 0;
  rows.forEach((row) => values.forEach((value, other) => {
    if (!chosen.has(other)) u += values[row] > value ? 1 : values[row] === value ? 0.5 : 0;
  }));
  return u;
}

describe('the rank statistic', () => {
  test('equals wilcox.test of R, with ties and without', () => {
    // wilcox.test(x, y, exact = FALSE, correct = FALSE): W, and qnorm of half its p
    const cases = [
      [[1.5, 2, 2, 3.25, 5, 5, 5, 8], [0, 1, 2, 2, 2.5, 3, 5, 0.5, 1.5, -1, 4, 2], 74, 2.0297378577308893],
      [[0.31, -0.2, 1.1, 0.75], [-0.5, 0.1, -1.4, 0.3, -0.21], 18, 1.9595917942265424],
    ];
    for (const [inside, outside, u, z] of cases) {
      const found = rankStatistic(rankValues(Float64Array.from([...inside, ...outside])), genesOf(inside.length));
      assert.equal(found.u, u);
      assert.equal(found.auc, u / (inside.length * outside.length));
      isClose(found.z, z);
    }
  });

  test('counts the pairs that it stands for; missing values are in none', () => {
    const next = createNumbers(3);
    const values = Float64Array.from({ length: 300 }, () => Math.floor(next() * 40));
    const rows = genesOf(300).filter((row) => row % 7 === 2);
    const wanted = plainU(values, rows);
    assert.equal(rankStatistic(rankValues(values), rows).u, wanted);
    const sparse = Float64Array.from({ length: 600 }, (_, row) => (row % 2 ? NaN : values[row / 2]));
    assert.equal(rankStatistic(rankValues(sparse), Int32Array.from([1, 3, ...rows.map((row) => 2 * row)])).u, wanted);
  });

  test('is the other way round for the other rows, and 0 where all are equal', () => {
    const ranking = rankValues(Float64Array.of(3, 1, 4, 1, 5, 9));
    const [one, other] = [[0, 4], [1, 2, 3, 5]].map((rows) => rankStatistic(ranking, rows));
    isClose(one.auc, 1 - other.auc);
    isClose(one.z, -other.z);
    assert.deepEqual(rankStatistic(rankValues(Float64Array.of(2, 2, 2)), [0]), { u: 1, auc: 0.5, z: 0 });
  });

  test('is nothing without a known value on either side', () => {
    const ranking = rankValues(Float64Array.of(1, NaN, 2));
    for (const rows of [[], [1], [0, 2], [0, 1, 2]]) assert.equal(rankStatistic(ranking, rows), null);
  });
});

describe('conditions in which genes differ', () => {
  test('come with the farthest first, and with both means', () => {
    const contrasts = createContrasts(expressionOf([[0, 5, 1, NaN], [0, 7, 2, NaN], [1, 1, 0, NaN], [0, 3, 3, 1]]));
    const found = contrasts(Int32Array.of(0, 1));
    assert.deepEqual(found.map(({ column, inside, outside, auc }) => [column, inside, outside, auc]), [
      [1, 6, 2, 1],
      [0, 0, 0.5, 0.25],
      [2, 1.5, 1.5, 0.5],
    ]);
    assert.deepEqual(contrasts(new Int32Array(0)), []);
  });
});

describe('on a real matrix', () => {
  test('order and conditions of many genes are there within a moment', async () => {
    const text = await readFile(new URL('../../data/brauer2008_chemostat.tsv', import.meta.url), 'utf8');
    const rows = text.trim().split('\n').slice(1).map((line) => line.split('\t').slice(1).map((cell) => (cell === '' ? NaN : Number(cell))));
    const expression = expressionOf(rows);
    const contrasts = createContrasts(expression);
    const start = performance.now();
    contrasts(genesOf(2));
    if (process.env.SHOW) console.log('ranks', performance.now() - start);
    for (const count of [1000, MOST_CLUSTERED, rows.length - 1]) {
      const genes = genesOf(count);
      const began = performance.now();
      orderGenes(expression, genes);
      const ordered = performance.now();
      contrasts(genes);
      const compared = performance.now();
      if (process.env.SHOW) console.log(count, ordered - began, compared - ordered);
      assert.ok(ordered - began < 2000 && compared - ordered < 2000, `${count} genes: ${ordered - began}, ${compared - ordered} ms`);
    }
  });
});
