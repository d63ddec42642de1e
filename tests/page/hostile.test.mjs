import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { makeData, screenPlace, smallData, startBrowser, until } from './support.mjs';

const HOSTILE = [
  '</script><img src=x onerror="window.PWN=1;alert(1)">',
  '<script>window.PWN=2</script>',
  '"><svg onload=window.PWN=3>',
  "' onmouseover='window.PWN=4",
  '<!-- <script>',
  ']]></title><script>window.PWN=5</script>',
  'javascript:window.PWN=6',
  '{{chart-data}}{{page-title}}$&$1`${window.PWN=7}',
  '\u202Ereversed\u202C',
  'line\nbreak\ttab\rreturn',
  'control \u0001\u0007\u001b[2J\u007f\u009f',
  'separators \u2028 and \u2029',
  '&lt;b&gt; &amp; &#60;',
  '\\u003cimg\\u003e "quotes" \\',
  'dna \u{1f9ec}, lone \ud800, \ufffe'.concat('x'.repeat(10000)),
];

const COUNT = HOSTILE.length;

let browser;

before(async () => {
  browser = await startBrowser();
});

after(() => browser.close());

function hostileData(title) {
  return makeData({
    title,
    name: title,
    texts: HOSTILE.slice(0, 4),
    parameters: HOSTILE.map((text) => [text, text]),
    links: HOSTILE,
    categoryOrder: HOSTILE,
    colours: HOSTILE,
    colourScheme: title,
    pointCount: COUNT,
    pairs: [
      { group: title, xTitle: title, yTitle: title, x: HOSTILE.map((_, gene) => (gene % 4) * 10), y: HOSTILE.map((_, gene) => Math.floor(gene / 4) * 10) },
      { group: title, xTitle: title, yTitle: title, x: HOSTILE.map((_, gene) => gene), y: HOSTILE.map((_, gene) => gene) },
    ],
    names: HOSTILE,
    functions: HOSTILE,
    labels: HOSTILE,
    showLabels: true,
  });
}

async function assertUnharmed(page) {
  assert.equal(await page.evaluate(() => window.PWN), undefined);
  assert.deepEqual(page.problems, []);
  assert.deepEqual(page.requests.filter((request) => request !== page.address && !request.startsWith('blob:')), []);
}

/** A lone half of a character pair cannot pass through a file or a title; it reads as U+FFFD. */
const whole = (text) => text.replace(/\p{Cs}/gu, '\ufffd');
const shown = (page, selector) => page.locator(selector).evaluateAll((nodes) => nodes.map((node) => node.textContent.replace(/\p{Cs}/gu, '\ufffd')));

test('15 hostile texts are shown as they are, everywhere, and run nothing', async () => {
  const page = await browser.open(hostileData(HOSTILE[0]));
  const wanted = HOSTILE.map(whole);
  assert.equal(wanted.length, 15);
  assert.deepEqual(await shown(page, 'h1 .data-text'), [wanted[0]]);
  assert.deepEqual(await shown(page, '.spare'), wanted.slice(0, 4));
  // Long labels are cut in the legend; their boxes are named after all of them.
  assert.deepEqual(await page.locator('#legend li').evaluateAll((rows) => rows.map((row) => (
    row.querySelector('input').getAttribute('aria-label')?.replace(/ 1$/, '')
      ?? row.querySelector('.data-text').textContent).replace(/\p{Cs}/gu, '\ufffd'))), wanted);
  assert.equal((await shown(page, '#legend .data-text')).filter((text, index) => text === wanted[index]).length, 11);
  assert.deepEqual(await shown(page, '.parameters dt'), wanted);
  assert.deepEqual(await shown(page, '.parameters dd'), wanted);
  assert.deepEqual(await shown(page, '.links li'), wanted);
  assert.equal(await page.locator('.links a').count(), 0);
  await page.click('[title="Choose every gene that is in view"]');
  assert.deepEqual(await shown(page, '#selection tbody th'), wanted);
  assert.deepEqual(await shown(page, '#selection td.label'), wanted);
  assert.deepEqual(await shown(page, '#selection td.function'), wanted);
  await assertUnharmed(page);
  await page.context().close();
});

test('each hostile gene can be pointed at, found and described', async () => {
  const page = await browser.open(hostileData('Genes'));
  for (const [gene, text] of HOSTILE.entries()) {
    const { x, y } = await screenPlace(page, gene);
    await page.mouse.move(x, y);
    await until(async () => (await shown(page, '.tip-name'))[0] === whole(text), { what: `tip ${gene}` });
    await page.mouse.click(x, y);
    assert.deepEqual(await shown(page, '#details .gene-name'), [whole(text)]);
    assert.deepEqual(await shown(page, '#details .gene-function'), [whole(text)]);
    const address = await page.locator('#details a').getAttribute('href');
    assert.equal(decodeURIComponent(address.replace('https://www.yeastgenome.org/locus/', '')), whole(text));
  }
  await page.fill('#search', '<script>');
  await until(async () => (await page.locator('.hit').count()) === 3);
  assert.deepEqual(await shown(page, '.hit-name'), [HOSTILE[1], HOSTILE[4], HOSTILE[5]]);
  await assertUnharmed(page);
  await page.context().close();
});

test('each hostile title is shown as it is, and its pictures are well formed', async () => {
  const reader = await browser.openReader();
  for (const title of HOSTILE) {
    const data = smallData({ title, name: title, labels: Array(7).fill(title), showLabels: true });
    Object.assign(data.pairs[0], { group: title, xTitle: title, yTitle: title });
    const page = await browser.open(data);
    assert.deepEqual(await shown(page, 'h1 .data-text'), [whole(title)]);
    const waiting = page.waitForEvent('download');
    await page.click('[aria-label="Save as SVG"]');
    const stream = await (await waiting).createReadStream();
    const parts = [];
    for await (const part of stream) parts.push(part);
    const found = await reader.evaluate((text) => {
      const picture = new DOMParser().parseFromString(text, 'image/svg+xml');
      return [picture.documentElement.nodeName, picture.querySelectorAll('parsererror, script, image, [onload]').length];
    }, Buffer.concat(parts).toString());
    assert.deepEqual(found, ['svg', 0], title.slice(0, 60));
    await assertUnharmed(page);
    await page.context().close();
  }
});
