import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { readFile } from 'node:fs/promises';
import { createContrasts } from '../../plots/page/src/condition_contrasts.js';
import { rankStatistic, rankValues } from '../../plots/page/src/rank_statistic.js';
import { averageLinkage, MOST_CLUSTERED, orderGenes } from '../../plots/page/src/row_order.js';
import { extremesOf, meanOf, meanProfile, unitProfiles } from '../../plots/page/src/profiles.js';
import { heatColours } from '../../plots/page/src/heat_colours.js';
import { layOut, linesInView, placeAt } from '../../plots/page/src/heat_layout.js';
import { colourReach, isAroundZero, lineValues } from '../../plots/page/src/heat_lines.js';
import { countOnMap } from '../../plots/page/src/true_neighbours.js';
import { valueFormat } from '../../plots/page/src/format.js';
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

describe('neighbours on the map', () => {
  test('are those of the data that are nearest there, too', () => {
    const pair = { x: Float64Array.of(0, 1, 2, 3, 4, NaN), y: Float64Array.of(0, 0, 0, 0, 0, 0) };
    assert.equal(countOnMap(pair, 0, [1, 4]), 1);
    assert.equal(countOnMap(pair, 0, [2, 1, 5]), 2);
    assert.equal(countOnMap(pair, 2, [3]), 1);
    assert.equal(countOnMap(pair, 0, [1, 2, 3, 4, 5]), 4);
    assert.equal(countOnMap({ x: Float64Array.of(1, 1, 1), y: Float64Array.of(2, 2, 2) }, 0, [2]), 1);
    assert.equal(countOnMap({ x: Float64Array.of(0), y: Float64Array.of(0) }, 0, []), 0);
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

describe('the heat map', () => {
  const expression = expressionOf([[1, 2, NaN], [3, -4, NaN], [NaN, 6, 0]]);
  const genes = Int32Array.of(2, 0, 1);

  test('has lines of genes, or of means of several, as they are or less the mean of the gene', () => {
    const values = (how, from, to) => [...lineValues(expression, genes, how, from, to)];
    assert.deepEqual(values({ perLine: 1, centred: false }, 1, 3), [1, 2, NaN, 3, -4, NaN]);
    assert.deepEqual(values({ perLine: 2, centred: false }, 0, 2), [1, 4, 0, 3, -4, NaN]);
    assert.deepEqual(values({ perLine: 1, centred: true }, 0, 2), [NaN, 3, -3, -0.5, 0.5, NaN]);
    assert.deepEqual(values({ perLine: 2, centred: true }, 0, 1), [-0.5, 1.75, -3]);
  });

  test('has colours that reach as far as nearly all values, and know whether 0 is their middle', () => {
    const next = createNumbers(2);
    const values = Array.from({ length: 50 }, () => Array.from({ length: 40 }, () => 4 * next() - 2));
    isClose(colourReach(expressionOf(values.map((row) => row.map((value) => value + 50))), true), 1.96, 0.2);
    values[3][3] = 1000;
    isClose(colourReach(expressionOf(values), false), 1.96, 0.06);
    assert.equal(colourReach(expressionOf([[NaN, NaN]]), false), 1);
    assert.equal(isAroundZero(expressionOf([[1, 2], [0, NaN]])), false);
    assert.equal(isAroundZero(expressionOf([[1, 2], [-1e-9, NaN]])), true);
  });

  test('colours the ends, the middle and what is missing each in their own way, in both themes', () => {
    for (const theme of ['light', 'dark']) {
      const pixels = new Uint8ClampedArray(24);
      heatColours(theme).fill(pixels, Float32Array.of(-9, -2, 0, 2, 9, NaN), 2);
      const [beyond, low, middle, high, above, missing] = [0, 1, 2, 3, 4, 5].map((place) => pixels.slice(4 * place, 4 * place + 4).join());
      assert.equal(beyond, low);
      assert.equal(above, high);
      assert.equal(new Set([low, middle, high, missing]).size, 4);
      assert.equal(pixels[3], 255);
    }
  });

  test('has a line for each gene, or all genes in its height', () => {
    const size = { genes: 50, columns: 10, width: 500, height: 400, left: 100, top: 60 };
    assert.deepEqual(layOut(size, true), {
      left: 100, top: 60, cellWidth: 40, rowHeight: 16, lines: 50, perLine: 1, width: 500, height: 60 + 50 * 16,
    });
    assert.equal(layOut(size, false).height, 60 + 50 * 8);
    const many = layOut({ ...size, genes: 4321, columns: 100 }, false);
    assert.deepEqual([many.perLine, many.lines, many.rowHeight, many.cellWidth], [11, 393, 1, 12]);
    assert.deepEqual([layOut({ ...size, genes: 0 }, false).lines, layOut({ ...size, genes: 3 }, false).rowHeight], [0, 16]);
  });

  test('knows what is in view and what lies under the pointer', () => {
    const layout = layOut({ genes: 50, columns: 10, width: 300, height: 400, left: 100, top: 60 }, true);
    assert.deepEqual(linesInView(layout, 0, 460), { from: 0, to: 25 });
    assert.deepEqual(linesInView(layout, 24, 460), { from: 1, to: 27 });
    assert.deepEqual(linesInView(layout, 1e6, 460), { from: 50, to: 50 });
    const scroll = { left: 30, top: 24 };
    assert.deepEqual(placeAt(layout, scroll, 111, 70), { line: 2, column: 2 });
    assert.deepEqual(placeAt(layout, scroll, 99, 60), { line: 1, column: -1 });
    assert.equal(placeAt(layout, scroll, 111, 59), null);
    assert.equal(placeAt(layout, scroll, 400, 70), null);
    assert.equal(placeAt(layout, { left: 0, top: 400 }, 111, 470), null);
  });

  test('writes values with the digits of their size', () => {
    const texts = (size, values) => values.map(valueFormat(size));
    assert.deepEqual(texts(1.9, [1.234, -0.001, 0, NaN]), ['1.23', '0.00', '0.00', 'no value']);
    assert.deepEqual(texts(250, [1.6, -250.4, 3e8]), ['2', '-250', '3.00e+8']);
    assert.deepEqual(texts(0.002, [0.00123]), ['0.00123']);
    assert.deepEqual(texts(1e-9, [1.234e-9]), ['1.23e-9']);
  });
});

describe('on a real matrix', () => {
  test('order and conditions of many genes are there within a moment', async () => {
    const text = await readFile(new URL('../../data/brauer2008_chemostat.tsv', import.meta.url), 'utf8');
    const rows = text.trim().split('\n').slice(1).map((line) => line.split('\t').slice(1).map((cell) => (cell === '' ? NaN : Number(cell))));
    const expression = expressionOf(rows);
    const contrasts = createContrasts(expression);
    // Of the processor, whatever else the machine does; ten times what it takes.
    const take = (what, action) => {
      const began = process.cpuUsage();
      action();
      const { user, system } = process.cpuUsage(began);
      assert.ok(user + system < 1e6, `${what}: ${(user + system) / 1000} ms`);
    };
    take('ranks', () => contrasts(genesOf(2)));
    for (const count of [MOST_CLUSTERED, MOST_CLUSTERED + 1, rows.length - 1]) {
      take(`order of ${count}`, () => orderGenes(expression, genesOf(count)));
      take(`conditions of ${count}`, () => contrasts(genesOf(count)));
    }
  });
});
