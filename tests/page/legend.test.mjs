/** Colouring by conditions and numbers, and legends of many labels. */

import assert from 'node:assert/strict';
import { after, before, describe, test } from 'node:test';
import { readFile } from 'node:fs/promises';
import { isolated } from '../../plots/page/src/label_legend.js';
import { cutApart } from '../../plots/page/src/short_labels.js';
import { AXE_FILE, cloudData, createNumbers, matrixOf, screenPlace, smallData, startBrowser, until } from './support.mjs';

const LONG = 'cytoplasmic translation and ribosome biogenesis';

describe('long labels', () => {
  test('are cut at their end, and where that makes them alike, in the middle', () => {
    const texts = ['short', `${LONG}, large subunit`, `${LONG}, small subunit`, 'mitochondrial respiratory chain complex IV'];
    assert.deepEqual(cutApart(texts, 32), [
      'short',
      'cytoplasmi\u2026enesis, large subunit',
      'cytoplasmi\u2026enesis, small subunit',
      'mitochondrial respiratory chain\u2026',
    ]);
  });

  test('differ wherever there is room for the difference', () => {
    const next = createNumbers(5);
    const part = () => 'abc'[Math.floor(next() * 3)].repeat(12);
    const texts = [...new Set(Array.from({ length: 60 }, () => [part(), part(), part(), part(), part()].join(' ')))];
    const numbered = Array.from({ length: 120 }, (_, index) => `${LONG} ${index}`);
    for (const all of [numbered, numbered.map((text) => `${text} and what else is known of it`)]) {
      assert.equal(new Set(cutApart(all, 32)).size, all.length);
    }
    assert.ok(cutApart(texts, 32).every((text) => [...text].length <= 32));
    assert.deepEqual(cutApart(['\u{1f9ec}'.repeat(40)], 20), [`${'\u{1f9ec}'.repeat(19)}\u2026`]);
  });
});

test('a label alone, and all again', () => {
  assert.deepEqual([...isolated(Uint8Array.of(1, 1, 0), 1)], [0, 1, 0]);
  assert.deepEqual([...isolated(Uint8Array.of(0, 1, 0), 1)], [1, 1, 1]);
  assert.deepEqual([...isolated(Uint8Array.of(0, 1, 0), 2)], [0, 0, 1]);
});

describe('on the page', () => {
  let browser;
  let axe;
  let page;

  before(async () => {
    browser = await startBrowser();
    axe = await readFile(AXE_FILE, 'utf8');
  });
  after(() => browser.close());

  const text = async (selector) => (await page.locator(selector).innerText()).replace(/\s+/g, ' ').trim();

  async function violations() {
    await page.evaluate(axe);
    const { violations: found } = await page.evaluate(() => window.axe.run());
    return found.map(({ id, nodes }) => `${id}: ${nodes.map((node) => node.html.slice(0, 120)).join(' | ')}`);
  }

  /** Whether one of the drawings of the chart has this red, green, blue and opacity at a gene. */
  const isDrawn = async (gene, colour) => {
    const { x, y } = await screenPlace(page, gene);
    return page.evaluate(([atX, atY, wanted]) => [...document.querySelectorAll('#chart canvas')].some((canvas) => {
      const box = canvas.getBoundingClientRect();
      const ratio = canvas.width / box.width;
      const pixel = canvas.getContext('2d')?.getImageData((atX - box.x) * ratio, (atY - box.y) * ratio, 1, 1).data;
      return pixel !== undefined && wanted.every((value, channel) => Math.abs(value - pixel[channel]) <= 1);
    }), [x, y, colour]);
  };
  const SECOND_COLOUR = [0xd5, 0x5e, 0x00, 255];
  const VEIL = [255, 255, 255, 199];

  test('genes are coloured by a condition, with a scale that says where it ends', async () => {
    const next = createNumbers(3);
    const rows = Array.from({ length: 200 }, (_, gene) => Array.from({ length: 45 }, (_unused, column) => {
      if (column === 1) return gene;
      return column === 2 && gene === 0 ? 1000 : next() - 0.5;
    }));
    const columns = rows[0].map((_, column) => (column === 2 ? '<b>heat</b>' : `time ${column} min`));
    page = await browser.open(cloudData(200, { matrix: matrixOf(rows, { columns, filled: [46] }) }));
    assert.deepEqual(await page.locator('#colouring optgroup').evaluateAll((groups) =>
      groups.map(({ label, children }) => `${label} ${children.length}`)), ['Labels 1', 'Conditions 45']);
    assert.equal(await page.inputValue('#colouring'), '0');
    await page.selectOption('#colouring', { label: '<b>heat</b>' });
    assert.equal(await text('#legend h2'), '<b>heat</b>');
    const scale = await page.locator('#legend .scale').getAttribute('aria-label');
    assert.match(scale, /^Colours from -0\.\d+ to \u2265 0\.\d+, 0 in the middle$/);
    assert.match(await text('#legend'), /0 -0\.\d+ Colours end at the 1st and 99th percentile; values run from -0\.\d+ to 1000\.000\. 200 of 200/);
    await page.selectOption('#colouring', { label: 'time 1 min' });
    assert.match(await page.locator('#legend .scale').getAttribute('aria-label'), /^Colours from \u2264 2\.980 to \u2265 197\.019$/);
    assert.match(await text('#legend'), /no number 1 200 of 200 in view$/);
    assert.deepEqual(await violations(), []);
    await page.fill('#search', 'GENE7');
    await page.keyboard.press('Enter');
    await page.click('text=Add to selection');
    assert.deepEqual(await page.locator('#selection thead th').allInnerTexts(), ['Name', 'Function', 'time 1 min', 'x', 'y']);
    assert.match(await text('#selection td.label'), /^(6\.99|7\.00)\d$/);
    await page.fill('#condition', 'TIME 4');
    await until(async () => (await page.locator('#colouring optgroup[label=Conditions] option').allInnerTexts()).join()
      === 'time 1 min,time 4 min,time 40 min,time 41 min,time 42 min,time 43 min,time 44 min');
    assert.equal(await page.inputValue('#colouring'), 'c1', 'what is shown stays on offer');
    await page.selectOption('#colouring', '0');
    assert.equal(await page.locator('#legend li').count(), 5);
    assert.deepEqual(page.problems, []);
    await page.context().close();
  });

  test('sixty labels can be told apart', async () => {
    const label = (gene) => (gene % 61 === 60 ? 'other' : `${(gene % 61) % 2 ? LONG : 'group'} ${gene % 61}`);
    page = await browser.open(cloudData(1220, { labels: Array.from({ length: 1220 }, (_, gene) => label(gene)) }));
    const texts = await page.locator('.legend-text').allInnerTexts();
    assert.equal(new Set(texts).size, 61);
    assert.equal(texts.at(-1), 'other');
    const list = await page.locator('.legend-list').boundingBox();
    const ends = await page.locator('.legend-list .legend-count').evaluateAll((counts) =>
      counts.map((count) => count.getBoundingClientRect().right));
    assert.ok(ends.every((end) => end <= list.x + list.width), 'counts are not cut off');

    const row = page.locator('#legend li:has(input[aria-label^="cyto"])').first();
    await row.hover();
    await until(() => isDrawn(4, VEIL));
    assert.ok(await isDrawn(1, SECOND_COLOUR));
    assert.equal(await isDrawn(1, VEIL), false);
    assert.equal(await text('.legend-whole'), `${LONG} 1`);
    await page.mouse.move(5, 5);
    await until(async () => !(await isDrawn(4, VEIL)));
    assert.equal(await page.locator('.legend-whole').isVisible(), false);
    await page.focus('.legend-filter');
    for (let step = 0; step < 4; step += 1) await page.keyboard.press('Tab');
    await until(() => isDrawn(4, VEIL));
    assert.ok(await page.locator('.legend-whole').isVisible());
    assert.deepEqual(await violations(), []);

    await page.keyboard.press('Tab');
    await page.keyboard.press('Enter');
    await until(async () => (await text('#legend .counts')) === '20 of 20 in view');
    await page.keyboard.press('Enter');
    await until(async () => (await text('#legend .counts')) === '1,220 of 1,220 in view');
    await page.locator('#legend li label').first().dblclick();
    await until(async () => (await text('#legend .counts')) === '20 of 20 in view');

    await page.fill('.legend-filter', 'CYTO');
    await until(async () => (await text('.legend-found')) === '30 of 61 labels');
    assert.equal(await page.locator('#legend li:visible').count(), 30);
    await page.click('#legend >> text=All');
    await until(async () => (await text('#legend .counts')) === '620 of 620 in view');
    await page.click('#legend >> text=None');
    await until(async () => (await text('#legend .counts')) === '20 of 20 in view');
    await page.fill('.legend-filter', '');
    await page.fill('#search', 'GENE7');
    await page.keyboard.press('Enter');
    await until(async () => (await page.locator('#legend li.here').count()) === 1);
    assert.equal(await page.locator('#legend li.here input').getAttribute('aria-label'), `${LONG} 7 20`);
    await page.emulateMedia({ media: 'print' });
    const last = await page.locator('#legend li:visible').last().boundingBox();
    const legend = await page.locator('#legend').boundingBox();
    assert.ok(last && legend, 'the legend stands on paper');
    assert.ok(last.y + last.height <= legend.y + legend.height, 'nothing is scrolled away on paper');
    // The test itself reads the canvas back.
    assert.deepEqual(page.problems.filter((problem) => !problem.includes('getImageData')), []);
    await page.context().close();
  });

  test('labels that are fractions are a scale, and a phone has room for all of it', async () => {
    const labels = Array.from({ length: 860 }, (_, gene) => ((gene % 86) / 10 + 0.1).toFixed(1));
    page = await browser.open(cloudData(860, { labels }), { viewport: { width: 360, height: 800 }, hasTouch: true, isMobile: true, colorScheme: 'dark' });
    assert.equal(await page.locator('#legend li').count(), 0);
    assert.equal(await page.getByRole('img', { name: 'Colours from 0.100 to 8.600' }).count(), 1);
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth));
    assert.deepEqual(await violations(), []);
    await page.context().close();
    page = await browser.open(smallData({ labels: ['a', 'b', 'a', 'b', 'a', `${LONG} 1`, `${LONG} 2`] }), { viewport: { width: 360, height: 800 }, hasTouch: true, isMobile: true });
    await page.locator('#legend li button').first().tap();
    await until(async () => (await text('#legend .counts')) === '3 of 3 in view');
    assert.deepEqual(await violations(), []);
    await page.context().close();
  });
});
