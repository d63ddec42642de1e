import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { describe, test } from 'node:test';
import { enrich, testGroups } from '../../plots/page/src/enrichment.js';
import { falseDiscoveryRates, upperTail } from '../../plots/page/src/overlap_chance.js';
import { readDataset } from '../../plots/page/src/dataset.js';
import { readTerms } from '../../plots/page/src/terms.js';
import { createNumbers, smallData, SMALL_TERMS } from './support.mjs';

const CASES = readFileSync(new URL('../annotation/enrichment_cases.tsv', import.meta.url), 'utf8')
  .trim().split('\n').slice(1).map((line) => {
    const [hits, size, drawn, total, p, q] = line.split('\t').map(Number);
    return { hits, size, drawn, total, p, q };
  });

function assertNear(value, expected, what) {
  if (expected > 1e-300) assert.ok(Math.abs(value / expected - 1) < 1e-12, `${what}: ${value}, not ${expected}`);
  else assert.ok(value >= 0 && value < 2e-300, `${what}: ${value}, not ${expected}`);
}

describe('the chance of an overlap', () => {
  test('is that of the hypergeometric distribution, down to the least likely', () => {
    assert.ok(CASES.length > 400);
    assert.ok(CASES.filter(({ p }) => p > 1e-300 && p < 1e-100).length > 20);
    for (const { hits, size, drawn, total, p } of CASES) {
      assertNear(upperTail(hits, size, drawn, total), p, `${hits} of ${size} in ${drawn} of ${total}`);
    }
  });

  test('rates of false discoveries are those of Benjamini and Hochberg', () => {
    const ascending = [...CASES].sort((one, other) => one.p - other.p);
    const rates = falseDiscoveryRates(ascending.map(({ p }) => p));
    ascending.forEach(({ q }, place) => assertNear(rates[place], q, `rate ${place}`));
    assert.deepEqual([...falseDiscoveryRates([0.01, 0.02], 10)], [0.1, 0.1]);
    assert.deepEqual([...falseDiscoveryRates([])], []);
  });
});

describe('enrichment', () => {
  const data = (terms = SMALL_TERMS) => readDataset(JSON.stringify(smallData({ terms })));

  test('of a selection in the annotated genes', () => {
    const results = enrich(data(), [0, 1, 2, 6]);
    assert.deepEqual(results.map(({ term, hits, size, drawn, total, genes }) => ({ term, hits, size, drawn, total, genes })), [
      { term: 1, hits: 3, size: 3, drawn: 3, total: 6, genes: [0, 1, 2] },
      { term: 0, hits: 1, size: 3, drawn: 3, total: 6, genes: [0] },
    ]);
    assertNear(results[0].p, 0.05, 'all of three in three of six');
    assertNear(results[0].q, 0.1, 'of two terms: that of one gene is not tested');
    assert.equal(results[0].fold, 2);
  });

  test('in a background of its own, which genes of the selection may not belong to', () => {
    const [best] = enrich(data(), [0, 1, 5], [0, 1, 2, 3]);
    assert.deepEqual([best.term, best.hits, best.size, best.drawn, best.total], [1, 2, 3, 2, 4]);
    assertNear(best.p, 0.5, 'two of three in two of four');
  });

  test('counts a gene of several rows once', () => {
    const results = enrich(data({ ...SMALL_TERMS, repeated: [[2, 1]] }), [0, 1, 2]);
    assert.deepEqual(results.map(({ hits, size, drawn, total, genes }) => [hits, size, drawn, total, genes])[0],
      [2, 2, 2, 5, [0, 1]]);
    assert.equal(enrich(data({ ...SMALL_TERMS, repeated: [[2, 1]] }), [2])[0].genes[0], 1);
  });

  test('of nothing, and without terms, is nothing', () => {
    assert.deepEqual(enrich(data(), []), []);
    assert.deepEqual(enrich(data(), [6]), []);
    assert.deepEqual(enrich(data(null), [0, 1]), []);
  });

  test('of a thousand genes of 6,600 takes less than 50 ms', () => {
    const next = createNumbers(5);
    const count = 6600;
    const list = Array.from({ length: 684 }, (_, term) => [`GO:${term}`, `term ${term}`, 'P']);
    const genes = Array.from({ length: count }, () =>
      Array.from({ length: 8 }, () => Math.floor(next() ** 2 * list.length)));
    const terms = readTerms({ list, genes }, count);
    const selection = Int32Array.from({ length: 1000 }, (_, gene) => 3 * gene);
    const all = Int32Array.from({ length: count }, (_, gene) => gene);
    const times = Array.from({ length: 5 }, () => {
      const start = performance.now();
      assert.ok(testGroups(terms, selection, all).results.length > 300);
      return performance.now() - start;
    });
    assert.ok(Math.min(...times) < 50, `${times}`);
  });
});

describe('terms of the data', () => {
  test('are read with their aspects', () => {
    const terms = readTerms(SMALL_TERMS, 7);
    assert.deepEqual(terms.list[0], { id: 'GO:0006950', name: 'response to stress', aspect: 'process' });
    assert.deepEqual([...terms.of(0)], [0, 1]);
    assert.deepEqual([0, 6].map(terms.annotated), [true, false]);
  });

  test('that are missing or damaged leave the page without them', () => {
    const damaged = [undefined, null, 7, [], {}, { list: [] }, { ...SMALL_TERMS, genes: [] }, { ...SMALL_TERMS, list: {} },
      { ...SMALL_TERMS, list: [['GO:1', 'x', 'Q'], ['GO:2', 'y', 'P'], ['GO:3', 'z', 'F']] },
      { ...SMALL_TERMS, list: [['', 'x', 'P'], null, 5] }, { ...SMALL_TERMS, genes: [7, null, 'x', {}, [], [99], [-1, 0.5, '1']] }];
    for (const raw of damaged) assert.equal(readTerms(raw, 7), null, JSON.stringify(raw));
    const partly = readTerms({ ...SMALL_TERMS, genes: [[1, 1, 0, 99], ...SMALL_TERMS.genes.slice(1)], repeated: [5, [1, 9], [2, 1], [1, 2]] }, 7);
    assert.deepEqual([...partly.of(0)], [0, 1]);
    assert.deepEqual([1, 2].map(partly.firstOf), [1, 1]);
  });
});
