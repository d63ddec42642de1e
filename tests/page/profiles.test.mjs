import assert from 'node:assert/strict';
import { after, afterEach, before, describe, test } from 'node:test';
import { readFile } from 'node:fs/promises';
import { AXE_FILE, cloudData, createNumbers, matrixOf, screenPlace, smallData, startBrowser, until } from './support.mjs';

const COLUMNS = ['glucose', 'nitrogen <b>', 'phosphate', 'sulphate', 'leucine', 'uracil'];
const CLOUDS = ['alpha', 'beta', 'gamma', 'delta', 'epsilon'];
const MISSING = 18;

let browser;
let page;

before(async () => {
  browser = await startBrowser();
});

after(() => browser.close());

afterEach(async () => {
  const { problems } = page;
  await page.context().close();
  assert.deepEqual(problems, []);
});

/** Genes whose profile is that of their cloud, with noise; gamma alone is high in the fifth condition. */
function profileData(count, columns = COLUMNS) {
  const next = createNumbers(5);
  const rows = Array.from({ length: count }, (_, gene) => columns.map((__, column) => {
    const shape = Math.sin(((gene % 5) + 1) * (column + 1));
    return (column === 4 ? (gene % 5 === 2 ? 3 : -1) : shape) + 0.3 * (next() - 0.5);
  }));
  rows[MISSING][1] = NaN;
  const functions = rows.map((_, gene) => `Protein ${CLOUDS[gene % 5]}`);
  return { rows, data: cloudData(count, { functions, matrix: matrixOf(rows, { columns }) }) };
}

const text = (selector) => page.locator(selector).innerText();
const statusSays = (wanted) => until(async () => (await page.locator('#status').textContent()).includes(wanted), { what: wanted });

async function focusGene(name) {
  await page.fill('#search', name);
  await page.keyboard.press('Enter');
  await until(async () => (await text('.gene-name')) === name);
}

async function selectFound(words, count) {
  await page.fill('#search', words);
  await page.keyboard.press('Enter');
  await page.click('text=Select matches');
  await until(async () => (await text('.heat-lead')).startsWith(`${count} genes `));
}

/** The colours of some pixels of the heat map, read from a copy of it. */
const heatColoursAt = (places) => page.evaluate((wanted) => {
  const canvas = document.querySelector('.heat-cells');
  const copy = document.createElement('canvas');
  [copy.width, copy.height] = [canvas.width, canvas.height];
  const context = copy.getContext('2d', { willReadFrequently: true });
  context.drawImage(canvas, 0, 0);
  return wanted.map(([left, top]) => [...context.getImageData(Math.floor(left), Math.floor(top), 1, 1).data].slice(0, 3));
}, places);

/** Switches the lines to neighbours on or off, and takes a picture of the map. */
async function switchLines(isOn) {
  await page.locator('text=Lines to them on the map').setChecked(isOn);
  // Two frames: one that draws, and one that is shown.
  await page.evaluate(() => new Promise((done) => {
    requestAnimationFrame(() => requestAnimationFrame(done));
  }));
  return page.locator('#chart').screenshot();
}

/** The genes of the heat map in their order, by its table. */
async function heatOrder() {
  await page.click('.heat-table summary');
  await until(() => page.locator('.heat-table tbody tr').first().isVisible());
  return page.locator('.heat-table tbody th').allInnerTexts();
}

test('the card of a gene shows its profile beside the mean of the selection, and its nearest genes with lines', async () => {
  const { rows, data } = profileData(60);
  page = await browser.open(data);
  assert.equal(await page.locator('#gene-profile svg').count(), 0);
  await focusGene('GENE7');
  const label = await page.locator('.profile-chart').getAttribute('aria-label');
  const highest = rows[7].indexOf(Math.max(...rows[7]));
  assert.ok(label.startsWith(`Profile over 6 conditions. GENE7: highest ${rows[7][highest].toFixed(2)} in ${COLUMNS[highest]}, lowest`), label);
  assert.equal(await page.locator('.profile-mean').count(), 0);

  const distance = (other) => Math.hypot(...rows[7].map((value, column) => value - rows[other][column]));
  const wanted = rows.map((_, gene) => gene).filter((gene) => gene !== 7 && gene !== MISSING)
    .sort((a, b) => distance(a) - distance(b)).slice(0, 10);
  const listed = await page.locator('#true-neighbours tbody tr').evaluateAll((list) => list.map((row) => [...row.cells].map((cell) => cell.textContent)));
  assert.deepEqual(listed.map(([name]) => name), wanted.map((gene) => `GENE${gene}`));
  listed.forEach(([, value], place) => assert.ok(Math.abs(Number(value) - distance(wanted[place])) < 0.006));

  assert.equal(await page.isVisible('text=Lines to them on the map'), false, 'folded at first');
  const folded = await page.locator('#chart').screenshot();
  await page.click('#true-neighbours summary');
  assert.match(await text('#true-neighbours'), /\d+ of these 10 are among its 10 nearest on the map, too\./);
  const without = await switchLines(false);
  assert.ok(without.equals(folded), 'no lines while it is folded');
  assert.ok(!without.equals(await switchLines(true)));
  assert.ok(without.equals(await switchLines(false)));

  await selectFound('gamma', 12);
  await until(async () => (await page.locator('.profile-mean').count()) > 0);
  assert.match(await text('.profile-key'), /mean of 12 selected genes/);
  await page.click('#gene-profile summary');
  await until(async () => (await page.locator('#gene-profile tbody tr').count()) === 6);
  await page.locator('#true-neighbours .gene-link').first().click();
  assert.notEqual(await text('.gene-name'), 'GENE7');
});

describe('the heat map', () => {
  test('orders the selection by likeness, marks what is missing, and leads to genes by pointer and keys', async () => {
    const { rows, data } = profileData(60);
    page = await browser.open(data);
    assert.match(await text('#profiles'), /Select genes/);
    await page.click('text=Select in view');
    await until(() => page.locator('.heat-frame').isVisible());
    assert.match(await text('.heat-lead'), /^60 genes in 6 conditions\. Ordered by average linkage on correlation\.$/);
    const order = (await heatOrder()).map((name) => Number(name.slice(4)));
    assert.deepEqual([...order].sort((a, b) => a - b), rows.map((_, gene) => gene));
    const whole = order.filter((gene) => gene !== MISSING);
    assert.equal(whole.filter((gene, line) => line > 0 && gene % 5 !== whole[line - 1] % 5).length, 4);
    const cell = page.locator('.heat-table tbody tr').nth(order.indexOf(MISSING)).locator('td').nth(1);
    assert.equal(await cell.innerText(), 'no value');

    // 60 lines of 7 pixels under the names of the columns, without names of genes beside them.
    const height = await page.evaluate(() => document.querySelector('.heat-spacer').clientHeight);
    const cellWidth = ((await page.evaluate(() => document.querySelector('.heat-spacer').clientWidth)) - 4) / 6;
    const place = (line, column) => [4 + (column + 0.5) * cellWidth, height - 60 * 7 + (line + 0.5) * 7];
    const cells = [[MISSING, 1], [2, 4], [0, 4]].map(([gene, column]) => place(order.indexOf(gene), column));
    const [missing, high, low] = await heatColoursAt(cells);
    assert.deepEqual(missing, [0xa9, 0xb1, 0xb9]);
    assert.ok(high[0] > high[2] + 60 && low[2] > low[0] + 60, `${high}, ${low}`);

    const at = place(order.indexOf(2), 4);
    await page.locator('.heat-frame').scrollIntoViewIfNeeded();
    const { x, y } = await page.locator('.heat-frame').boundingBox();
    await page.mouse.move(x + 1 + at[0], y + 1 + at[1]);
    await until(async () => /^GENE2; leucine: /.test(await text('.heat-readout')));
    await until(async () => (await page.locator('.tip-name').textContent()) === 'GENE2');
    await page.mouse.down();
    await page.mouse.up();
    assert.equal(await text('.gene-name'), 'GENE2');

    await selectFound('gamma', 12);
    assert.equal(await page.locator('.heat-tools button').first().getAttribute('aria-pressed'), 'true');
    const chosen = await page.locator('.heat-table tbody th').allInnerTexts();
    await page.locator('.heat-frame').focus();
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('ArrowDown');
    await page.keyboard.press('ArrowRight');
    await statusSays(`${chosen[1]}; nitrogen <b>: `);
    await page.keyboard.press('End');
    await statusSays(`${chosen.at(-1)}; nitrogen <b>: `);
    await page.keyboard.press('Enter');
    assert.equal(await text('.gene-name'), chosen.at(-1));
    await page.emulateMedia({ media: 'print' });
    for (const part of ['.heat-cells', '#conditions table']) assert.ok(await page.locator(part).isVisible(), part);
    // On paper the marks would wipe the cells beneath them.
    assert.equal(await page.locator('.heat-marks').isVisible(), false);
    await page.emulateMedia({ media: 'screen' });
    const waiting = page.waitForEvent('download');
    await page.click('.heat-tools >> text=Download TSV');
    const download = await waiting;
    assert.equal(download.suggestedFilename(), 'brauer2008_tsne_30_0_profiles.tsv');
    const [head, first] = (await readFile(await download.path(), 'utf8')).split('\n').map((line) => line.split('\t'));
    assert.deepEqual(head, ['name', ...COLUMNS]);
    assert.equal(first[0], chosen[0]);
    assert.ok(Math.abs(Number(first[1]) - rows[Number(chosen[0].slice(4))][0]) < 0.001);
    await page.click('text=Less the mean');
    assert.match(await page.locator('.heat-bar').getAttribute('aria-label'), /less the mean of the gene$/);
  });

  test('draws of thousands of genes what is in view, or means of them, and says so', async () => {
    const { data } = profileData(4000, Array.from({ length: 36 }, (_, column) => `condition ${column + 1}`));
    page = await browser.open(data);
    await page.click('text=Select in view');
    await until(() => page.locator('.heat-frame').isVisible());
    assert.match(await text('.heat-lead'), /^4,000 genes in 36 conditions\. Too many to cluster one by one: 256 are, .*Each line is the mean of 10 genes\.$/);
    const { width, height } = await page.locator('.heat-frame').boundingBox();
    assert.ok(height < 540);
    await page.locator('.heat-frame').hover({ position: { x: width / 2, y: height - 100 } });
    await until(async () => /, GENE\d+ and 7 more; condition \d+: /.test(await text('.heat-readout')));
    await page.click('.heat-tools >> text=Names');
    assert.equal(await page.evaluate(() => document.querySelector('.heat-frame').scrollHeight - document.querySelector('.heat-spacer').clientHeight), 0);
    assert.ok(await page.evaluate(() => document.querySelector('.heat-spacer').clientHeight) > 16 * 4000);
    assert.ok(await page.evaluate(() => document.querySelector('.heat-cells').clientHeight) < 540);
    await page.locator('.heat-frame').focus();
    await page.keyboard.press('End');
    assert.ok(await page.evaluate(() => document.querySelector('.heat-frame').scrollTop) > 16 * 3900);
  });
});

test('conditions in which the selection differs come first and colour the map, as does distance', async () => {
  page = await browser.open(profileData(60).data);
  assert.match(await text('#conditions'), /Select genes to see/);
  await selectFound('gamma', 12);
  await until(async () => (await page.locator('#conditions tbody tr').count()) === 6);
  const first = await page.locator('#conditions tbody tr').first().locator('th, td').allInnerTexts();
  assert.deepEqual([first[0], first[3]], ['leucine', '1.000']);
  assert.ok(Math.abs(Number(first[1]) - 3) < 0.1 && Math.abs(Number(first[2]) + 1) < 0.1);
  // Half a pair each: (n1 n2 / 2) / sqrt(n1 n2 (n + 1) / 12) without ties
  assert.equal(first[4], (288 / Math.sqrt((576 * 61) / 12)).toFixed(1));
  assert.match(await text('#conditions .caution'), /no test of anything.*no p-values/);
  await page.locator('#conditions .gene-link').first().click();
  assert.equal(await text('#legend h2'), 'leucine');
  await page.fill('#search', '');
  await page.click('[aria-label="Reset the view"]');
  await page.keyboard.press('Escape');
  await page.click('text=Select in view');
  await until(async () => (await text('#conditions')).includes('nothing to compare'));

  await page.click('text=Colour by distance');
  await page.locator('#chart-frame').focus();
  await page.keyboard.press('Escape');
  const { x, y } = await screenPlace(page, 12);
  await page.mouse.move(x + 3, y);
  await page.mouse.move(x, y);
  await until(async () => /Distance to GENE\d+$/.test(await text('#distances')));
  assert.equal(await text('#legend h2'), 'Distance to the gene pointed at');
  assert.match(await page.locator('#legend .scale').getAttribute('aria-label'), /from 0\.000 to/);
  await page.click('text=Colour by distance');
  assert.equal(await text('#legend h2'), 'leucine');
});

test('a page without the matrix goes without all of it', async () => {
  page = await browser.open(smallData());
  await page.click('text=Select in view');
  for (const id of ['profiles', 'conditions']) assert.equal(await page.locator(`#${id}`).isVisible(), false);
  assert.equal(await page.locator('#distances').count(), 0);
});

test('the accessibility checker finds nothing, in both themes and on a phone, where nothing is too wide', async () => {
  page = await browser.open(profileData(60).data, { colorScheme: 'light' });
  await focusGene('GENE7');
  await selectFound('gamma', 12);
  await page.click('.heat-table summary');
  await page.click('#gene-profile summary');
  await until(async () => (await page.locator('#conditions tbody tr').count()) === 6);
  await page.evaluate(await readFile(AXE_FILE, 'utf8'));
  for (const change of [() => {}, async () => {
    await page.click('#theme');
    await page.setViewportSize({ width: 360, height: 800 });
    await until(async () => (await page.locator('.heat-cells').boundingBox()).width < 360);
  }]) {
    await change();
    const { violations } = await page.evaluate(() => window.axe.run());
    assert.deepEqual(violations.map(({ id, nodes }) => `${id}: ${nodes.map((node) => node.html.slice(0, 100)).join(' | ')}`), []);
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth));
  }
});
