import assert from 'node:assert/strict';
import { after, afterEach, before, describe, test } from 'node:test';
import { join } from 'node:path';
import { readFile, writeFile } from 'node:fs/promises';
import { ALIASES, AXE_FILE, cloudData, smallData, startBrowser, until } from './support.mjs';

let browser;
let page;
let axe;

before(async () => {
  browser = await startBrowser();
  axe = await readFile(AXE_FILE, 'utf8');
});

after(() => browser.close());

afterEach(async () => {
  const { problems, requests, address } = page;
  await page.context().close();
  assert.deepEqual(problems, []);
  assert.deepEqual(requests.filter((request) => request.split('#')[0] !== address && !request.startsWith('blob:file:')), []);
});

const PHONE = { viewport: { width: 360, height: 800 }, hasTouch: true, isMobile: true };
const CLIPBOARD = { permissions: ['clipboard-read', 'clipboard-write'] };
const HOSTILE = '<img src=x onerror=alert(1)> \u202e"&';

const text = (selector) => page.locator(selector).innerText();
const chosen = () => page.locator('#selection tbody th').allInnerTexts();
const setNames = () => page.locator('.set-name').allInnerTexts();
const fragment = () => page.evaluate(() => window.location.hash);
const clipboard = () => page.evaluate(() => navigator.clipboard.readText());
const becomes = (read, wanted) => until(async () => JSON.stringify(await read()) === JSON.stringify(wanted), { what: JSON.stringify(wanted) });
const select = async (query) => {
  await page.fill('#search', query);
  await page.locator('#search').press('Enter');
  await page.click('text=Select matches');
};
/** Saves the selection as a set of this name. */
const saveAs = async (name) => {
  await page.click('text=Save as set');
  assert.equal(await page.evaluate(() => document.activeElement.dataset.part), 'name');
  await page.keyboard.type(name);
  await page.keyboard.press('Enter');
};
const inSet = (name, part) => page.locator('.set-list > li', { hasText: name }).locator(`[data-part="${part}"]`);

async function downloaded(act) {
  const waiting = page.waitForEvent('download');
  await act();
  const download = await waiting;
  return { name: download.suggestedFilename(), content: (await readFile(await download.path())).toString() };
}

async function violations() {
  await page.evaluate(axe);
  const { violations: found } = await page.evaluate(() => window.axe.run());
  return found.map(({ id, nodes }) => `${id}: ${nodes.map((node) => node.html.slice(0, 120)).join(' | ')}`);
}

test('the search knows other names, phrases and labels, and takes lists', async () => {
  page = await browser.open(smallData({ aliases: ALIASES }));
  const search = async (query) => {
    await page.fill('#search', query);
    await page.locator('#search').press('Enter');
    return [await text('#search-count'), ...(await page.locator('.hit').allInnerTexts()).map((hit) => hit.replace('\n', ': '))];
  };
  assert.deepEqual(await search('ybr160w'), ['1 match', 'CDC28: YBR160W \u00b7 Cyclin-dependent kinase; "catalytic" subunit, main regulator']);
  assert.match((await text('#details')).replace(/\s+/g, ' '), /^Gene CDC28 .* Also called YBR160W Label/);
  assert.equal((await search('G1B'))[1], 'CLN1: G1B \u00b7 G1 cyclin involved in regulation of the cell cycle');
  assert.deepEqual(await search('other'), ['1 match', 'MYSTERY: other']);
  assert.equal((await search('"shock heat"'))[0], '0 matches');
  assert.equal((await search('"heat shock"'))[0], '2 matches');
  assert.equal((await search('HSP12, S000000364; ACT1 YMR199W'))[0], '3 of 4 found, missing ACT1');
  assert.equal(await text('#details .gene-name'), 'HSP12', 'the first of the list');
  await page.click('text=Select matches');
  assert.deepEqual(await chosen(), ['CDC28', 'CLN1', 'HSP12']);
  await page.fill('#search', '');
  await page.locator('#search').evaluate((field) => {
    const clipboardData = new DataTransfer();
    clipboardData.setData('text/plain', 'CLN1\tkinase\r\nCLN2\r\n<b>x</b>\r\n');
    field.dispatchEvent(new ClipboardEvent('paste', { clipboardData, bubbles: true, cancelable: true }));
  });
  assert.equal(await page.inputValue('#search'), 'CLN1, kinase, CLN2, <b>x</b>');
  await becomes(() => text('#search-count'), '2 of 4 found, missing kinase, <b>x</b>');
});

describe('a selection', () => {
  test('says what is hidden of it, and copying says what was copied', async () => {
    page = await browser.open(smallData({ aliases: ALIASES }), CLIPBOARD);
    await page.click('text=Select in view');
    await page.uncheck('#legend li:has-text("stress") input');
    assert.match(await text('.hidden-genes'), /^3 of them hidden: their labels are switched off\. Copies and files hold them, too\./);
    assert.deepEqual((await chosen()).map((name) => name.replace(/\s+/g, ' ')).filter((name) => name.includes('hidden')), ['HSP104', 'HSP12', 'YAL001C'].map((name) => `${name} hidden`));
    await page.click('#selection [aria-label="Copy names"]');
    await becomes(() => text('#selection .note'), '7 names copied, 3 of them hidden');
    assert.equal(await clipboard(), 'CDC28\nCLN1\nCLN2\nHSP104\nHSP12\nYAL001C\nMYSTERY');
    await page.click('text=Leave hidden out');
    assert.deepEqual(await chosen(), ['CDC28', 'CLN1', 'CLN2', 'MYSTERY']);
    assert.equal(await page.locator('.hidden-genes').count(), 0);
    await page.click('#selection >> text=Undo');
    await page.click('text=Show them');
    assert.equal(await page.isChecked('#legend li:has-text("stress") input'), true);
    assert.equal((await chosen()).length, 7);
    await page.click('#selection [aria-label="Copy systematic names"]');
    await becomes(() => text('#selection .note'), '6 systematic names copied; 1 of 7 genes without one');
    assert.match(await clipboard(), /^YBR160W\nYMR199W\n/);
    await page.click('#selection [aria-label="Copy SGD ids"]');
    await becomes(() => text('#selection .note'), '6 SGD ids copied; 1 of 7 genes without one');
    assert.match(await clipboard(), /^S000000364\n/);
  });

  test('is printed with the names of its genes', async () => {
    page = await browser.open(smallData());
    await page.click('text=Select in view');
    await saveAs('Printed');
    await page.emulateMedia({ media: 'print' });
    for (const name of ['CDC28', 'MYSTERY']) {
      const cell = page.locator('#selection th', { hasText: name }).locator('.data-text');
      assert.ok(await cell.isVisible() && (await cell.boundingBox()).width > 20, name);
    }
    assert.ok(await page.locator('.set-name', { hasText: 'Printed' }).isVisible());
    assert.deepEqual(await page.locator('aside button:visible:not(.gene-link)').count(), 0);
    const long = await page.locator('#selection td.function .data-text').first().evaluate((node) => [node.scrollWidth, node.clientWidth]);
    assert.ok(long[0] <= long[1], 'nothing is cut off');
  });
});

describe('sets', () => {
  test('are saved, named, combined and undone', async () => {
    page = await browser.open(smallData({ aliases: ALIASES }), CLIPBOARD);
    await select('g1 cyclin');
    await saveAs('G1');
    await select('CDC28, CLN1, HSP12');
    await saveAs(HOSTILE);
    assert.deepEqual(await setNames(), ['G1', HOSTILE]);
    assert.match((await text('#details')).replace(/\s+/g, ' '), /^Gene CDC28 .* Sets <img/);
    assert.equal(await page.locator('img').count(), 0);
    for (const [operation, names] of [['Union', ['CDC28', 'CLN1', 'CLN2', 'HSP12']], ['Difference', ['CDC28', 'HSP12']], ['Intersection', []]]) {
      await inSet('G1', operation).click();
      assert.deepEqual(await chosen(), names, operation);
    }
    await page.locator('#chart-frame').focus();
    await page.keyboard.press('Control+z');
    assert.deepEqual(await chosen(), ['CDC28', 'HSP12']);
    await page.keyboard.press('Control+Z');
    await page.keyboard.press('Control+Shift+Z');
    await page.keyboard.press('Control+Shift+Z');
    assert.deepEqual(await chosen(), []);
    assert.equal(await page.locator('.history button').nth(1).getAttribute('aria-disabled'), 'true');
    await page.locator('.set-list > li').first().getByRole('button', { name: 'Select the genes of G1' }).click();
    assert.deepEqual(await chosen(), ['CLN1', 'CLN2']);
    await inSet('G1', 'copy systematic').click();
    await becomes(() => text('#sets .note'), '2 systematic names copied');
    assert.equal(await clipboard(), 'YMR199W\nYPL256C');
    await inSet('G1', 'delete').click();
    assert.deepEqual(await setNames(), [HOSTILE]);
    await page.click('#selection >> text=Undo');
    assert.deepEqual(await setNames(), ['G1', HOSTILE]);
    const field = inSet('G1', 'name');
    await field.fill('typed');
    await page.keyboard.press('Control+z');
    assert.deepEqual(await setNames(), ['G1', HOSTILE], 'fields undo by themselves');
    await page.keyboard.press('Tab');
  });

  test('colour the map, each in its colour', async () => {
    page = await browser.open(smallData({ sets: [{ name: 'G1', genes: ['CLN1', 'CLN2', 'CDC28'] }, { name: 'two', genes: ['CLN1', 'HSP12'] }] }));
    const rows = () => page.locator('#legend li').allInnerTexts().then((texts) => texts.map((row) => row.trim().replace(/\s+/g, ' ')));
    assert.deepEqual(await setNames(), ['G1', 'two']);
    assert.equal(await fragment(), '');
    await inSet('G1', 'map').check();
    await becomes(rows, ['G1 3', '(no label) 4']);
    await inSet('two', 'map').check();
    await becomes(rows, ['G1 2', 'two 1', 'G1 + two 1', '(no label) 3']);
    await page.locator('.set-list summary').first().click();
    await inSet('G1', 'colour').evaluate((field) => {
      field.value = '#102030';
      field.dispatchEvent(new Event('change'));
    });
    await until(async () => (await page.locator('#legend path').first().getAttribute('fill')) === '#102030');
    // Boxes are ticked while the map shows their colours, and come back with them.
    await page.selectOption('#colouring', { index: 0 });
    assert.deepEqual([await inSet('G1', 'map').isChecked(), await inSet('two', 'map').isChecked()], [false, false]);
    await page.selectOption('#colouring', { label: 'Sets' });
    assert.deepEqual([await inSet('G1', 'map').isChecked(), await inSet('two', 'map').isChecked()], [true, true]);
    await inSet('G1', 'map').uncheck();
    await inSet('two', 'map').uncheck();
    await becomes(rows, ['cycle 3', 'stress 3', 'other 1']);
  });

  test('go to files and come back', async () => {
    page = await browser.open(smallData({ aliases: ALIASES }));
    await select('g1 cyclin');
    await saveAs('G1');
    const gmt = await downloaded(() => page.click('text=Save GMT'));
    assert.equal(gmt.name, 'brauer2008_tsne_30_0_sets.gmt');
    assert.match(gmt.content, /^G1\t#[0-9a-f]{6}\tCLN1\tCLN2\n$/);
    const json = await downloaded(() => page.click('text=Save JSON'));
    assert.deepEqual(JSON.parse(json.content).sets[0].genes, ['CLN1', 'CLN2']);
    const load = async (name, content) => {
      const file = join(browser.folder, name);
      await writeFile(file, content);
      await page.locator('#sets input[type=file]').setInputFiles(file);
    };
    await load('more.gmt', `${gmt.content}stress\t\tYLL026W\thsp12\tACT1\nnone\t\tACT1\n`);
    await becomes(() => text('#sets .note'), '2 sets of more.gmt: 4 of 5 found, missing ACT1; 1 set without a gene on this map left out');
    assert.deepEqual(await setNames(), ['G1', 'G1 (2)', 'stress']);
    await load('bad.gmt', 'a\tb\tCLN1\nCLN2\n');
    await becomes(() => text('#sets .note'), 'bad.gmt line 2 is no set: a name, a description and genes, with tabs between');
    await page.locator('body').evaluate((body) => {
      const dataTransfer = new DataTransfer();
      dataTransfer.items.add(new File(['CDC28\nMYSTERY\n'], 'my genes.txt'));
      for (const kind of ['dragover', 'drop']) body.dispatchEvent(new DragEvent(kind, { dataTransfer, bubbles: true, cancelable: true }));
    });
    await becomes(setNames, ['G1', 'G1 (2)', 'stress', 'my genes']);
    assert.equal(await text('#sets .note'), '1 set of my genes.txt: 2 of 2 found');
  });
});

describe('the address', () => {
  test('keeps selection and sets, and brings them back', async () => {
    page = await browser.open(smallData({ sets: [{ name: 'given', genes: ['HSP12'] }] }), CLIPBOARD);
    await select('g1 cyclin');
    await saveAs(HOSTILE);
    await until(async () => (await fragment()).startsWith('#sets='));
    await page.click('text=Copy link');
    await becomes(() => text('#sets .note'), 'Link copied');
    const link = await clipboard();
    await page.goto('about:blank');
    await page.goto(link);
    await becomes(setNames, ['given', HOSTILE]);
    assert.deepEqual(await chosen(), ['CLN1', 'CLN2']);
    assert.equal(await text('#sets .note'), 'The address brought a selection of 2 genes and 2 sets');
    assert.equal(await page.locator('.history button').first().getAttribute('aria-disabled'), 'true');
    await page.click('#selection >> text=Clear');
    await until(async () => (await page.evaluate(() => window.location.href)) !== link);
    await page.evaluate((hash) => {
      window.location.hash = hash;
    }, new URL(link).hash);
    await becomes(chosen, ['CLN1', 'CLN2']);
    const { address } = page;
    page.context().close();
    page = await browser.open(smallData({ names: ['a', 'b', 'c', 'd', 'e', 'f', 'g'] }));
    await page.evaluate((hash) => {
      window.location.hash = hash;
    }, new URL(link).hash);
    await becomes(() => text('#sets .note'), 'Selection and sets of this address cannot be taken: it is that of a page of other genes');
    assert.notEqual(page.address, address);
    assert.deepEqual([await chosen(), await setNames()], [[], []]);
  });

  test('says when it is too short for them', async () => {
    page = await browser.open(cloudData(60000));
    await page.click('text=Select in view');
    await until(async () => (await text('#sets .note')).startsWith('Selection and sets are too large for the address (10,'));
    assert.equal(await fragment(), '');
    await page.click('text=Copy link');
    assert.match(await text('#sets .note'), /too large for a link: save the sets as a file/);
  });
});

test('the accessibility checker finds nothing, and nothing is wider than a phone', async () => {
  const sets = [{ name: 'G1', genes: ['CLN1', 'CLN2'] }, { name: 'L'.repeat(100), genes: ['CLN1', 'HSP12'] }];
  const contexts = [{ colorScheme: 'light' }, { colorScheme: 'dark', ...PHONE }];
  for (const [index, settings] of contexts.entries()) {
    if (index > 0) await page.context().close();
    page = await browser.open(smallData({ aliases: ALIASES, sets }), settings);
    await page.click('text=Select in view');
    await page.uncheck('#legend li:has-text("stress") input');
    await page.locator('.set-list summary').first().click();
    await inSet('L'.repeat(100), 'map').check();
    await page.locator('#search').fill('CLN1 CLN2 nobody');
    await until(async () => (await text('#search-count')).includes('missing'));
    assert.deepEqual(await violations(), []);
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth));
  }
  const small = await page.evaluate(() => [...document.querySelectorAll('#sets button, #selection button, #sets summary, #sets input:not([type=checkbox])')]
    .filter((node) => node.offsetParent !== null && node.getBoundingClientRect().height < 40).map((node) => node.outerHTML));
  assert.deepEqual(small, []);
});
