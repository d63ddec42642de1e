/** The clusters of the run, and how far its map can be trusted, on the page. */

import assert from 'node:assert/strict';
import { after, before, describe, test } from 'node:test';
import { readFile } from 'node:fs/promises';
import { AXE_FILE, cloudData, createNumbers, matrixOf, startBrowser, until } from './support.mjs';

const COUNT = 230;
const next = createNumbers(5);

/** Clusters of 70, 60, 50, 40 and 10 genes, each with a term and a profile of its own. */
const CLUSTERS = Array.from({ length: COUNT }, (_, gene) => [70, 130, 180, 220, 230].findIndex((end) => gene < end));

const TERMS = ['translation', 'respiration <b>', 'cell wall', 'meiosis', 'transport of a very long name that has no room anywhere'];

const DATA = (() => {
  const place = [[0, 0], [60, 10], [-50, 40], [20, -60], [-40, -50]];
  const pair = {
    group: 'Group:1:2',
    xTitle: 'Component 1',
    yTitle: 'Component 2',
    x: CLUSTERS.map((cluster) => place[cluster][0] + 16 * (next() - 0.5)),
    y: CLUSTERS.map((cluster) => place[cluster][1] + 16 * (next() - 0.5)),
  };
  return cloudData(COUNT, {
    pairs: [pair],
    labelColumns: [
      { title: 'process', texts: CLUSTERS.map((_, gene) => (gene % 2 ? 'odd' : 'even')), numbers: [] },
      { title: 'Cluster', texts: CLUSTERS.map((cluster) => `${cluster + 1}`), numbers: [] },
    ],
    matrix: matrixOf(CLUSTERS.map((cluster) => Array.from({ length: 6 }, (_, column) => (column === cluster ? 3 : -1) + next()))),
    terms: { list: TERMS.map((name, at) => [`GO:${at}`, name, 'P']), genes: CLUSTERS.map((cluster) => [cluster]), repeated: [] },
    quality: {
      numbers: [
        ['Neighbours kept, of 30', '41.2 %', 'So many of the <i>nearest</i> neighbours are kept.'],
        ['Cost by seed', '11: 1.2345, 12: 1.2301', 'The lower, the better.'],
        ['Modularity of the clusters', '0.6543', 'Up to 1.'],
      ],
      neighbours: 30,
      kept: CLUSTERS.map((cluster, gene) => (cluster === 1 ? 0.1 : 0.4 + (gene % 5) / 10)),
      reliability: {
        columns: [{ name: 'cost', title: 'Share of the <cost>', values: CLUSTERS.map((_, gene) => gene / 1000) }],
        near: 10,
        far: 30,
        falselyNear: CLUSTERS.map((_, gene) => (gene === 3 ? [100, 200] : [])),
        torn: CLUSTERS.map((_, gene) => (gene === 3 ? [50] : [])),
      },
      stability: {
        seeds: 5,
        draws: 5,
        neighbours: 10,
        columns: [
          { name: 'shared_10_seeds', title: 'Stay with <seeds>', values: CLUSTERS.map(() => 0.9) },
          { name: 'shared_10_columns', title: 'Stay with <columns>', values: CLUSTERS.map((cluster) => (cluster === 1 ? 0.02 : 0.3)) },
        ],
        pairs: [[1, 2, 0.99, 1, 1, true], [1, 3, 0.99, 1, 0.4, false], [3, 4, 0.95, 0.2, 0.4, false]],
      },
    },
  });
})();

/** The same against noise: the second cluster is as noise but for five genes, the last but for one; of the first, ten are but better. */
const AGAINST_NOISE = (() => {
  const rates = CLUSTERS.map((cluster, gene) => ((cluster === 1 && gene >= 75) || gene >= 221 || gene < 10 ? 0.2 : 0.01));
  const chances = CLUSTERS.map((_, gene) => (gene < 10 || rates[gene] < 0.05 ? 0.01 : 0.4));
  const columns = [
    ...DATA.quality.reliability.columns,
    { name: 'p_kept', title: 'Noise: chance of keeping as many', values: chances },
    { name: 'q_kept', title: 'Noise: false discovery rate by kept neighbours', values: rates },
  ];
  return { ...DATA, quality: { ...DATA.quality, reliability: { ...DATA.quality.reliability, columns } } };
})();

const PHONE = { viewport: { width: 360, height: 800 }, hasTouch: true, isMobile: true, deviceScaleFactor: 2 };

let browser;
let axe;

before(async () => {
  browser = await startBrowser();
  axe = await readFile(AXE_FILE, 'utf8');
});

after(() => browser.close());

async function violations(page) {
  await page.evaluate(axe);
  const { violations: found } = await page.evaluate(() => window.axe.run());
  return found.map(({ id, nodes }) => `${id}: ${nodes.map((node) => node.html.slice(0, 120)).join(' | ')}`);
}

const itemTexts = (page) => page.$$eval('.cluster', (items) => items.map((item) => item.textContent));
const selected = (page) => page.textContent('#selection h2');

/** How many pixels of the layer above the points are drawn on. */
const inkAbove = (page) => page.evaluate(() => {
  const canvas = document.querySelector('.drawings');
  const copy = document.createElement('canvas');
  [copy.width, copy.height] = [canvas.width, canvas.height];
  const context = copy.getContext('2d', { willReadFrequently: true });
  context.drawImage(canvas, 0, 0);
  const { data } = context.getImageData(0, 0, copy.width, copy.height);
  let inked = 0;
  for (let at = 3; at < data.length; at += 4) if (data[at] > 0) inked += 1;
  return inked;
});

describe('clusters', () => {
  test('are listed, select their genes, stand alone, and are named on the map', async () => {
    const page = await browser.open(DATA);
    assert.equal(await page.textContent('#clusters h2'), 'Clusters: 5');
    await until(async () => (await page.getAttribute('.clusters', 'aria-busy')) === null);
    const texts = await itemTexts(page);
    assert.equal(texts.length, 5);
    assert.match(texts[0], /Cluster 1.*70 genes.*translation/);
    assert.match(texts[1], /respiration <b>/);
    assert.equal(await page.locator('#clusters .spark').count(), 5);
    assert.match(await page.getAttribute('.cluster:nth-child(2) .spark', 'aria-label'), /^Mean profile of Cluster 2: highest in condition 2, lowest in condition [13456]$/);

    await page.click('.cluster:nth-child(3) button:has-text("Cluster 3")');
    assert.equal(await selected(page), 'Selection: 50 genes');
    await page.click('.cluster:nth-child(4) button:has-text("Only")');
    assert.equal(await page.$eval('#colouring', (select) => select.selectedOptions[0].textContent), 'Cluster');
    assert.deepEqual(await page.$$eval('.legend-list input', (boxes) => boxes.map(({ checked }) => checked)), [false, false, false, true, false]);
    await page.click('.cluster:nth-child(4) button:has-text("Only")');
    assert.deepEqual(await page.$$eval('.legend-list input', (boxes) => boxes.map(({ checked }) => checked)), [true, true, true, true, true]);

    // The map has the colours of clusters, so has the list; a term takes them away and brings them back.
    assert.equal(await page.locator('.clusters .swatch').first().isVisible(), true);
    const term = page.locator('.cluster:nth-child(2) .cluster-term');
    await term.click();
    assert.match(await page.textContent('#legend'), /respiration <b>.*60.*other.*170/s);
    assert.equal(await term.getAttribute('aria-pressed'), 'true');
    assert.equal(await page.locator('.clusters .swatch').first().isVisible(), false);
    assert.equal(await page.locator('#terms .term[aria-pressed="true"]').count(), 0, 'the selection has another term');
    await term.click();
    assert.equal(await page.textContent('#legend h2'), 'Cluster');
    await page.selectOption('#colouring', { label: 'process' });
    assert.equal(await page.locator('.clusters .swatch').first().isVisible(), false);
    await page.click('text=Colour by cluster');
    assert.equal(await page.textContent('#legend h2'), 'Cluster');

    await until(async () => (await inkAbove(page)) > 500);
    const saved = async () => {
      const [file] = await Promise.all([page.waitForEvent('download'), page.click('[aria-label="Save as SVG"]')]);
      return readFile(await file.path(), 'utf8');
    };
    assert.match(await saved(), />2 respiration &lt;b&gt;<\/text>/, 'pictures have the names, too');
    await page.uncheck('#cluster-names');
    assert.doesNotMatch(await saved(), /2 respiration/);
    await until(async () => (await inkAbove(page)) === 0);
    await page.focus('#cluster-names');
    await page.keyboard.press('Space');
    await until(async () => (await inkAbove(page)) > 500);
    assert.deepEqual(page.problems, []);
    assert.equal(page.requests.length, 1);
    await page.context().close();
  });

  test('are not spoken of where the run found none', async () => {
    const page = await browser.open(cloudData(30));
    assert.equal(await page.locator('#clusters *').count(), 0);
    assert.equal(await page.locator('#trust *').count(), 0);
    assert.equal(await page.locator('.doubt').count(), 0);
    await page.context().close();
  });
});

describe('trust', () => {
  test('is told in numbers with sentences, by colour, and beside doubtful selections', async () => {
    const page = await browser.open(DATA, { reducedMotion: 'reduce' });
    assert.deepEqual(await page.$$eval('#trust dt', (terms) => terms.map(({ textContent }) => textContent)), ['Neighbours kept, of 3041.2 %', 'Cost by seed11: 1.2345, 12: 1.2301', 'Modularity of the clusters0.6543']);
    assert.equal(await page.textContent('#trust dd'), 'So many of the <i>nearest</i> neighbours are kept.');
    assert.equal(await page.isVisible('.doubt'), false);
    await page.click('.cluster:nth-child(2) button:has-text("Cluster 2")');
    assert.equal(await page.isVisible('.doubt'), true);
    assert.match(await page.textContent('.doubt'), /unreliably: for 60 of 60 it keeps less than 20 % of their 30 nearest .* \(median 10 %; of all genes 50 %\)/);
    assert.equal(await page.textContent('.unstable'), 'These genes do not stay together with other columns: 60 of 60 keep less than 10 % of their 10 nearest on the map.');
    await page.click('.cluster:nth-child(1) button:has-text("Cluster 1")');
    assert.equal(await page.isVisible('.doubt'), false);
    assert.deepEqual(await page.$$eval('.cluster', (items) => items.map((item) => item.querySelector('.cluster-doubt')?.textContent ?? '')), [
      'Not reliably apart from 1 cluster: 3.', 'Does not stay together with other columns.',
      'Not reliably apart from 2 clusters: 1, 4.', 'Not reliably apart from 1 cluster: 3.', '']);
    await page.click('text=Colour by stability');
    assert.equal(await page.textContent('#legend h2'), 'Stay with <columns>');
    await page.click('text=Colour by kept neighbours');
    assert.equal(await page.textContent('#legend h2'), 'Kept neighbours');

    await page.click('#selection >> text=Clear');
    await page.fill('#search', 'GENE3');
    await page.keyboard.press('Enter');
    await until(async () => (await page.textContent('#details')).includes('GENE3'));
    const before = await inkAbove(page);
    await page.click('text=Lines to the false and torn neighbours');
    await until(async () => (await inkAbove(page)) > before + 200);
    const lists = () => page.$$eval('.misplaced div .counts', (lines) => lines.map(({ textContent }) => textContent));
    assert.deepEqual(await lists(), ['False neighbours of GENE3: GENE100, GENE200.', 'Torn neighbours of GENE3: GENE50.']);
    await page.click('.misplaced .gene-link >> nth=2');
    assert.match((await lists())[1], /: none\.$/);
    await page.click('text=/Fade 60 genes that keep few of their neighbours, of 230/');
    assert.equal(await page.isChecked('.misplaced input >> nth=0'), true);
    assert.deepEqual(page.problems, []);
    await page.context().close();
  });
});

test('noise that would give a selection or a cluster as well is spoken of beside it, and colours and fades', async () => {
  const page = await browser.open(AGAINST_NOISE);
  const notes = await page.$$eval('.cluster', (items) => items.map((item) => item.querySelector('.noise-note')?.textContent ?? ''));
  assert.deepEqual(notes, ['', 'Noise would also give it: 5 of its 60 genes are better than 95 % of noise.', '', '', 'Noise would also give it: 1 of its 10 genes are better than 95 % of noise.']);
  const shown = () => page.$$eval('.doubt:not([hidden])', (found) => found.map(({ textContent }) => textContent));
  await page.click('.cluster:nth-child(5) button:has-text("Cluster 5")');
  assert.deepEqual(await shown(), ['Noise would place these genes as well: 1 of 10 are better than 95 % of noise (of all genes 72 %, of noise 5 %).']);
  await page.click('.cluster:nth-child(2) button:has-text("Cluster 2")');
  assert.match((await shown()).at(1), /^Noise would place these genes as well: 5 of 60 /);
  await page.click('.cluster:nth-child(1) button:has-text("Cluster 1")');
  assert.deepEqual(await shown(), []);
  await page.click('#selection >> text=Clear');
  await page.focus('text=Colour by noise');
  await page.keyboard.press('Enter');
  assert.match(await page.textContent('#legend'), /Against noise.*told from noise.*156.*better than 95 % of noise.*10.*as noise.*64/s);
  await page.click('text=/Fade 74 genes that are not told from noise, of 230/');
  assert.equal(await page.isChecked('.misplaced input >> nth=0'), true);
  assert.deepEqual(page.problems, []);
  await page.context().close();
});

test('cards stand where they have room: genes beside the map, wide ones below it, all of them on paper', async () => {
  const page = await browser.open(DATA, { viewport: { width: 1440, height: 900 } });
  await page.click('.cluster:nth-child(1) button:has-text("Cluster 1")');
  await until(() => page.locator('#terms .term').first().isVisible());
  const boxOf = (id) => page.locator(`#${id}`).boundingBox();
  const stage = await boxOf('stage');
  for (const id of ['find', 'details', 'selection', 'terms', 'sets']) assert.ok((await boxOf(id)).x > stage.x + stage.width, id);
  for (const id of ['profiles', 'conditions', 'clusters', 'trust']) assert.ok((await boxOf(id)).y > stage.y + stage.height, id);
  const term = await page.locator('#terms .term').first().boundingBox();
  const top = await page.evaluate(() => window.scrollY);
  assert.ok(top + term.y + term.height <= 900, `on the first screen: ${top + term.y}`);
  assert.ok((await boxOf('conditions')).y === (await boxOf('clusters')).y, 'side by side');

  await page.click('#selection >> text=Clear');
  await page.emulateMedia({ media: 'print' });
  for (const id of ['clusters', 'trust']) assert.ok(await page.locator(`#${id}`).isVisible(), `${id} is printed`);
  assert.ok(await page.locator('.cluster-head button').first().isVisible(), 'with the names of clusters');
  // The panels follow the selection when the page has a moment.
  for (const id of ['selection', 'terms', 'conditions', 'profiles']) await until(async () => !(await page.locator(`#${id}`).isVisible()), { what: `${id} has nothing to print` });
  await page.context().close();
});

describe('the accessibility checker finds nothing', () => {
  for (const [what, settings] of [['light', {}], ['dark', { colorScheme: 'dark' }], ['on a phone', PHONE]]) {
    test(what, async () => {
      const page = await browser.open(AGAINST_NOISE, settings);
      await page.click('.cluster:nth-child(2) button:has-text("Cluster 2")');
      assert.deepEqual(await violations(page), []);
      const [width, room] = await page.evaluate(() => [document.documentElement.scrollWidth, document.documentElement.clientWidth]);
      assert.ok(width <= room, `${width} of ${room}`);
      await page.context().close();
    });
  }
});
