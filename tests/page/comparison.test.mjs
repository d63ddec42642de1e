import assert from 'node:assert/strict';
import { execFile } from 'node:child_process';
import { readFile, writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { promisify } from 'node:util';
import { AXE_FILE, createNumbers, startBrowser, until } from './support.mjs';

/** The page that compares runs, as the command writes it; `OVIK_TSNE` is its path. */

const run = promisify(execFile);

const PHONE = { viewport: { width: 360, height: 800 }, hasTouch: true, isMobile: true, deviceScaleFactor: 2 };

const HOSTILE = [
  '</script><img src=x onerror="window.PWN=1">',
  '{{comparison-data}}{{page-title}}$&$1',
  '<!-- <script>window.PWN=2</script>',
  'CDC28',
  '"quoted", twice',
  'gr\u00fc\u00df\u20ac \u{1f9ec}',
  'ADE5,7',
  '\u202Ereversed',
];

/** A word of each of them that the others have not. */
const WORDS = ['onerror', 'page-title', 'PWN=2', 'CDC28', 'quoted', 'gr\u00fc\u00df', 'ADE5', 'reversed'];

const GENES = 150;

let browser;
let axe;
let sweepPage;

/** Writes a matrix of three groups. */
async function writeMatrix(name, names) {
  const next = createNumbers(5);
  const rows = names.map((gene, row) => [gene, ...Array.from({ length: 6 }, (_, column) =>
    (column % 3 === row % 3 ? 5 : 0) + next())].join('\t'));
  const path = join(browser.folder, name);
  await writeFile(path, `gene\ta\tb\tc\td\te\tf\n${rows.join('\n')}\n`);
  return path;
}

const command = (...options) => run(process.env.OVIK_TSNE, [...options, '--quiet']);

before(async () => {
  browser = await startBrowser();
  axe = await readFile(AXE_FILE, 'utf8');
  const names = ['CDC28', 'CLN1', 'CLN2', ...Array.from({ length: GENES - 3 }, (_, row) => `GENE${row}`)];
  const matrix = await writeMatrix('m.tsv', names);
  const labels = join(browser.folder, 'labels.tsv');
  await writeFile(labels, `name\tgroup\tnumber\n${names.map((name, row) =>
    `${name}\t${['one', 'two', 'three'][row % 3]}\t${row % 7}`).join('\n')}\n`);
  await command(matrix, '-p', '10,3,5,15,8', '-i', '100', '--quality', '--labels', labels,
    '--title', 'Three groups', '-n', 'm', '-o', join(browser.folder, 'sweep'));
  sweepPage = join(browser.folder, 'sweep', 'm_tsne_comparison.html');
});

after(() => browser.close());

async function violations(page) {
  await page.evaluate(axe);
  const { violations: found } = await page.evaluate(() => window.axe.run());
  return found.map(({ id, nodes }) => `${id}: ${nodes.map((node) => node.html.slice(0, 120)).join(' | ')}`);
}

async function assertUnharmed(page) {
  assert.deepEqual(page.problems, []);
  assert.deepEqual(page.requests.filter((address) => !address.startsWith('file:') && !address.startsWith('data:')), []);
  assert.equal(await page.evaluate(() => window.PWN), undefined);
}

const frameOf = (page, which) => page.locator('.map-frame').nth(which);
const pixelOf = (page, which, gene) =>
  page.evaluate(([map, one]) => window.ovikComparison.pixelOf(map, one), [which, gene]);
const selectionOf = (page) => page.evaluate(() => [...window.ovikComparison.state().selection]);
const stateOf = (page, key) => page.evaluate((name) => window.ovikComparison.state()[name], key);

/** Moves the pointer to places of a map, from its corner in pixels, the button down from the first on; then a key may be pressed. */
async function drag(page, which, places, { key = null } = {}) {
  await frameOf(page, which).scrollIntoViewIfNeeded();
  const box = await frameOf(page, which).boundingBox();
  const [[x, y], ...rest] = places;
  await page.mouse.move(box.x + x, box.y + y);
  await page.mouse.down();
  for (const [toX, toY] of rest) await page.mouse.move(box.x + toX, box.y + toY, { steps: 4 });
  if (key) await page.keyboard.press(key);
  await page.mouse.up();
}

/** Whether a ring of a colour goes around a place of a map, told by what lies below its middle. */
function hasRing(page, which, place, colour) {
  return page.evaluate(([map, [x, y], [red, green, blue]]) => {
    const canvas = document.querySelectorAll('.map-frame canvas')[map];
    const density = canvas.width / canvas.clientWidth;
    const copy = document.createElement('canvas');
    copy.width = 1;
    copy.height = 20 * density;
    const context = copy.getContext('2d', { willReadFrequently: true });
    context.drawImage(canvas, -Math.round(x * density), -Math.round(y * density));
    const { data } = context.getImageData(0, 0, 1, copy.height);
    for (let at = 4 * 4 * density; at < data.length; at += 4) {
      if (Math.hypot(data[at] - red, data[at + 1] - green, data[at + 2] - blue) < 6) return true;
    }
    return false;
  }, [which, place, colour]);
}

test('one hover, one lasso and one search light up the same genes in all maps', async () => {
  const page = await browser.openFile(sweepPage, { viewport: { width: 1440, height: 900 } });
  assert.equal(await page.locator('.map-frame').count(), 5);
  assert.equal(await page.locator('.picture:visible').count(), 0);
  assert.match(await page.locator('.alignment').textContent(), /that of "Perplexity 10" \(Procrustes\)/);
  assert.deepEqual(await violations(page), []);

  // A ring shows in every map, at the gene's own place there.
  const accent = await page.evaluate(() => getComputedStyle(document.documentElement).getPropertyValue('--accent').trim());
  const channels = [1, 3, 5].map((at) => parseInt(accent.slice(at, at + 2), 16));
  const [x, y] = await pixelOf(page, 1, 40);
  assert.equal(await hasRing(page, 1, [x, y], channels), false);
  await frameOf(page, 1).hover({ position: { x, y } });
  await until(async () => (await stateOf(page, 'hover')) >= 0);
  const hovered = await stateOf(page, 'hover');
  for (let which = 0; which < 5; which += 1) {
    const place = await pixelOf(page, which, hovered);
    await until(() => hasRing(page, which, place, channels), { what: `ring in map ${which}` });
  }
  assert.equal(await page.locator('.gene-name').innerText(), hovered < 3 ? ['CDC28', 'CLN1', 'CLN2'][hovered] : `GENE${hovered - 3}`);

  // A box in one map takes what lies in it; the lasso draws the same.
  const box = await frameOf(page, 2).boundingBox();
  const corner = [box.width / 2, box.height / 2];
  const inside = await page.evaluate(([count, right, bottom]) => [...Array(count).keys()].filter((one) => {
    const [across, down] = window.ovikComparison.pixelOf(2, one);
    return across > 2 && across < right && down > 2 && down < bottom;
  }), [GENES, ...corner]);
  assert.ok(inside.length > 3 && inside.length < GENES - 3, `${inside.length}`);
  await page.click('text=Box');
  await drag(page, 2, [[2, 2], corner]);
  assert.deepEqual(await selectionOf(page), inside);
  await page.click('button:text("Clear")');
  await page.click('text=Lasso');
  await drag(page, 2, [[2, 2], [corner[0], 2], corner, [2, corner[1]]]);
  assert.deepEqual(await selectionOf(page), inside);
  // Escape gives up what is being drawn.
  await drag(page, 2, [[2, 2], [5, 40], [20, 30]], { key: 'Escape' });
  assert.deepEqual(await selectionOf(page), inside);
  assert.equal(await page.locator('#selection h2').innerText(), `Selection: ${inside.length} genes`);
  assert.equal(await page.locator('.chosen li').count(), inside.length);
  for (const text of await page.locator('.together').allInnerTexts()) assert.match(text, /^Of the \d+ genes nearest to each chosen one \d+/);
  await page.click('text=Copy names');
  await until(async () => /copied|allow/.test(await page.locator('#selection .counts').innerText()));
  assert.deepEqual(await violations(page), []);

  // Shift adds; a label chooses its genes; the search finds by name and chooses.
  await page.keyboard.down('Shift');
  await drag(page, 0, [[1, 1], [box.width - 1, 1], [box.width - 1, box.height - 1], [1, box.height - 1]]);
  await page.keyboard.up('Shift');
  assert.equal((await selectionOf(page)).length, GENES);
  await page.click('.label-choice:has-text("two")');
  assert.deepEqual(await selectionOf(page), Array.from({ length: GENES / 3 }, (_, at) => 3 * at + 1));
  await page.fill('#search', 'cln');
  await until(async () => (await page.locator('#search-count').innerText()) === '2 matches');
  await page.click('text=Select matches');
  assert.deepEqual(await selectionOf(page), [1, 2]);
  await page.click('.hit >> nth=0');
  assert.equal(await page.locator('.gene-name').innerText(), 'CLN1');
  await page.selectOption('#colouring', { label: 'number' });
  assert.equal(await page.locator('.scale-bar').count(), 1);
  await page.selectOption('#colouring', { label: 'Place in Perplexity 10' });
  assert.match(await page.locator('#legend').innerText(), /its place in the map of Perplexity 10/);

  // Keys alone: a gene, its neighbour, into the selection, and away.
  await frameOf(page, 3).focus();
  await page.keyboard.press('Escape');
  assert.equal(await stateOf(page, 'focus'), -1);
  await page.keyboard.press('ArrowRight');
  const first = await stateOf(page, 'focus');
  await page.keyboard.press('ArrowRight');
  const second = await stateOf(page, 'focus');
  assert.ok(first >= 0 && second !== first);
  assert.ok((await pixelOf(page, 3, second))[0] >= (await pixelOf(page, 3, first))[0]);
  await page.keyboard.press('Enter');
  assert.ok((await selectionOf(page)).includes(second));
  assert.notEqual(await page.locator('#status').textContent(), '');
  await page.click('#theme');
  assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), 'dark');
  await page.click('summary');
  assert.deepEqual(await violations(page), []);
  await assertUnharmed(page);
  await page.context().close();
});

test('the numbers are told of each run, each with a sentence, the best marked', async () => {
  const page = await browser.openFile(sweepPage, { colorScheme: 'dark' });
  const heads = await page.locator('#numbers thead th').allInnerTexts();
  for (const name of ['Perplexity', 'Theta', 'Last iteration', 'Seconds', 'Cost', 'Trustworthiness, nearest 10', 'Kept of the nearest 10', 'Disparity']) {
    assert.ok(heads.includes(name), `${name} not in ${heads}`);
  }
  assert.deepEqual(await page.locator('.sentences dt').allInnerTexts(), heads.slice(1));
  const column = heads.indexOf('Kept of the nearest 10');
  const cells = await page.locator(`#numbers tbody tr > :nth-child(${column + 1})`).allInnerTexts();
  const most = Math.max(...cells.map(parseFloat));
  cells.forEach((cell) => {
    if (/best/.test(cell)) assert.equal(parseFloat(cell), most);
  });
  assert.ok(cells.some((cell) => /best/.test(cell)));
  assert.equal(await page.locator(`#numbers tbody tr > :nth-child(${heads.indexOf('Cost') + 1}).best`).count(), 0);
  assert.deepEqual(await violations(page), []);
  await page.context().close();
});

test('on a phone nothing is too wide or too small, and a tap shows a gene', async () => {
  const page = await browser.openFile(sweepPage, PHONE);
  assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth));
  const small = await page.evaluate(() => [...document.querySelectorAll('button, select, input[type=search], summary')]
    .filter((node) => node.offsetParent !== null && node.getBoundingClientRect().height < 40)
    .map((node) => node.textContent));
  assert.deepEqual(small, []);
  assert.equal(await stateOf(page, 'tool'), 'look');
  await frameOf(page, 1).scrollIntoViewIfNeeded();
  const box = await frameOf(page, 1).boundingBox();
  const [x, y] = await pixelOf(page, 1, 7);
  await page.touchscreen.tap(box.x + x, box.y + y);
  await until(async () => (await stateOf(page, 'focus')) >= 0);
  assert.match(await page.locator('.gene-name').innerText(), /^(GENE|C)/);
  assert.deepEqual(await violations(page), []);
  await page.context().close();
});

/** The page number of each picture of a printed page, and how often each title stands on each page. */
async function printed(page, name, titles) {
  const path = join(browser.folder, name);
  await page.pdf({ path, format: 'A4' });
  const { stdout: list } = await run('pdfimages', ['-list', path]);
  const pictures = list.trim().split('\n').slice(2).map((line) => line.trim().split(/\s+/))
    .filter(([, , type]) => type === 'image').map(([sheet]) => Number(sheet));
  const { stdout: text } = await run('pdftotext', ['-layout', path, '-']);
  const sheets = text.split('\f');
  return { pictures, sheets, titled: titles.map((title) => sheets.findIndex((sheet) => sheet.includes(title)) + 1) };
}

test('on paper no card is broken, and names of chosen genes are listed', async () => {
  const titles = ['Perplexity 10', 'Perplexity 3', 'Perplexity 5', 'Perplexity 15', 'Perplexity 8'];
  const page = await browser.openFile(sweepPage, { colorScheme: 'dark' });
  const plain = await printed(page, 'plain.pdf', titles);
  // Five cards do not fit on a sheet, and none stands on two.
  assert.equal(plain.pictures.length, 5);
  assert.deepEqual([...plain.pictures].sort(), [...plain.titled].sort());
  assert.ok(new Set(plain.titled).size > 1, `${plain.titled}`);
  await page.fill('#search', 'cln');
  await page.keyboard.press('Enter');
  await page.click('text=Select matches');
  const chosen = await printed(page, 'chosen.pdf', titles);
  assert.deepEqual([...chosen.pictures].sort(), [...chosen.titled].sort());
  const text = chosen.sheets.join('\n');
  for (const words of ['Selection: 2 genes', 'CLN1', 'CLN2', 'by chance']) assert.ok(text.includes(words), words);
  await page.context().close();
});

test('without scripts the pictures and the numbers are there', async () => {
  const page = await browser.openFile(sweepPage, { javaScriptEnabled: false }, false);
  assert.equal(await page.locator('.picture:visible').count(), 5);
  assert.equal(await page.locator('#numbers tbody tr').count(), 5);
  assert.equal(await page.locator('.run h2 a').count(), 5);
  assert.equal(await page.locator('#tools:visible, aside .card:visible').count(), 0);
  await page.context().close();
});

test('reports of different rows are collected; what a map lacks is said, and hostile names are text', async () => {
  const reports = [];
  for (const [name, names] of [['all', HOSTILE], ['few', HOSTILE.slice(1).reverse()]]) {
    const report = join(browser.folder, `${name}.json`);
    await command(await writeMatrix(`${name}.tsv`, names), '-p', '2', '-i', '30', '--no-plots', '--title', HOSTILE[0],
      '-n', name, '-o', join(browser.folder, name), '--json', report);
    reports.push(report);
  }
  await command('-o', join(browser.folder, 'collected'), '-n', 'c', '--collect', ...reports);
  const page = await browser.openFile(join(browser.folder, 'collected', 'c_tsne_comparison.html'));
  assert.equal(await page.title(), HOSTILE[0]);
  assert.deepEqual(await page.locator('.note').allInnerTexts().then((notes) => notes.map((note) => /^1 gene of the others is not in this map/.test(note))), [false, true]);
  for (const [gene, name] of HOSTILE.entries()) {
    await page.fill('#search', WORDS[gene]);
    await page.press('#search', 'Enter');
    await until(async () => (await stateOf(page, 'focus')) === gene, { what: `found ${name}` });
    assert.equal(await page.locator('.gene-name').textContent(), name);
    assert.equal(await page.locator('.missing').count(), gene === 0 ? 1 : 0);
  }
  await page.click('text=Box');
  const box = await frameOf(page, 0).boundingBox();
  await drag(page, 0, [[1, 1], [box.width - 1, box.height - 1]]);
  assert.deepEqual((await page.locator('.chosen .data-text').allTextContents()), HOSTILE);
  assert.match(await page.locator('.together').nth(1).innerText(), /^7 of 8 chosen genes are in this map/);
  assert.deepEqual(await violations(page), []);
  await assertUnharmed(page);
  await page.context().close();
});
