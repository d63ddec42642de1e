/** Clusters and the reliability of places, as far as they need no browser. */

import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { clustersOf, medianOf, middleGene, topTerms } from '../../plots/page/src/cluster_facts.js';
import { createModel } from '../../plots/page/src/model.js';
import { createTermColours } from '../../plots/page/src/term_colours.js';
import { createNumbers, smallData } from './support.mjs';
import { LEAST_KEPT, doubtfulGenes, noiseLabels, noiseOf, readQuality, reliabilityOf } from '../../plots/page/src/quality.js';
import { columnOf, dashes, readReliability } from '../../plots/page/src/reliability.js';
import { notApartFrom, readStability, stabilityOf, stayingOf } from '../../plots/page/src/stability.js';
import { listPoints } from '../../plots/page/src/layers.js';
import { placeBoxes } from '../../plots/page/src/free_boxes.js';
import { readDataset } from '../../plots/page/src/dataset.js';

const modelOf = (changes) => createModel(readDataset(JSON.stringify(smallData(changes))));

describe('clusters', () => {
  test('are the labels of their column, the largest first', () => {
    const texts = ['2', '10', '2', '1', '10', '1', ''];
    const found = clustersOf(modelOf({ labelColumns: [{ title: 'x', texts: ['a', 'b', 'a', 'b', 'a', 'b', 'a'], numbers: [] }, { title: 'Cluster', texts, numbers: [] }] }));
    assert.equal(found.colouring, 1);
    assert.deepEqual(found.list.map(({ label, genes }) => [label, [...genes]]), [['1', [3, 5]], ['2', [0, 2]], ['10', [1, 4]]]);
  });

  test('of the run are those behind labels that are called so', () => {
    const texts = ['2', '10', '2', '1', '10', '1', ''];
    const labelColumns = [{ title: 'Cluster', texts: ['a', 'b', 'a', 'b', 'a', 'b', 'a'], numbers: [] }, { title: 'Cluster', texts, numbers: [] }];
    const given = clustersOf(modelOf({ labelColumns }));
    assert.deepEqual([given.isOfRun, given.colouring, given.list.length], [false, 0, 2]);
    const found = clustersOf(modelOf({ labelColumns, quality: { numbers: [['Modularity of the clusters', '0.6', 'Up to 1.']] } }));
    assert.deepEqual([found.isOfRun, found.colouring, found.list.length], [true, 1, 3]);
  });

  test('are not there without such a column, or with an empty one', () => {
    assert.equal(clustersOf(modelOf({})), null);
    assert.equal(clustersOf(modelOf({ labelColumns: [{ title: 'Cluster', texts: ['', '', '', '', '', '', ''], numbers: [] }] })), null);
  });

  test('have the terms that are no chance', () => {
    const genes = Array.from({ length: 40 }, (_, gene) => gene);
    const dataset = readDataset(JSON.stringify({
      ...smallData(),
      pointCount: 40,
      terms: { list: [['GO:1', 'folding', 'P'], ['GO:2', 'everything', 'C']], genes: genes.map((gene) => (gene < 8 ? [0, 1] : [1])) },
    }));
    const terms = topTerms(dataset, genes.slice(0, 8), 3);
    assert.deepEqual(terms.map(({ name }) => name), ['folding']);
    assert.equal(terms[0].fold, 5);
    assert.deepEqual(topTerms(dataset, genes.slice(4, 30), 3), []);
    assert.deepEqual(topTerms({ ...dataset, terms: null }, genes, 3), []);
  });

  test('have one of their genes in the middle', () => {
    const pair = { x: Float64Array.of(0, 10, 4, NaN, 100), y: Float64Array.of(0, 1, 5, 2, 3) };
    assert.equal(middleGene(pair, [0, 1, 2, 3, 4]), 1);
    assert.equal(middleGene(pair, [3]), -1);
    assert.equal(medianOf([]), NaN);
    assert.equal(medianOf([3, 1, 2]), 2);
    assert.equal(medianOf([4, 1, 2, 3]), 2.5);
  });
});

describe('what one term colours', () => {
  test('stands out whatever it is called, from all other genes', () => {
    for (const [name, rest] of [['folding', 'other'], ['unknown', 'other'], ['other', 'all others'], ['none', 'other']]) {
      const state = {};
      const store = { get: () => state, set: (changes) => Object.assign(state, changes) };
      const model = modelOf({ terms: { list: [['GO:1', name, 'P']], genes: [[0], [0], [], [], [], [], []] } });
      Object.assign(state, model.colouredBy(0));
      createTermColours(model, store, () => {}).toggle(model.dataset.terms, 0);
      const { list } = model.categoriesOf(state);
      assert.deepEqual(list.map(({ text, count, grey }) => [text, count, grey]), [[name, 2, false], [rest, 5, true]]);
    }
  });
});

describe('room for names', () => {
  const frame = { left: 10, top: 20, width: 300, height: 200 };

  test('boxes lie within the frame and not on another, the first ones first', () => {
    const next = createNumbers(3);
    const wanted = Array.from({ length: 40 }, () => ({
      x: 10 + next() * 300,
      y: 20 + next() * 200,
      sizes: [{ width: 60 + next() * 60, height: 18 }, { width: 14, height: 18 }],
    }));
    const boxes = placeBoxes(wanted, frame);
    assert.ok(boxes.filter((box) => box !== null).length > 15);
    assert.ok(boxes.some((box) => box?.size === 1));
    assert.equal(boxes[0].size, 0);
    boxes.forEach((box, index) => {
      if (box === null) return;
      assert.ok(box.left >= 10 && box.top >= 20 && box.left + box.width <= 310 && box.top + box.height <= 220);
      for (const other of boxes.slice(0, index)) {
        assert.ok(other === null || box.left >= other.left + other.width || other.left >= box.left + box.width
          || box.top >= other.top + other.height || other.top >= box.top + box.height);
      }
    });
  });

  test('one without room is left out', () => {
    const sizes = [{ width: 400, height: 18 }];
    assert.deepEqual(placeBoxes([{ x: 50, y: 50, sizes }], frame), [null]);
    assert.deepEqual(placeBoxes([{ x: 12, y: 21, sizes: [{ width: 40, height: 10 }] }], frame), [{ left: 10, top: 20, width: 40, height: 10, size: 0 }]);
  });
});

describe('how far the map can be trusted', () => {
  const raw = { numbers: [['Cost', '1.25', 'The lower, the better.']], neighbours: 30, kept: [0.5, 0.6, 0.1, 0.1, 0.2, 0.9, 0] };

  test('is read, and what is damaged is left out', () => {
    const quality = readQuality(raw, 7);
    assert.deepEqual(quality.numbers, [{ name: 'Cost', value: '1.25', sentence: 'The lower, the better.' }]);
    assert.equal(quality.neighbours, 30);
    assert.deepEqual([...quality.kept], raw.kept);
    assert.equal(readQuality(null, 7), null);
    assert.equal(readQuality({ numbers: 'x' }, 7), null);
    assert.equal(readQuality({ numbers: [] }, 7), null);
    for (const changes of [{ kept: [0.5] }, { kept: [...raw.kept.slice(1), 2] }, { kept: [...raw.kept.slice(1), null] }, { neighbours: 0 }]) {
      const damaged = readQuality({ ...raw, ...changes }, 7);
      assert.equal(damaged.kept, null);
      assert.equal(damaged.neighbours, 0);
      assert.equal(damaged.numbers.length, 1);
    }
    assert.deepEqual(readQuality({ ...raw, numbers: [['Cost'], 5, ['a', 1, 'b']] }, 7).numbers, []);
  });

  test('a selection is doubtful where most of three genes or more keep little', () => {
    const quality = readQuality(raw, 7);
    assert.equal(LEAST_KEPT, 0.2);
    assert.deepEqual(reliabilityOf(quality, [2, 3, 5]), { median: 0.1, ofAll: 0.2, unreliable: 2, isDoubtful: true });
    assert.equal(reliabilityOf(quality, [0, 1, 2, 3]).isDoubtful, false, 'half is not most');
    assert.equal(reliabilityOf(quality, [2, 3]).isDoubtful, false, 'two genes are too few');
    assert.equal(reliabilityOf(quality, []).isDoubtful, false);
  });
});

describe('what is known of each gene', () => {
  const raw = {
    columns: [{ name: 'cost', title: 'Share <of> the cost', values: [0.1, null, 0.3] }],
    near: 1,
    far: 2,
    falselyNear: [[1], [], [0, 1]],
    torn: [[], [2], []],
  };

  test('is read where it is whole', () => {
    const read = readReliability(raw, 3);
    assert.deepEqual([...columnOf(read, 'cost')], [0.1, NaN, 0.3]);
    assert.equal(columnOf(read, 'other'), null);
    assert.deepEqual(read.torn, [[], [2], []]);
    assert.equal(readReliability({ ...raw, columns: [{ name: 'cost', title: 'x', values: [1] }] }, 3).columns.length, 0);
    for (const broken of [null, {}, { ...raw, torn: [[3], [], []] }, { ...raw, falselyNear: [[]] }, { ...raw, columns: 1 }]) {
      assert.equal(readReliability(broken, 3), null);
    }
    assert.equal(readReliability(raw, 4), null);
  });

  test('says which are doubtful: against noise by their rate, else by what they keep', () => {
    const quality = readQuality({ numbers: [], neighbours: 30, kept: [0.1, 0.2, 0.9], reliability: raw }, 3);
    assert.deepEqual([...doubtfulGenes(quality)], [0]);
    const columns = [{ name: 'q_kept', title: 'q', values: [0.05, 0.06, null] }];
    const against = readQuality({ numbers: [], neighbours: 30, kept: [0.1, 0.2, 0.9], reliability: { ...raw, columns } }, 3);
    assert.deepEqual([...doubtfulGenes(against)], [1, 2]);
  });

  test('says what noise would also give', () => {
    const columns = [
      { name: 'p_kept', title: 'p', values: [0.01, 0.05, 0.06, 0.9] },
      { name: 'q_kept', title: 'q', values: [0.04, 0.06, 0.06, null] },
    ];
    const four = { ...raw, columns, falselyNear: [[], [], [], []], torn: [[], [], [], []] };
    const quality = readQuality({ numbers: [], neighbours: 30, kept: [0.1, 0.2, 0.9, 0.1], reliability: four }, 4);
    assert.deepEqual(noiseOf(quality, [2, 3, 3]), { better: 0, ofAll: 0.5, isAsNoise: true });
    assert.equal(noiseOf(quality, [1, ...Array(9).fill(3)]).isAsNoise, true, 'a tenth is what noise might have');
    assert.equal(noiseOf(quality, [1, ...Array(8).fill(3)]).isAsNoise, false);
    assert.equal(noiseOf(quality, [2, 3]).isAsNoise, false, 'two genes are too few');
    assert.deepEqual(noiseLabels(quality), ['told from noise', 'better than 95 % of noise', 'as noise', 'as noise']);
    const without = readQuality({ numbers: [], neighbours: 30, kept: [0.1, 0.2, 0.9], reliability: raw }, 3);
    assert.equal(noiseOf(without, [0, 1, 2]), null);
    assert.equal(noiseLabels(without), null);
    assert.equal(noiseOf({ reliability: null }, [0, 1, 2]), null);
  });

  test('lets faded genes step back, unless others stand out', () => {
    const points = { x: [0, 1, 2], y: [0, 1, 2] };
    const categories = { list: [{}], of: [0, 0, 0] };
    const state = { shown: [1], matches: null, selection: new Int32Array(0), faded: Int32Array.of(1) };
    const order = Int32Array.of(0, 1, 2);
    assert.deepEqual([...listPoints(points, order, categories, state).kinds], [0, 1, 0]);
    const chosen = { ...state, selection: Int32Array.of(1) };
    assert.deepEqual([...listPoints(points, order, categories, chosen).kinds], [1, 1, 3]);
  });

  test('is drawn by dashes that end where the line does', () => {
    assert.deepEqual(dashes([0, 0, 10, 0], 4, 2), [[0, 0, 4, 0], [6, 0, 10, 0]]);
    assert.deepEqual(dashes([1, 1, 1, 1]), []);
  });
});

describe('stability', () => {
  const raw = {
    seeds: 5,
    draws: 5,
    neighbours: 10,
    columns: [
      { name: 'shared_10_seeds', title: 'S', values: [1, 1, 1, 1] },
      { name: 'shared_10_columns', title: '<b>', values: [0.05, 0.5, 0.099, 0.1] },
    ],
    pairs: [[1, 2, 0.99, 1, 1, true], [1, 10, 0.99, 1, 0.4, false], [1, 3, 0.5, null, 0.2, false], [2, 3, 0.5], ['1', 2, 1, 1, 1, false]],
  };

  test('is read where it is whole', () => {
    const read = readStability(raw, 4);
    assert.deepEqual([read.seeds, read.draws, read.neighbours, read.pairs.length], [5, 5, 10, 3]);
    assert.deepEqual([...stayingOf(read)], raw.columns[1].values);
    assert.deepEqual([...stayingOf(readStability({ ...raw, columns: raw.columns.slice(0, 1) }, 4))], [1, 1, 1, 1]);
    for (const broken of [null, {}, { ...raw, pairs: null }, { ...raw, columns: [{ name: 'x', title: 'x', values: [1] }] }]) {
      assert.equal(readStability(broken, 4), null);
    }
    assert.equal(readQuality({ numbers: [['Cost', '1', 'Low.']], stability: raw }, 4).stability.draws, 5);
  });

  test('tells which clusters do not stay apart, and which genes do not stay together', () => {
    const read = readStability(raw, 4);
    assert.deepEqual(notApartFrom(read, '1'), ['3', '10']);
    assert.deepEqual(notApartFrom(read, '2'), []);
    assert.deepEqual(stabilityOf(read, Int32Array.of(0, 1, 2)), { leaving: 2, isDoubtful: true });
    assert.equal(stabilityOf(read, Int32Array.of(0, 1, 2, 3)).isDoubtful, false, 'half is not most');
    assert.equal(stabilityOf(read, Int32Array.of(0, 2)).isDoubtful, false, 'two genes are too few');
  });
});
