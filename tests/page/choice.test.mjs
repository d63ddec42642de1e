import assert from 'node:assert/strict';
import { execFile } from 'node:child_process';
import { readFile, writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { promisify } from 'node:util';
import { AXE_FILE, createNumbers, startBrowser } from './support.mjs';

/** The choice of a perplexity on the page that compares maps, as the command writes it; `OVIK_TSNE` is its path. */

const run = promisify(execFile);

const GENES = 60;

let browser;
let axe;
let choicePage;

before(async () => {
  browser = await startBrowser();
  axe = await readFile(AXE_FILE, 'utf8');
  const next = createNumbers(5);
  const rows = Array.from({ length: GENES }, (_, row) => [`GENE${row}`, ...Array.from({ length: 6 }, (__, column) =>
    (column % 3 === row % 3 ? 5 : 0) + next())].join('\t'));
  const matrix = join(browser.folder, 'm.tsv');
  await writeFile(matrix, `gene\ta\tb\tc\td\te\tf\n${rows.join('\n')}\n`);
  await run(process.env.OVIK_TSNE, [matrix, '--choose-perplexity', '12,3,6', '-i', '60', '--seeds', '2',
    '--stability', '1', '--against-noise', '1', '--title', '</script><b>"Three"</b>', '--quiet', '-o', browser.folder]);
  choicePage = join(browser.folder, 'm_tsne_comparison.html');
});

after(() => browser.close());

const markedOf = (page) => page.evaluate(() => [...document.querySelectorAll('.run')].map((card) =>
  card.classList.contains('pointed')).indexOf(true));

async function assertSound(page) {
  await page.evaluate(axe);
  const { violations } = await page.evaluate(() => window.axe.run());
  assert.deepEqual(violations.map(({ id, nodes }) => `${id}: ${nodes[0].html}`), []);
  assert.deepEqual(page.problems, []);
  assert.deepEqual(page.requests.filter((address) => !address.startsWith('file:') && !address.startsWith('data:')), []);
}

test('the choice is a chart that is linked to the maps, by pointer and keyboard', async () => {
  const page = await browser.openFile(choicePage);
  const choice = page.locator('#choice');
  assert.match(await choice.locator('.recommendation').textContent(), /^(Perplexity|No perplexity) /);
  assert.equal(await choice.locator('.picture').isVisible(), false);
  assert.equal(await choice.locator('.curve polyline').count(), 6);
  assert.deepEqual(await choice.locator('.choice-runs button').allTextContents(), ['3', '6', '12']);
  assert.equal(await page.locator('h1').textContent(), '</script><b>"Three"</b>');

  await choice.getByRole('button', { name: /^Perplexity 12/ }).press('Enter');
  assert.equal(await markedOf(page), 2);
  const announced = choice.locator('[aria-live]');
  const said = await announced.textContent();
  assert.match(said, /^Perplexity 12: better than noise .* %, stability .* %, kept neighbours .* %\.$/);
  assert.equal(await choice.locator('.counts').textContent(), said);

  await choice.locator('.choice-frame').hover({ position: { x: 45, y: 100 } });
  assert.equal(await markedOf(page), 0);
  assert.equal(await choice.locator('[aria-pressed="true"]').textContent(), '3');

  await page.locator('.run').nth(1).hover();
  assert.equal(await choice.locator('[aria-pressed="true"]').textContent(), '6');
  assert.match(await choice.locator('.counts').textContent(), /^Perplexity 6: /);
  // Only what is pressed is read out.
  assert.equal(await announced.textContent(), said);
  await assertSound(page);
  await page.locator('#theme').click();
  await assertSound(page);
  await page.setViewportSize({ width: 360, height: 800 });
  assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 360);
  await page.close();
});

test('without scripts the choice has its picture', async () => {
  const page = await browser.openFile(choicePage, { javaScriptEnabled: false }, false);
  assert.equal(await page.locator('#choice .picture').isVisible(), true);
  await page.close();
});
