import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { cloudData, LABEL_COLUMNS, smallData, startBrowser } from './support.mjs';

let browser;
let reader;

before(async () => {
  browser = await startBrowser();
  reader = await browser.openReader();
});

after(() => browser.close());

async function save(page, kind) {
  const waiting = page.waitForEvent('download');
  await page.click(`[aria-label="Save as ${kind}"]`);
  const download = await waiting;
  const parts = [];
  for await (const part of await download.createReadStream()) parts.push(part);
  return { name: download.suggestedFilename(), content: Buffer.concat(parts) };
}

/** What stands in an SVG text: its size, its texts, and the number of shapes per colour. */
function readSvg(text) {
  return reader.evaluate((source) => {
    const root = new DOMParser().parseFromString(source, 'image/svg+xml').documentElement;
    const fills = {};
    for (const shape of root.querySelectorAll('path, circle, rect')) {
      const fill = shape.getAttribute('fill');
      if (fill) fills[fill] = (fills[fill] ?? 0) + 1;
    }
    return {
      root: root.nodeName,
      size: [root.getAttribute('width'), root.getAttribute('height')],
      texts: [...root.querySelectorAll('text')].map((node) => node.textContent),
      fills,
    };
  }, text);
}

test('the SVG holds every point, the title, the axes and the legend', async () => {
  const page = await browser.open(smallData());
  const { name, content } = await save(page, 'SVG');
  assert.equal(name, 'brauer2008_tsne_30_0.svg');
  const svg = await readSvg(content.toString());
  assert.equal(svg.root, 'svg');
  assert.deepEqual(svg.size, ['1200', '900']);
  for (const wanted of ['Yeast in chemostats', 'Component 1', 'Component 2', 'cycle', 'stress', 'other']) {
    assert.ok(svg.texts.includes(wanted), wanted);
  }
  // Each label's points and its entry in the legend.
  assert.equal(svg.fills['#0072b2'], 3 + 1);
  assert.equal(svg.fills['#d55e00'], 3 + 1);
  assert.equal(svg.fills['#b4bcc4'], 1 + 1, 'other is grey');
  assert.ok(svg.fills['#ffffff'] >= 1, 'a white ground');
  await page.context().close();
});

test('the SVG of numbers has their scale, and the mark of those without one', async () => {
  const page = await browser.open(smallData({ labelColumns: LABEL_COLUMNS.slice(1) }));
  const svg = await readSvg((await save(page, 'SVG')).content.toString());
  for (const wanted of ['half-life <min>', '50.000', '0.000', 'no number']) assert.ok(svg.texts.includes(wanted), wanted);
  assert.equal(svg.fills['#440154'], 1 + 1, 'the least number, and the end of the scale');
  assert.ok(Object.keys(svg.fills).length >= 64);
  await page.context().close();
});

test('the SVG of a crowd holds every point', async () => {
  const page = await browser.open(cloudData(6600));
  const svg = await readSvg((await save(page, 'SVG')).content.toString());
  const points = ['#0072b2', '#d55e00', '#009e73', '#cc79a7', '#e69f00'].map((colour) => svg.fills[colour]);
  assert.deepEqual(points, Array(5).fill(1320 + 1));
  await page.context().close();
});

test('pictures show what the page shows: labels that are hidden are left out', async () => {
  const page = await browser.open(smallData(), { colorScheme: 'dark' });
  await page.uncheck('#legend li:has-text("stress") input');
  const svg = await readSvg((await save(page, 'SVG')).content.toString());
  assert.ok(!svg.texts.includes('stress'));
  assert.ok(svg.texts.includes('cycle'));
  assert.ok(svg.fills['#161c23'] >= 1, 'a dark ground');
  await page.context().close();
});

test('long labels of pictures differ where they would be cut to the same text', async () => {
  const label = (which) => `cytoplasmic translation and ribosome biogenesis, ${which} subunit`;
  const page = await browser.open(smallData({ labels: ['x', 'x', 'x', 'y', label('large'), label('small'), label('small')] }));
  const { texts } = await readSvg((await save(page, 'SVG')).content.toString());
  const cut = texts.filter((text) => text.startsWith('cytoplasmi'));
  assert.equal(new Set(cut).size, 2, cut.join());
  await page.context().close();
});

test('the PNG is a picture of 2400 by 1800 pixels, white outside, with coloured points', async () => {
  const page = await browser.open(smallData());
  const { name, content } = await save(page, 'PNG');
  assert.equal(name, 'brauer2008_tsne_30_0.png');
  assert.equal(content.subarray(1, 4).toString(), 'PNG');
  const found = await reader.evaluate(async (data) => {
    const image = new Image();
    image.src = `data:image/png;base64,${data}`;
    await image.decode();
    const canvas = document.createElement('canvas');
    canvas.width = image.width;
    canvas.height = image.height;
    const context = canvas.getContext('2d');
    context.drawImage(image, 0, 0);
    const { data: bytes } = context.getImageData(0, 0, image.width, image.height);
    let blue = 0;
    for (let at = 0; at < bytes.length; at += 4) if (bytes[at + 2] > 150 && bytes[at] < 120) blue += 1;
    return { size: [image.width, image.height], corner: [...bytes.subarray(0, 4)], blue };
  }, content.toString('base64'));
  assert.deepEqual(found.size, [2400, 1800]);
  assert.deepEqual(found.corner, [255, 255, 255, 255]);
  assert.ok(found.blue > 500);
  await page.context().close();
});

test('equal data give equal pages and equal pictures', async () => {
  const pictures = [];
  for (let run = 0; run < 2; run += 1) {
    const page = await browser.open(cloudData(500));
    pictures.push([await page.screenshot(), (await save(page, 'SVG')).content, (await save(page, 'PNG')).content]);
    await page.context().close();
  }
  for (const kind of [0, 1, 2]) assert.ok(pictures[0][kind].equals(pictures[1][kind]), `picture ${kind}`);
});
