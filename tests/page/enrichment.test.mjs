import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { readFile } from 'node:fs/promises';
import { AXE_FILE, cloudData, smallData, startBrowser, until } from './support.mjs';

const HOSTILE = '=HYPERLINK("http://x")</script><img src=x onerror="window.PWN=1">';
const COUNT = 100;
const CLOUD = 20;

/** Five clouds of 20 genes: the first has a term, and in its functions a word, of its own. */
const data = cloudData(COUNT, {
  functions: Array.from({ length: COUNT }, (_, gene) => (gene % 5 === 0 ? 'Subunit of the respirasome' : 'Subunit of the ribosome')),
  terms: {
    list: [['GO:1', HOSTILE, 'P'], ['GO:2', 'nucleus', 'C'], ['GO:3', 'of one gene', 'F']],
    genes: Array.from({ length: COUNT }, (_, gene) => [
      ...(gene % 5 === 0 && gene > 0 ? [0] : []), ...(gene % 2 === 0 ? [1] : []), ...(gene === 3 ? [2] : [])]),
  },
});
const ANNOTATED = data.terms.genes.filter((terms) => terms.length > 0).length;

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

/** Chooses the genes of the first cloud. */
async function chooseCloud(page) {
  await page.fill('#search', 'respirasome');
  await page.locator('#find .hit').first().waitFor();
  await page.click('text=Select matches');
}

const rows = (page) => page.locator('#terms .term');

async function savedTable(page) {
  const [file] = await Promise.all([page.waitForEvent('download'), page.click('#terms >> text=Download TSV')]);
  assert.match(file.suggestedFilename(), /_enrichment\.tsv$/);
  return (await readFile(await file.path(), 'utf8')).trimEnd().split('\n').map((line) => line.split('\t'));
}

test('a selection says what it has more of than chance gives', async () => {
  const page = await browser.open(data);
  assert.match(await page.textContent('#terms'), /Select genes to see/);
  await chooseCloud(page);
  assert.match(await page.textContent('#terms'),
    new RegExp(`20 of 20 chosen genes are annotated. They are compared with all ${ANNOTATED} annotated genes of this map, in 2 terms`));
  assert.equal(await rows(page).count(), 1, 'nucleus does not stand out');
  const best = await rows(page).first().textContent();
  assert.ok(best.startsWith(HOSTILE), best);
  assert.match(best, /process19 of 19 · 3\.\d times · q \d\.\de-\d+/);
  assert.equal(await page.evaluate(() => window.PWN), undefined);

  await rows(page).first().click();
  assert.equal(await rows(page).first().getAttribute('aria-pressed'), 'true');
  assert.equal(await page.locator('#colouring option:checked').textContent(), 'Chosen term');
  assert.match(await page.textContent('#legend'), /19.*other.*81/s);
  await rows(page).first().click();
  assert.equal(await rows(page).first().getAttribute('aria-pressed'), 'false');
  assert.match(await page.textContent('#legend'), /cloud 0/);

  await page.click('#terms .term-list summary');
  await until(async () => (await page.locator('#terms .term-genes button').count()) === 19);
  await page.click('#terms .term-genes button');
  assert.match(await page.textContent('#details'), /GENE5/);
  assert.deepEqual(await violations(page), []);

  const table = await savedTable(page);
  assert.deepEqual(table[0], ['term', 'name', 'aspect', 'hits', 'size', 'drawn', 'total', 'fold', 'p', 'q', 'genes']);
  assert.equal(table[1][1], `'${HOSTILE}`, 'a spreadsheet runs nothing');
  assert.deepEqual(table[1].slice(2, 7), ['process', '19', '19', '20', String(ANNOTATED)]);
  assert.equal(table[1][10].split(' ').length, 19);
  assert.deepEqual(table[2].slice(0, 4), ['GO:2', 'nucleus', 'component', '10']);
  assert.ok(Number(table[1][8]) < 1e-12 && Number(table[1][9]) === 2 * Number(table[1][8]), table[1].join(' '));

  await page.click('#terms >> text=Select these 19');
  assert.match(await page.textContent('#selection h2'), /19 genes/);
  assert.equal(await page.evaluate(() => document.activeElement.textContent), 'What these genes do', 'the keyboard is not lost');
  assert.deepEqual(page.problems, []);
  await page.context().close();
});

test('labels and words are tested, too, on a dark phone', async () => {
  const page = await browser.open(data, { viewport: { width: 360, height: 800 }, colorScheme: 'dark' });
  await chooseCloud(page);
  await page.selectOption('#terms select', { label: 'Words of the functions' });
  await until(async () => (await rows(page).count()) === 1);
  assert.match(await rows(page).first().textContent(), /^respirasome20 of 20 · 5\.0 times/);
  assert.match(await page.textContent('#terms'), /compared with all 100 described genes of this map, in 3 words/);
  await page.click('#terms >> text=Show 2');
  assert.equal(await rows(page).count(), 2, 'a word of all genes is no finding, but can be looked at');
  await page.selectOption('#terms select', { label: 'Labels' });
  assert.match(await rows(page).first().textContent(), /^cloud 020 of 20/);
  assert.deepEqual(await violations(page), []);
  assert.ok(await page.evaluate(() => document.documentElement.scrollWidth) <= 360);
  assert.deepEqual(page.problems, []);
  await page.context().close();
});

test('without terms, labels and functions there is no such panel; damaged terms are left out', async () => {
  const bare = await browser.open(smallData({ labels: [], functions: [] }));
  assert.equal(await bare.isVisible('#terms'), false);
  await bare.context().close();
  const damaged = await browser.open(smallData({ terms: { list: [['GO:1']], genes: 7 } }));
  assert.deepEqual(await damaged.locator('#terms option').allTextContents(), ['Labels', 'Words of the functions']);
  assert.deepEqual(damaged.problems, []);
  await damaged.context().close();
});
