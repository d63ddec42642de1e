import assert from 'node:assert/strict';
import { after, afterEach, before, describe, test } from 'node:test';
import { readFile } from 'node:fs/promises';
import { cloudData, LABEL_COLUMNS, screenPlace, smallData, startBrowser, until } from './support.mjs';

let browser;
let page;

before(async () => {
  browser = await startBrowser();
});

after(() => browser.close());

afterEach(async () => {
  const { problems, requests, address } = page;
  await page.context().close();
  assert.deepEqual(problems, []);
  assert.deepEqual(requests.filter((request) => request !== address && !request.startsWith('blob:file:')), []);
});

const text = (selector) => page.locator(selector).innerText();
const chosenNames = () => page.locator('#selection tbody th').allInnerTexts();
const view = () => page.evaluate(() => window.ovikPage.view());
const spanOf = ({ x0, x1 }) => x1 - x0;
const isInView = ({ x0, x1, y0, y1 }, x, y) => x >= x0 && x <= x1 && y >= y0 && y <= y1;
const statusSays = (wanted) => until(async () => (await page.locator('#status').textContent()).includes(wanted), { what: wanted });

async function press(...keys) {
  await page.locator('#chart-frame').focus();
  for (const key of keys) await page.keyboard.press(key);
}

async function pointAt(gene) {
  const { x, y } = await screenPlace(page, gene);
  await page.mouse.move(x + 30, y + 30);
  await page.mouse.move(x, y);
}

async function drag(...places) {
  await page.mouse.move(places[0].x, places[0].y);
  await page.mouse.down();
  for (const place of places) await page.mouse.move(place.x, place.y, { steps: 4 });
  await page.mouse.up();
}

async function downloaded(act) {
  const waiting = page.waitForEvent('download');
  await act();
  const download = await waiting;
  return { name: download.suggestedFilename(), content: await readFile(await download.path()) };
}

describe('the page', () => {
  test('says what it shows', async () => {
    page = await browser.open(smallData({ texts: ['First note', '', '', 'Last note'] }));
    assert.equal(await page.title(), 'Yeast in chemostats');
    assert.equal(await text('h1'), 'Yeast in chemostats');
    assert.equal(await text('.lead'), '7 genes, in 3 labels; genes that behave alike lie close together.');
    assert.deepEqual(await page.locator('.spare').allInnerTexts(), ['First note', 'Last note']);
    assert.equal(
      await page.locator('#chart-frame').getAttribute('aria-label'),
      'Scatter of 7 genes of 7; Component 1 runs from -30.000 to 30.000, '
        + 'Component 2 runs from -30.000 to 30.000. 3 labels: cycle (3), stress (3), other (1).',
    );
  });

  test('lists parameters and links; what is no safe link stays text', async () => {
    page = await browser.open(smallData({
      parameters: [['Perplexity', '30'], ['Theta', '0.5']],
      links: ['table.csv', 'https://example.org/a', 'javascript:alert(1)', 'http://example.org', '../up.csv', '//example.org/x'],
    }));
    assert.deepEqual(await page.locator('.parameters > div').evaluateAll((rows) => rows.map((row) =>
      [row.children[0].textContent, row.children[1].textContent])), [['Perplexity', '30'], ['Theta', '0.5']]);
    assert.deepEqual(await page.locator('.links a').evaluateAll((links) => links.map((link) => link.getAttribute('href'))), ['table.csv', 'https://example.org/a']);
    assert.equal(await page.locator('.links li').count(), 6);
  });

  test('keeps a unit equally long on both axes, also after zooming and in another window size', async () => {
    page = await browser.open(smallData());
    const scales = async () => {
      const [a, b, c] = await Promise.all([0, 1, 2].map((gene) => screenPlace(page, gene)));
      return [b.x - a.x, a.y - c.y];
    };
    for (const act of [() => {}, () => press('+', '+'), () => page.setViewportSize({ width: 1500, height: 700 })]) {
      await act();
      await page.waitForTimeout(200);
      const [across, up] = await scales();
      assert.ok(across > 20 && Math.abs(across / up - 1) < 0.01, `${across} and ${up}`);
    }
  });

  test('draws nothing without data, and says so', async () => {
    page = await browser.open({ type: 'scatter', title: '', name: '', pointCount: 0, pairs: [], names: [], functions: [], labels: [] });
    assert.equal(await text('.lead'), 'There are no points to show.');
    assert.equal(await page.locator('#chart-frame').getAttribute('aria-label'), 'Scatter without any points.');
    await press('ArrowRight', 'Enter', '+', '-', 'Home');
    await page.fill('#search', 'a');
    await until(async () => (await text('#search-count')) === '0 matches');
  });

  test('leaves out points without a position and counts them', async () => {
    const data = smallData();
    data.pairs[0].x[1] = null;
    page = await browser.open(data);
    assert.match(await text('.lead'), /1 gene has no finite position and is not drawn\.$/);
    assert.equal(await text('#legend .counts'), '6 of 6 in view');
    await page.fill('#search', 'CLN1');
    await page.keyboard.press('Enter');
    assert.match(await text('#details'), /no position in these components/);
  });
});

test('data that cannot be read are reported', async () => {
  page = await browser.open('no JSON', {}, false);
  assert.match(await text('#head'), /^This page could not be shown: .*JSON/);
  assert.equal(page.problems.length, 1);
  page.problems.length = 0;
});

test('without scripts the page says where the coordinates are', async () => {
  page = await browser.open(smallData(), { javaScriptEnabled: false }, false);
  assert.match(await text('.notice'), /drawn by JavaScript, which is switched off.*table \(\.csv\)/);
  assert.equal(await page.locator('main').isVisible(), false);
  page.problems.length = 0;
});

describe('pointing', () => {
  test('at a gene shows what it is; a click keeps it', async () => {
    page = await browser.open(smallData());
    await pointAt(0);
    await until(() => page.locator('.tip').isVisible());
    const tip = await text('.tip');
    for (const part of ['CDC28', 'cycle', 'Group:1:2', 'Cyclin-dependent kinase; "catalytic" subunit', '0.000, 0.000']) {
      assert.ok(tip.includes(part), part);
    }
    assert.doesNotMatch(await text('#details'), /CDC28/);
    const { x, y } = await screenPlace(page, 0);
    await page.mouse.click(x, y);
    assert.match(await text('#details'), /CDC28[^]*Cyclin-dependent kinase[^]*Group:1:2[^]*0\.000, 0\.000/);
    const link = page.locator('#details a');
    assert.equal(await link.getAttribute('href'), 'https://www.yeastgenome.org/locus/CDC28');
    assert.equal(await link.getAttribute('rel'), 'noopener noreferrer');
    assert.equal(await link.getAttribute('target'), '_blank');
  });

  test('tells an unknown function from a name that is not in the gene table', async () => {
    page = await browser.open(smallData());
    const click = async (gene) => {
      const { x, y } = await screenPlace(page, gene);
      await page.mouse.click(x, y);
    };
    await click(5);
    assert.match(await text('#details'), /YAL001C\s+function not known/);
    assert.equal(await page.locator('#details a').count(), 1);
    await click(6);
    assert.match(await text('#details'), /MYSTERY\s+not in the gene table/);
    assert.equal(await page.locator('#details a').count(), 0);
  });

  test('wheel and drag change the view, reset brings it back', async () => {
    page = await browser.open(smallData());
    const whole = await view();
    const { x, y } = await screenPlace(page, 0);
    await page.mouse.move(x, y);
    for (let turn = 0; turn < 5; turn += 1) await page.mouse.wheel(0, -120);
    await until(async () => spanOf(await view()) < 0.8 * spanOf(whole));
    const near = await screenPlace(page, 0);
    assert.ok(Math.hypot(near.x - x, near.y - y) < 2, 'the place under the pointer stays');
    await drag({ x, y }, { x: x + 60, y: y + 40 });
    const moved = await screenPlace(page, 0);
    assert.ok(Math.abs(moved.x - x - 60) < 2 && Math.abs(moved.y - y - 40) < 2);
    await page.click('text=Reset');
    await until(async () => Math.abs(spanOf(await view()) / spanOf(whole) - 1) < 1e-6);
  });
});

describe('the keyboard', () => {
  test('walks from gene to gene and says them', async () => {
    page = await browser.open(smallData());
    await press('ArrowRight');
    await statusSays('CDC28; cycle \u00b7 Group:1:2; Cyclin-dependent kinase');
    assert.match(await text('#details .gene-name'), /CDC28/);
    assert.ok(await page.locator('.tip').isVisible());
    const walk = [['ArrowRight', 'CLN1'], ['ArrowLeft', 'CDC28'], ['ArrowUp', 'CLN2'], ['ArrowDown', 'CDC28'], ['ArrowDown', 'HSP12'], ['ArrowUp', 'CDC28'], ['ArrowLeft', 'HSP104']];
    for (const [key, name] of walk) {
      await press(key);
      assert.equal(await text('#details .gene-name'), name, key);
    }
    await press('Escape');
    assert.equal(await page.locator('#details .gene-name').count(), 0);
    await until(async () => !(await page.locator('.tip').isVisible()));
  });

  test('zooms, pans and resets', async () => {
    page = await browser.open(smallData());
    const whole = await view();
    await press('+');
    const near = await view();
    assert.ok(Math.abs(spanOf(whole) / spanOf(near) - 1.4) < 0.01);
    await press('Shift+ArrowRight');
    const right = await view();
    assert.ok(right.x0 > near.x0 && Math.abs(right.y0 - near.y0) < 1e-9);
    assert.ok(Math.abs(spanOf(right) - spanOf(near)) < 1e-9);
    await press('Home');
    assert.ok(Math.abs(spanOf(await view()) - spanOf(whole)) < 1e-9);
    await press('+', '-');
    assert.ok(Math.abs(spanOf(await view()) - spanOf(whole)) < 1e-9);
  });

  test('a gene out of view is brought into it', async () => {
    page = await browser.open(smallData());
    await press('ArrowRight', '+', '+', '+', '+', '+', '+', '+', 'ArrowRight');
    assert.equal(await text('#details .gene-name'), 'CLN1');
    assert.ok(isInView(await view(), 10, 0));
  });

  test('collects genes', async () => {
    page = await browser.open(smallData());
    await press('ArrowRight', 'Enter', 'ArrowRight', 'Space');
    assert.deepEqual(await chosenNames(), ['CDC28', 'CLN1']);
    await statusSays('2 genes chosen');
    await press('Enter');
    assert.deepEqual(await chosenNames(), ['CDC28']);
    await press('Escape', 'Escape');
    assert.deepEqual(await chosenNames(), []);
  });
});

describe('search', () => {
  test('finds names and words of functions, whatever the case', async () => {
    page = await browser.open(smallData());
    const search = async (query) => {
      await page.fill('#search', '');
      await until(async () => (await text('#search-count')) === '');
      await page.fill('#search', query);
      await until(async () => (await text('#search-count')) !== '');
      return [await text('#search-count'), ...await page.locator('.hit-name').allInnerTexts()];
    };
    assert.deepEqual(await search('cdc28'), ['1 match', 'CDC28']);
    assert.deepEqual(await search('CELL g1'), ['2 matches', 'CLN1', 'CLN2']);
    assert.deepEqual(await search('heat'), ['2 matches', 'HSP104', 'HSP12']);
    assert.deepEqual(await search('cyclin heat'), ['0 matches']);
    assert.deepEqual(await search('null'), ['0 matches']);
  });

  test('Enter flies to the first match, a click to any', async () => {
    page = await browser.open(smallData());
    const whole = await view();
    await page.fill('#search', 'g1 cyclin');
    await page.keyboard.press('Enter');
    assert.equal(await text('#details .gene-name'), 'CLN1');
    let now = await view();
    assert.ok(spanOf(now) < 0.2 * spanOf(whole) && isInView(now, 10, 0));
    await page.locator('.hit').nth(1).click();
    assert.equal(await text('#details .gene-name'), 'CLN2');
    now = await view();
    assert.ok(isInView(now, 0, 10) && !isInView(now, 10, 0));
  });

  test('the flight passes through views in between where movement is welcome', async () => {
    page = await browser.open(smallData(), { reducedMotion: 'no-preference' });
    const whole = spanOf(await view());
    await page.evaluate(() => {
      const spans = [];
      document.documentElement.spans = spans;
      const watch = () => {
        const { x0, x1 } = window.ovikPage.view();
        spans.push(x1 - x0);
        requestAnimationFrame(watch);
      };
      watch();
    });
    await page.fill('#search', 'CLN1');
    await page.keyboard.press('Enter');
    await until(async () => Math.abs(spanOf(await view()) / whole - 0.12) < 1e-3);
    const between = await page.evaluate(() => document.documentElement.spans);
    assert.ok(between.filter((span) => span < 0.9 * whole && span > 0.15 * whole).length > 3);
  });

  test('matches can be chosen', async () => {
    page = await browser.open(smallData());
    await page.fill('#search', 'heat shock');
    await page.click('text=Select matches');
    assert.deepEqual(await chosenNames(), ['HSP104', 'HSP12']);
  });

  test('a gene of a hidden label is shown again when it is picked', async () => {
    page = await browser.open(smallData());
    await page.click('#legend >> text=None');
    assert.equal(await text('#legend .counts'), '0 of 0 in view');
    await page.fill('#search', 'HSP12');
    await page.keyboard.press('Enter');
    assert.deepEqual(await page.locator('#legend input').evaluateAll((boxes) => boxes.map((box) => box.checked)), [false, true, false]);
  });
});

describe('choosing', () => {
  test('a box chooses what lies in it, Shift adds', async () => {
    page = await browser.open(smallData());
    await page.click('text=Box');
    const [middle, right, top] = await Promise.all([0, 1, 2].map((gene) => screenPlace(page, gene)));
    await drag({ x: middle.x - 15, y: middle.y - 15 }, { x: right.x + 15, y: right.y + 15 });
    await until(async () => (await chosenNames()).length > 0);
    assert.deepEqual(await chosenNames(), ['CDC28', 'CLN1']);
    await page.keyboard.down('Shift');
    await drag({ x: top.x - 15, y: top.y - 15 }, { x: top.x + 15, y: top.y + 15 });
    await page.keyboard.up('Shift');
    await until(async () => (await chosenNames()).length === 3);
    assert.deepEqual(await chosenNames(), ['CDC28', 'CLN1', 'CLN2']);
  });

  test('a lasso chooses what lies in it', async () => {
    page = await browser.open(smallData());
    await page.click('text=Lasso');
    const [right, top, left, bottom] = await Promise.all([1, 2, 3, 4].map((gene) => screenPlace(page, gene)));
    // A bow around the outer four that leaves out the gene in the middle is hard to draw; this triangle
    // holds right and top, and by its slanted side leaves out the middle, left and bottom ones.
    await drag({ x: right.x + 20, y: right.y + 20 }, { x: right.x + 20, y: top.y - 20 }, { x: top.x - 20, y: top.y - 20 }, { x: right.x + 18, y: right.y + 20 });
    await until(async () => (await chosenNames()).length > 0);
    assert.deepEqual(await chosenNames(), ['CLN1', 'CLN2']);
    await drag({ x: left.x - 20, y: left.y - 20 }, { x: left.x + 20, y: left.y - 20 }, { x: left.x + 20, y: left.y + 20 }, { x: left.x - 20, y: left.y + 20 });
    await until(async () => (await chosenNames()).length === 1);
    assert.deepEqual(await chosenNames(), ['HSP104']);
    assert.ok(bottom.y > left.y);
  });

  test('Escape takes a box away that is being drawn', async () => {
    page = await browser.open(smallData());
    await page.click('text=Box');
    const [middle, right] = await Promise.all([0, 1].map((gene) => screenPlace(page, gene)));
    const picture = () => page.locator('#chart').screenshot();
    // After any key the frame shows that it has the focus.
    await press('Shift');
    await page.mouse.move(middle.x - 15, middle.y - 15);
    const before = await picture();
    await page.mouse.down();
    await page.mouse.move(right.x + 15, right.y + 15, { steps: 4 });
    await until(async () => !(await picture()).equals(before));
    await press('Escape', 'Escape');
    await page.mouse.up();
    await page.mouse.move(middle.x - 15, middle.y - 15);
    await until(async () => (await picture()).equals(before));
    assert.deepEqual(await chosenNames(), []);
  });

  test('what is in view can be chosen', async () => {
    page = await browser.open(smallData());
    await press('ArrowRight', '+', '+', '+');
    await page.click('text=Select in view');
    assert.deepEqual(await chosenNames(), ['CDC28', 'CLN1', 'CLN2', 'HSP104', 'HSP12']);
    assert.equal(await text('#selection h2'), 'Selection: 5 genes');
    await page.click('#selection >> text=Clear');
    assert.equal(await text('#selection h2'), 'Selection');
  });

  test('the choice is saved as CSV, properly quoted', async () => {
    page = await browser.open(smallData());
    await page.click('text=Select in view');
    const { name, content } = await downloaded(() => page.click('text=Download CSV'));
    assert.equal(name, 'brauer2008_tsne_30_0_selection.csv');
    assert.equal(content.toString(), [
      'name,label,group,x,y,function',
      'CDC28,cycle,Group:1:2,0,0,"Cyclin-dependent kinase; ""catalytic"" subunit, main regulator"',
      'CLN1,cycle,Group:1:2,10,0,G1 cyclin involved in regulation of the cell cycle',
      'CLN2,cycle,Group:1:2,0,10,G1 cyclin involved in regulation of the cell cycle',
      'HSP104,stress,Group:1:2,-10,0,Disaggregase; heat shock protein',
      'HSP12,stress,Group:1:2,0,-10,"Plasma membrane protein, heat shock"',
      'YAL001C,stress,Group:1:2,30,30,NULL',
      'MYSTERY,other,Group:1:2,-30,-30,',
      '',
    ].join('\n'));
  });

  test('the choice can be copied', async () => {
    page = await browser.open(smallData(), { permissions: ['clipboard-read', 'clipboard-write'] });
    await press('ArrowRight', 'Enter', 'ArrowRight', 'Enter');
    const clipboard = () => page.evaluate(() => navigator.clipboard.readText());
    await page.click('#selection [aria-label="Copy names"]');
    await statusSays('2 names copied');
    assert.equal(await clipboard(), 'CDC28\nCLN1');
    await page.click('#selection [aria-label="Copy CSV"]');
    await statusSays('Table of 2 genes copied');
    assert.match(await clipboard(), /^name,label,group,x,y,function\nCDC28,cycle,Group:1:2,0,0,"Cyclin/);
  });

  test('a long choice is listed in part and saved whole', async () => {
    page = await browser.open(cloudData(1500));
    await page.click('text=Select in view');
    assert.equal((await chosenNames()).length, 1000);
    assert.match(await text('#selection'), /The first 1,000 are listed/);
    const { content } = await downloaded(() => page.click('text=Download CSV'));
    assert.equal(content.toString().trimEnd().split('\n').length, 1501);
  });
});

describe('colourings', () => {
  const opened = () => browser.open(smallData({ labelColumns: LABEL_COLUMNS }));

  test('the first is shown, and another one when it is chosen', async () => {
    page = await opened();
    assert.deepEqual(await page.locator('#colouring option').allInnerTexts(), ['process', 'half-life <min>']);
    assert.equal(await page.getByLabel('Colour by').inputValue(), '0');
    assert.equal(await text('#legend h2'), 'process');
    assert.equal(await page.locator('#legend li').count(), 3);
    await page.uncheck('#legend li:has-text("stress") input');
    await page.selectOption('#colouring', '1');
    await statusSays('7 genes drawn');
    assert.equal(await text('#legend h2'), 'half-life <min>');
    assert.equal(await page.locator('#legend li').count(), 0);
    assert.equal(await page.getByRole('img', { name: 'Colours from 0.000 to 50.000' }).count(), 1);
    assert.match((await text('#legend')).replace(/\s+/g, ' '), /50\.000 0\.000 no number 1 7 of 7 in view/);
    assert.match(await page.locator('#chart-frame').getAttribute('aria-label'), /Colours from 0\.000 to 50\.000\.$/);
    await page.selectOption('#colouring', '0');
    await until(async () => (await text('#legend .counts')) === '7 of 7 in view');
    assert.equal(await page.locator('#legend li input:checked').count(), 3);
  });

  test('a gene has all its labels, the selection that of the choice', async () => {
    page = await opened();
    await page.selectOption('#colouring', '1');
    await page.fill('#search', 'HSP12');
    await page.keyboard.press('Enter');
    const details = (await text('#details')).replace(/\s+/g, ' ');
    assert.match(details, /process stress half-life <min> 40 /);
    await page.click('text=Add to selection');
    assert.deepEqual(await page.locator('#selection thead th').allInnerTexts(), ['Name', 'Function', 'half-life <min>', 'x', 'y']);
    assert.equal(await text('#selection td.label'), '40');
    const { content } = await downloaded(() => page.click('text=Download CSV'));
    assert.equal(content.toString(), 'name,process,half-life <min>,group,x,y,function\n'
      + 'HSP12,stress,40,Group:1:2,0,-10,"Plasma membrane protein, heat shock"\n');
  });

  test('one alone needs no choice', async () => {
    page = await browser.open(smallData({ labelColumns: LABEL_COLUMNS.slice(1) }));
    assert.equal(await page.locator('#colouring').isVisible(), false);
    assert.equal(await text('#legend h2'), 'half-life <min>');
    assert.equal(await text('.lead'), '7 genes; genes that behave alike lie close together.');
  });
});

test('a gene is found and linked under the name that the gene table has', async () => {
  page = await browser.open(smallData({ names: ['cdc28', 'CLN1', 'CLN2', 'x', 'y', 'z', 'Q'], genes: ['CDC28', '', '', '', '', '', ''] }));
  await page.fill('#search', 'CDC28');
  await page.keyboard.press('Enter');
  const details = (await text('#details')).replace(/\s+/g, ' ');
  assert.match(details, /cdc28 .* Listed as CDC28 Label cycle /);
  assert.equal(await page.locator('#details a').getAttribute('href'), 'https://www.yeastgenome.org/locus/CDC28');
});

describe('the legend', () => {
  test('names each label with its count, in the wanted order', async () => {
    page = await browser.open(smallData({ categoryOrder: ['other', 'stress'], colours: ['#112233'] }));
    const rows = await page.locator('#legend li').allInnerTexts();
    assert.deepEqual(rows.map((row) => row.trim().replace(/\s+/g, ' ')), ['other 1', 'stress 3', 'cycle 3']);
    const fills = await page.locator('#legend path').evaluateAll((paths) => paths.map((path) => path.getAttribute('fill')));
    assert.equal(fills[0], '#112233');
    assert.equal(new Set(fills).size, 3);
  });

  test('hides and shows labels', async () => {
    page = await browser.open(smallData());
    await page.uncheck('#legend li:has-text("stress") input');
    await until(async () => (await text('#legend .counts')) === '4 of 4 in view');
    await page.click('text=Select in view');
    assert.deepEqual(await chosenNames(), ['CDC28', 'CLN1', 'CLN2', 'MYSTERY']);
    await page.click('#legend >> text=None');
    await until(async () => (await text('#legend .counts')) === '0 of 0 in view');
    await page.click('#legend >> text=All');
    await until(async () => (await text('#legend .counts')) === '7 of 7 in view');
  });

  test('the box at a gene goes with its label', async () => {
    page = await browser.open(smallData());
    await press('ArrowRight');
    await until(() => page.locator('.tip').isVisible());
    await page.uncheck('#legend li:has-text("cycle") input');
    await until(async () => !(await page.locator('.tip').isVisible()));
    await page.check('#legend li:has-text("cycle") input');
    await until(() => page.locator('.tip').isVisible());
  });

  test('stands in the margin beside the plot', async () => {
    page = await browser.open(smallData());
    const legend = await page.locator('#legend').boundingBox();
    const chart = await page.locator('#chart').boundingBox();
    assert.equal(legend.width, 130);
    assert.ok(legend.x >= chart.x + chart.width - 180 && legend.x + 130 <= chart.x + chart.width);
    assert.ok(Math.abs(legend.y - chart.y - 10) < 1);
  });

  test('is a count where there are no labels', async () => {
    page = await browser.open(smallData({ labels: [] }));
    assert.equal(await page.locator('#legend input').count(), 0);
    assert.equal(await text('#legend .counts'), '7 of 7 in view');
    assert.equal(await text('.lead'), '7 genes; genes that behave alike lie close together.');
  });
});

describe('pairs, themes and looks', () => {
  test('another pair of components has other coordinates and keeps the choice', async () => {
    page = await browser.open(smallData());
    await press('ArrowRight', 'ArrowUp', 'Enter');
    assert.match(await text('#details'), /Group:1:2[^]*0\.000, 10\.000/);
    await page.selectOption('#pair', '1');
    assert.match(await text('#details'), /Group:1:3[^]*0\.000, 21\.000/);
    assert.deepEqual(await chosenNames(), ['CLN2']);
    assert.match(await page.locator('#chart-frame').getAttribute('aria-label'), /Component 3 runs from -59\.000 to 61\.000/);
    assert.ok(isInView(await view(), 30, 61));
  });

  test('a single pair needs no choice', async () => {
    page = await browser.open(cloudData(20));
    assert.equal(await page.locator('#pair').count(), 0);
  });

  test('the theme follows the reader\'s preference and the button', async () => {
    page = await browser.open(smallData(), { colorScheme: 'dark' });
    const background = () => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    assert.equal(await background(), 'rgb(14, 19, 24)');
    await page.click('#theme');
    assert.equal(await background(), 'rgb(244, 246, 248)');
    await page.click('#theme');
    assert.equal(await background(), 'rgb(14, 19, 24)');
    await page.emulateMedia({ colorScheme: 'light' });
    await until(async () => (await background()) === 'rgb(244, 246, 248)');
  });

  test('paper is light, and the screen is dark again afterwards', async () => {
    page = await browser.open(smallData(), { colorScheme: 'dark' });
    const theme = () => page.evaluate(() => document.documentElement.dataset.theme);
    await page.evaluate(() => window.dispatchEvent(new Event('beforeprint')));
    assert.equal(await theme(), 'light');
    await page.evaluate(() => window.dispatchEvent(new Event('afterprint')));
    assert.equal(await theme(), 'dark');
  });

  test('points are dots in a crowd and shapes when few are in view', async () => {
    page = await browser.open(cloudData(6600));
    const look = () => page.evaluate(() => window.ovikPage.look());
    assert.equal((await look()).shapes, false);
    assert.ok((await look()).size < 5);
    await press('ArrowRight');
    for (let step = 0; step < 8; step += 1) await press('+');
    await until(async () => (await look()).shapes);
    await press('Home');
    await until(async () => !(await look()).shapes);
  });

  test('names stand beside the points if wanted', async () => {
    page = await browser.open(smallData({ showLabels: true }));
    const { content } = await downloaded(() => page.click('[aria-label="Save as SVG"]'));
    const names = content.toString().match(/<text[^>]*>(CDC28|CLN1|YAL001C)<\/text>/g);
    assert.equal(names.length, 3);
    assert.ok(names.every((name) => !name.includes('opacity')), names[0]);
  });
});

test('200,000 points load and can be moved', async () => {
  page = await browser.open(cloudData(200000));
  const whole = await view();
  const box = await page.locator('#chart').boundingBox();
  await page.mouse.move(box.x + 350, box.y + 300);
  await page.mouse.wheel(0, -240);
  await until(async () => spanOf(await view()) < spanOf(whole));
  const before = await view();
  await drag({ x: box.x + 350, y: box.y + 300 }, { x: box.x + 330, y: box.y + 290 });
  await until(async () => (await view()).x0 > before.x0);
  await page.fill('#search', 'GENE199999');
  await page.keyboard.press('Enter');
  await until(async () => (await page.locator('#details .gene-name').count()) === 1);
  assert.equal(await text('#details .gene-name'), 'GENE199999');
});
