import assert from 'node:assert/strict';
import { describe, test } from 'node:test';
import { areEqual, difference, intersection } from '../../plots/page/src/sets.js';
import { commaTable, tabTable } from '../../plots/page/src/csv.js';
import { createFinder, listText } from '../../plots/page/src/search.js';
import { createHistory } from '../../plots/page/src/history.js';
import { createNameIndex } from '../../plots/page/src/name_index.js';
import { createStore } from '../../plots/page/src/state.js';
import { fingerprintOf, MARK, readFragment, toFragment } from '../../plots/page/src/set_address.js';
import { givenSets, MOST_SETS, withChange, withSet, withSets } from '../../plots/page/src/named_sets.js';
import { namesText, kindsOf } from '../../plots/page/src/copies.js';
import { readDataset } from '../../plots/page/src/dataset.js';
import { readNameList, readQuery } from '../../plots/page/src/query.js';
import { readSetFile, toGmt, toJson } from '../../plots/page/src/set_file.js';
import { ALIASES, LABEL_COLUMNS, smallData } from './support.mjs';

const datasetOf = (changes) => readDataset(JSON.stringify(smallData(changes)));
const dataset = datasetOf({ aliases: ALIASES, labelColumns: LABEL_COLUMNS });
const find = createNameIndex(dataset);
const list = (genes) => (genes === null ? null : [...genes]);

test('sets meet and part', () => {
  const [one, other] = [Int32Array.of(1, 2, 5), Int32Array.of(2, 3, 5, 9)];
  assert.deepEqual(list(intersection(one, other)), [2, 5]);
  assert.deepEqual(list(difference(one, other)), [1]);
  assert.deepEqual(list(difference(one, Int32Array.of())), [1, 2, 5]);
  assert.ok(areEqual(one, Int32Array.of(1, 2, 5)) && !areEqual(one, other) && !areEqual(one, Int32Array.of(1, 2)));
});

describe('tables', () => {
  test('what a spreadsheet would run is text, and numbers stay numbers', () => {
    const cells = ['=1+1', "+cmd|' /C calc'!A0", '-2+3', '@SUM(A1)', '\t=1', '\r=1', '\n=1', 'CDC28', '-1.5e-3', '+7', '.5', '-', ' =1', '', 'a=1'];
    assert.equal(commaTable([cells]),
      "'=1+1,'+cmd|' /C calc'!A0,'-2+3,'@SUM(A1),'\t=1,\"'\r=1\",\"'\n=1\",CDC28,-1.5e-3,+7,.5,'-, =1,,a=1\n");
    assert.equal(tabTable([['=a', 'b\tc\r\nd', -3]]), "'=a\tb c d\t-3\n");
  });

  test('numbers have all their digits; what is none is empty', () => {
    assert.equal(commaTable([[-0.1, 1e-300, NaN, -Infinity, 5]]), '-0.1,1e-300,,,5\n');
  });

  test('separators and quotes are quoted', () => {
    assert.equal(commaTable([['a', 'b,"c"\nd'], ['=1,2', 3]]), 'a,"b,""c""\nd"\n"\'=1,2",3\n');
  });
});

describe('the data', () => {
  test('have other names where they are known', () => {
    assert.deepEqual(dataset.aliases[1], { systematic: 'YMR199W', sgd: 'S000004812', aliases: ['G1A', 'G1B'] });
    assert.equal(dataset.aliases[6], null);
    assert.equal(datasetOf({ aliases: [['YBR160W', '', '']] }).aliases, null);
    assert.equal(datasetOf({ aliases: Array(7).fill([]) }).aliases, null);
    assert.equal(datasetOf({ aliases: 'damaged' }).aliases, null);
  });

  test('have sets of the genes that they name', () => {
    const sets = [{ name: 'G1', genes: ['CLN2', 'CLN1', 'nobody', 'CLN1'] }, { name: '', genes: ['CLN1'] }, { name: 'none', genes: [] }, null, { name: 'x' }];
    assert.deepEqual(datasetOf({ sets }).sets.map(({ name, genes }) => [name, ...genes]), [['G1', 1, 2]]);
    assert.deepEqual(datasetOf({ sets: 7 }).sets, []);
    assert.deepEqual(datasetOf({ sets, names: [] }).sets, []);
  });
});

describe('names', () => {
  test('lead to genes: the very name, any letter case and other name, an alias, a protein', () => {
    const wanted = {
      CDC28: [0], cdc28: [0], YBR160W: [0], s000000364: [0], g1b: [1], Cdc28p: [0], hsp12P: [4], nobody: null, p: null, '': null,
    };
    for (const [name, genes] of Object.entries(wanted)) assert.deepEqual(list(find(name)), genes, name);
    assert.equal(find('SHARED'), null, 'an alias of two genes is none');
  });

  test('that several rows have mean all of them, the one in this spelling first', () => {
    const twice = createNameIndex(datasetOf({ names: ['a', 'A', 'a', 'b', 'c', 'd', 'e'] }));
    assert.deepEqual(list(twice('a')), [0, 2]);
    assert.deepEqual(list(twice('A')), [1]);
  });
});

describe('queries', () => {
  test('are words and phrases', () => {
    const wordsOf = (query) => readQuery(query, find).words;
    assert.deepEqual(wordsOf('  Heat   SHOCK '), ['heat', 'shock']);
    assert.deepEqual(wordsOf('"heat shock" protein'), ['heat shock', 'protein']);
    assert.deepEqual(wordsOf('\u201cheat shock\u201d'), ['heat shock']);
    assert.deepEqual(wordsOf('"heat sh'), ['heat sh']);
    assert.deepEqual(wordsOf('heat, shock;'), ['heat', 'shock']);
    assert.deepEqual(wordsOf('5" ""'), ['5"']);
    assert.deepEqual(wordsOf(' '), []);
  });

  test('are lists where most words are names, or some between separators', () => {
    const isList = (query) => readQuery(query, find).isList;
    for (const query of ['CDC28 CLN1', 'cdc28 CLN1 nobody', 'CDC28,nobody', 'CDC28\nx\ty;z', 'YBR160W G1A']) assert.ok(isList(query), query);
    for (const query of ['CDC28', 'heat shock', 'CDC28 kinase', 'heat, shock', '"CDC28 CLN1"', 'CDC28 cdc28', '']) assert.ok(!isList(query), query);
  });

  test('lists keep their order, count names once and say what is missing', () => {
    const { names, genes, missing } = readNameList('CLN2, x;cdc28\nCDC28\tY z\r\n,,CLN2', find);
    assert.deepEqual(names, ['CLN2', 'x', 'CDC28', 'Y', 'z']);
    assert.deepEqual(genes, [2, 0]);
    assert.deepEqual(missing, ['x', 'Y', 'z']);
    assert.equal(listText({ names, missing }), '2 of 5 found, missing x, Y, z');
    const many = Array.from({ length: 15 }, (_, index) => `n${index}`);
    assert.match(listText({ names: many, missing: many }), /^0 of 15 found, missing n0, .*, n11 and 3 more$/);
  });

  test('a name may hold blanks', () => {
    const spaced = createNameIndex(datasetOf({ names: ['G0.05 rep 1', 'G0.05 rep 2', 'c', 'd', 'e', 'f', 'g'] }));
    assert.deepEqual(readNameList('G0.05 rep 1; c d', spaced).genes, [0, 2, 3]);
  });
});

describe('the finder', () => {
  const finder = createFinder(dataset);
  const found = (query) => finder(query)?.first;

  test('finds names, other names, functions and labels', () => {
    assert.deepEqual(found('ybr160w'), [0]);
    assert.deepEqual(found('S000004812'), [1]);
    assert.deepEqual(found('g1a'), [1]);
    assert.deepEqual(found('stress'), [3, 4, 5]);
    assert.deepEqual(found('stress shock'), [3, 4]);
    assert.deepEqual(found('40'), [], 'numbers are no words');
    assert.equal(finder('  '), null);
  });

  test('finds phrases as they stand', () => {
    assert.deepEqual(found('"heat shock"'), [3, 4]);
    assert.deepEqual(found('"shock heat"'), []);
    assert.deepEqual(found('"heat shock" disaggregase'), [3]);
    assert.deepEqual(found('"HSP12 Plasma"'), [], 'no phrase goes from the name into the function');
  });

  test('lists first what has the name, then what begins with it', () => {
    const names = ['xHSP1', 'HSP12', 'HSP1', 'a', 'b', 'c', 'd'];
    assert.deepEqual(createFinder(datasetOf({ names, functions: names }))('hsp1').first, [2, 1, 0]);
  });

  test('takes a list as one, also of names that no gene has all of', () => {
    assert.deepEqual(found('CLN2 CLN1 nobody'), [2, 1]);
    assert.deepEqual(list(finder('CLN2 CLN1 nobody').genes), [1, 2]);
    assert.deepEqual(finder('CDC28 nobody').list.missing, ['nobody']);
    assert.equal(finder('CDC28 kinase').list, null, 'its words are found together');
    assert.deepEqual(found('nobody nothing'), []);
  });
});

test('genes are copied as names, and those without one are counted', () => {
  const [names, systematic, sgd] = kindsOf(dataset);
  const genes = Int32Array.of(0, 1, 6);
  assert.deepEqual(namesText(dataset, genes, names), { text: 'CDC28\nCLN1\nMYSTERY', words: '3 names copied' });
  assert.deepEqual(namesText(dataset, genes, systematic),
    { text: 'YBR160W\nYMR199W', words: '2 systematic names copied; 1 of 3 genes without one' });
  assert.equal(namesText(dataset, genes.slice(0, 1), sgd).words, '1 SGD id copied');
  assert.equal(kindsOf(datasetOf({})).length, 1);
});

const genesOf = (...genes) => Int32Array.from(genes);

describe('named sets', () => {
  test('have names and colours of their own', () => {
    const sets = withSets([], [{ name: 'a', genes: genesOf(1) }, { name: ' a\t', genes: genesOf(2), colour: '#ABCDEF' }, { name: '', genes: genesOf(3) }]);
    assert.deepEqual(sets.map(({ name }) => name), ['a', 'a (2)', 'Set']);
    assert.equal(sets[1].colour, '#abcdef');
    assert.notEqual(sets[0].colour, sets[2].colour);
    assert.equal(new Set(sets.map(({ id }) => id)).size, 3);
  });

  test('are not empty, and not more than a page holds', () => {
    assert.deepEqual(withSet([], { name: 'a', genes: genesOf() }), []);
    const most = Array.from({ length: MOST_SETS }, (_, id) => ({ id, name: `${id}`, colour: '#000000', genes: genesOf(1), given: -1 }));
    assert.equal(withSet(most, { name: 'more', genes: genesOf(1) }), most);
  });

  test('are no longer as given once they are changed', () => {
    const sets = givenSets(datasetOf({ sets: [{ name: 'a', genes: ['CLN1'] }, { name: 'b', genes: ['CLN2'] }] }));
    assert.deepEqual(sets.map(({ given }) => given), [0, 1]);
    const changed = withChange(sets, sets[1].id, { name: 'a' });
    assert.deepEqual(changed.map(({ name, given }) => [name, given]), [['a', 0], ['a (2)', -1]]);
    assert.deepEqual(list(withChange(sets, sets[0].id, { genes: genesOf(5) })[0].genes), [5]);
    assert.equal(withChange(sets, sets[0].id, { name: 'a' })[0].name, 'a');
  });
});

describe('files of sets', () => {
  const sets = withSets([], [{ name: 'G1 "x"', genes: genesOf(1, 2), colour: '#123456' }, { name: '=cmd', genes: genesOf(0) }]);
  const plain = (read) => read.map(({ name, colour, genes }) => [name, colour, ...genes]);

  test('come back as they went', () => {
    for (const text of [toGmt(dataset, sets), toJson(dataset, sets), `\ufeff${toGmt(dataset, sets).replaceAll('\n', '\r\n')}`]) {
      const read = readSetFile(text, 'title', find);
      assert.deepEqual(plain(read.sets), plain(sets));
      assert.deepEqual([read.names.length, read.missing, read.empty], [3, [], []]);
    }
    assert.equal(toGmt(dataset, sets), `G1 "x"\t#123456\tCLN1\tCLN2\n=cmd\t${sets[1].colour}\tCDC28\n`);
  });

  test('count what is not there', () => {
    const read = readSetFile('a\tsome words\tcln1\tnobody\tYBR160W\nb\t\tnobody\n', 'title', find);
    assert.deepEqual(plain(read.sets), [['a', '', 0, 1]]);
    assert.deepEqual([read.names.length, read.missing, read.empty], [3, ['nobody'], ['b']]);
  });

  test('may be lists of names, of whatever separators', () => {
    assert.deepEqual(plain(readSetFile('CLN1\nCLN2, CDC28\n', 'my genes', find).sets), [['my genes', '', 0, 1, 2]]);
  });

  test('that are none say why', () => {
    const refusals = {
      '{"sets": 1}': /holds no list "sets"/,
      '[{"name": "a"}]': /set 1 has no "name", or no list "genes" of texts/,
      '[{"name": "a", "genes": [1]}]': /set 1 has/,
      '{"sets"': /is no JSON/,
      'a\tb\tCLN1\nCLN2': /line 2 is no set/,
      '\tb\tCLN1': /line 1 is no set/,
      ' \n ': /names no gene/,
      '[]': /names no gene/,
    };
    for (const [text, reason] of Object.entries(refusals)) assert.throws(() => readSetFile(text, 't', find), reason, text);
  });
});

describe('the address', () => {
  const given = givenSets(datasetOf({ sets: [{ name: 'given', genes: ['CLN1'] }, { name: 'other', genes: ['CLN2'] }] }));
  const page = datasetOf({ sets: [{ name: 'given', genes: ['CLN1'] }, { name: 'other', genes: ['CLN2'] }] });
  const print = fingerprintOf(page);
  const plain = ({ selection, sets }) => [[...selection], ...sets.map(({ name, colour, genes }) => [name, colour, ...genes])];

  test('brings selection and sets back', () => {
    const states = [
      { selection: genesOf(), sets: [] },
      { selection: genesOf(0, 6), sets: [given[1]] },
      { selection: genesOf(0, 1, 2, 3, 4, 5, 6), sets: withSets(given, [{ name: 'G1 \u03b1 "<b>"', genes: genesOf(3, 5) }]) },
      { selection: genesOf(), sets: withChange(given, given[0].id, { colour: '#010203' }) },
    ];
    for (const state of states) {
      const fragment = toFragment(state, page, print);
      assert.match(fragment, /^#sets=[\w-]+$/);
      assert.deepEqual(plain(readFragment(fragment, page, print, given)), plain(state));
    }
  });

  test('is short: gaps of scattered genes, bits of many', () => {
    const many = { ...page, count: 5000 };
    const every = (step) => Int32Array.from({ length: 5000 / step }, (_, index) => index * step);
    for (const [genes, most] of [[every(50), 160], [every(1), 860], [every(4), 860]]) {
      const fragment = toFragment({ selection: genes, sets: [] }, many, print);
      assert.ok(fragment.length < most, `${fragment.length}`);
      assert.ok(areEqual(readFragment(fragment, many, print, []).selection, genes));
    }
  });

  test('is empty while all is as the page was written', () => {
    assert.equal(toFragment({ selection: genesOf(), sets: given }, page, print), '');
    assert.equal(readFragment('#chart-frame', page, print, given), null);
    assert.equal(readFragment('', page, print, given), null);
  });

  test('of other genes, of another version, cut off or damaged is not taken', () => {
    const fragment = toFragment({ selection: genesOf(1, 2), sets: withSets([], [{ name: 'a', genes: genesOf(3) }]) }, page, print);
    assert.throws(() => readFragment(fragment, page, fingerprintOf(datasetOf({ names: ['a', 'b', 'c', 'd', 'e', 'f', 'g'] })), given), /other genes/);
    assert.throws(() => readFragment(`${MARK}Ag`, page, print, given), /later version/);
    assert.throws(() => readFragment(`${MARK}!`, page, print, given), /damaged/);
    for (let length = MARK.length; length < fragment.length - 1; length += 1) {
      assert.throws(() => readFragment(fragment.slice(0, length), page, print, given), /cut off|damaged|other genes/, `${length}`);
    }
    assert.throws(() => readFragment(fragment, { ...page, count: 3 }, print, given), /damaged/);
  });
});

test('what was done is undone and done again, and anew', () => {
  const store = createStore({ selection: 0, sets: 'a', other: 1 });
  const history = createHistory(store, ['selection', 'sets']);
  const now = () => [store.get().selection, store.get().sets];
  history.undo();
  history.redo();
  assert.ok(!history.canUndo() && !history.canRedo());
  store.set({ selection: 1 });
  store.set({ other: 2 });
  store.set({ selection: 2, sets: 'b' });
  history.undo();
  assert.deepEqual(now(), [1, 'a']);
  history.undo();
  assert.deepEqual(now(), [0, 'a']);
  assert.ok(!history.canUndo() && history.canRedo());
  history.redo();
  history.redo();
  assert.deepEqual(now(), [2, 'b']);
  assert.equal(store.get().other, 2);
  history.undo();
  store.set({ sets: 'c' });
  assert.ok(!history.canRedo());
  history.undo();
  assert.deepEqual(now(), [1, 'a']);
});
