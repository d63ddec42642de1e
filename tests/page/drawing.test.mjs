import assert from 'node:assert/strict';
import { after, afterEach, before, describe, test } from 'node:test';
import { readFile } from 'node:fs/promises';
import { AXE_FILE, cloudData, LABEL_COLUMNS, makeData, screenPlace, smallData, startBrowser, until } from './support.mjs';

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

const PHONE = { viewport: { width: 360, height: 800 }, hasTouch: true, isMobile: true, deviceScaleFactor: 2 };

const view = () => page.evaluate(() => window.ovikPage.view());
const look = () => page.evaluate(() => window.ovikPage.look());
const spanOf = ({ x0, x1 }) => x1 - x0;
const text = (selector) => page.locator(selector).innerText();

/** Waits until the frame that is due has been drawn. */
const drawn = () => page.evaluate(() => new Promise((done) => {
  requestAnimationFrame(() => requestAnimationFrame(done));
}));

/** Colour of the pixel of a gene, and a digest of all pixels of the points. */
const pixelAt = (gene, dx = 0) => page.evaluate(([which, aside]) => {
  const canvas = document.querySelector('canvas.points');
  const [x, y] = window.ovikPage.pixelOf(which);
  const at = (value, start) => Math.round((value - start) * devicePixelRatio);
  return [...canvas.getContext('2d').getImageData(at(x + aside, canvas.offsetLeft), at(y, canvas.offsetTop), 1, 1).data];
}, [gene, dx]);
const picture = async () => {
  await drawn();
  return page.evaluate(() => {
    const canvas = document.querySelector('canvas.points');
    const { data } = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
    return data.reduce((sum, value) => (Math.imul(sum, 31) + value) | 0, 7);
  });
};

async function svgText() {
  const waiting = page.waitForEvent('download');
  await page.click('[aria-label="Save as SVG"]');
  const stream = await (await waiting).createReadStream();
  const parts = [];
  for await (const part of stream) parts.push(part);
  return Buffer.concat(parts).toString();
}

async function drag(from, to) {
  await page.mouse.move(from.x, from.y);
  await page.mouse.down();
  await page.mouse.move(to.x, to.y, { steps: 4 });
  await page.mouse.up();
}

describe('what lies on top', () => {
  /** Forty genes on one spot, of which two are of a small group, and the large group comes last. */
  const heap = () => makeData({
    pointCount: 42,
    pairs: [{
      group: '', xTitle: 'a', yTitle: 'b',
      x: [...Array(40).fill(0), -10, 10], y: [...Array(40).fill(0), -10, 10],
    }],
    names: Array.from({ length: 42 }, (_, gene) => `G${gene}`),
    functions: Array(42).fill(''),
    labels: Array.from({ length: 42 }, (_, gene) => (gene < 2 ? 'few' : 'others')),
  });

  test('is the small group, whatever was clicked before', async () => {
    page = await browser.open(heap());
    const fresh = await picture();
    const [red, , blue] = await pixelAt(5);
    assert.ok(blue > red, 'the first label, blue, of which there are two');
    await page.uncheck('#legend li:has-text("others") input');
    await until(async () => (await picture()) !== fresh);
    await page.check('#legend li:has-text("others") input');
    await until(async () => (await picture()) === fresh);
    await page.uncheck('#legend li:has-text("few") input');
    await page.check('#legend li:has-text("few") input');
    await page.fill('#search', 'G41');
    await until(async () => (await picture()) !== fresh);
    await page.fill('#search', '');
    await until(async () => (await picture()) === fresh);
    const { x, y } = await screenPlace(page, 5);
    await page.mouse.move(x, y);
    await until(() => page.locator('.tip').isVisible());
    assert.match(await text('.tip'), /few/, 'the topmost gene is the one under the pointer');
  });
});

describe('moving', () => {
  test('zoom follows the distance that is scrolled, sideways moves', async () => {
    page = await browser.open(cloudData(300));
    const box = await page.locator('#chart').boundingBox();
    await page.mouse.move(box.x + 300, box.y + 250);
    const whole = await view();
    const wheel = (events) => page.evaluate(([list]) => {
      const chart = document.querySelector('#chart');
      const { left, top } = chart.getBoundingClientRect();
      for (const event of list) {
        chart.dispatchEvent(new WheelEvent('wheel', { clientX: left + 300, clientY: top + 250, bubbles: true, cancelable: true, ...event }));
      }
    }, [events]);
    const zoomedBy = async (events) => {
      const before = spanOf(await view());
      await wheel(events);
      return before / spanOf(await view());
    };
    const long = await zoomedBy([{ deltaY: -240 }]);
    await page.keyboard.press('Home');
    await page.click('text=Reset');
    const many = await zoomedBy(Array(30).fill({ deltaY: -8 }));
    assert.ok(Math.abs(long / many - 1) < 1e-9 && long > 1.5 && long < 2, `${long} and ${many}`);
    const aside = await view();
    assert.equal(await zoomedBy([{ deltaX: 60, deltaY: 5 }]), 1);
    assert.ok((await view()).x0 > aside.x0);
    await page.click('text=Reset');
    assert.ok(Math.abs(await zoomedBy(Array(20).fill({ deltaY: -5 * Math.log(4), ctrlKey: true })) - 4) < 1e-6, 'a pinch of 4');
    await page.click('text=Reset');
    assert.deepEqual(await view(), whole);
  });

  test('fingers that move apart four times zoom four times, and the map stays under them', async () => {
    page = await browser.open(cloudData(300), PHONE);
    await page.locator('#chart').scrollIntoViewIfNeeded();
    const box = await page.locator('#chart').boundingBox();
    const [x, y] = [box.x + box.width / 2, box.y + box.height / 2];
    const session = await page.context().newCDPSession(page);
    const touch = (type, apart, right = 0) => session.send('Input.dispatchTouchEvent', {
      type,
      touchPoints: apart ? [{ x: x - apart + right, y, id: 0 }, { x: x + apart + right, y, id: 1 }] : [],
    });
    const before = await view();
    const gene = await screenPlace(page, 0);
    await touch('touchStart', 20);
    for (const apart of [30, 45, 60, 80]) await touch('touchMove', apart, (apart - 20) / 3);
    await touch('touchEnd');
    const now = await view();
    assert.ok(Math.abs(spanOf(before) / spanOf(now) - 4) < 0.05, `${spanOf(before) / spanOf(now)}`);
    const after = await screenPlace(page, 0);
    assert.ok(Math.abs(after.x - (x + 20 + 4 * (gene.x - x))) < 3, `${after.x}`);
    assert.ok(Math.abs(after.y - (y + 4 * (gene.y - y))) < 3, `${after.y}`);
    assert.equal(await page.locator('#details .gene-name').count(), 0, 'a pinch is no tap');
  });

  test('the whole map can be dragged', async () => {
    page = await browser.open(smallData());
    const before = await screenPlace(page, 0);
    await drag({ x: before.x + 60, y: before.y + 60 }, { x: before.x + 140, y: before.y + 90 });
    const now = await screenPlace(page, 0);
    assert.ok(Math.abs(now.x - before.x - 80) < 2 && Math.abs(now.y - before.y - 30) < 2);
    await page.mouse.wheel(0, 50);
    await until(async () => Math.abs((await screenPlace(page, 0)).x - before.x) < 1, { what: 'zooming out brings the whole back' });
  });

  test('genes can be looked at while Box or Lasso is chosen', async () => {
    page = await browser.open(smallData());
    for (const [tool, gene, name] of [['Box', 1, 'CLN1'], ['Lasso', 3, 'HSP104']]) {
      await page.click(`[data-tool="${tool.toLowerCase()}"]`);
      const { x, y } = await screenPlace(page, gene);
      await page.mouse.move(x, y);
      await until(async () => (await page.locator('.tip').isVisible()) && (await text('.tip-name')) === name);
      await page.mouse.click(x, y);
      assert.equal(await text('#details .gene-name'), name);
      assert.equal(await text('#selection h2'), 'Selection');
    }
  });
});

describe('how points look', () => {
  test('matches and selection can be told apart, also when a gene is both', async () => {
    page = await browser.open(smallData());
    await page.fill('#search', 'CDC28');
    await page.click('text=Select matches');
    await page.fill('#search', 'heat shock');
    await until(async () => (await page.locator('.hit').count()) === 2);
    await drawn();
    const rims = [];
    for (const gene of [0, 3, 1]) rims.push([await pixelAt(gene, 6.5), await pixelAt(gene, 7.5)].map((colour) => colour.slice(0, 3).join()));
    assert.equal(new Set(rims.map((rim) => rim.join(' '))).size, 3, rims.join(' | '));
    const svg = await svgText();
    assert.equal((svg.match(/stroke="#f5b800"/g) ?? []).length, 2, 'two are found');
    assert.equal((svg.match(/stroke="#1b2530"/g) ?? []).length, 1, 'one is chosen');
  });

  test('size and opacity follow the sliders, and the axes have numbers if wanted', async () => {
    page = await browser.open(smallData());
    const [first, fresh] = [await look(), await picture()];
    assert.equal(first.means, 'pixels');
    const ticks = (svg) => [...svg.matchAll(/>(-?[\d.]+)<\/text>/g)].map(([, number]) => number);
    assert.deepEqual(ticks(await svgText()), []);
    await page.click('.look summary');
    await page.locator('#pointSize').focus();
    for (let step = 0; step < 4; step += 1) await page.keyboard.press('ArrowRight');
    await page.locator('#pointOpacity').fill('-1');
    await until(async () => (await look()).size === 2 * first.size);
    await until(async () => Math.abs((await look()).opacity / first.opacity - 0.5) < 1e-9, { what: 'half of the opacity' });
    assert.equal(await page.locator('#pointSize').getAttribute('aria-valuetext'), '200 %');
    assert.notEqual(await picture(), fresh);
    await page.check('text=Numbers on the axes');
    await page.evaluate(await readFile(AXE_FILE, 'utf8'));
    for (const theme of ['light', 'dark']) {
      const { violations } = await page.evaluate(() => window.axe.run());
      assert.deepEqual(violations.map(({ id }) => id), [], theme);
      if (theme === 'light') await page.locator('#theme').evaluate((button) => button.click());
    }
    const numbers = ticks(await svgText());
    assert.ok(['-20', '0', '20'].every((tick) => numbers.includes(tick)), numbers.join());
  });

  test('density is shaded and has contours if wanted, and always a scale', async () => {
    page = await browser.open(cloudData(3000));
    assert.match(await text('#density-scale'), /^20 × 20 pixels hold [\d.]+ genes where there are any, [\d.]+ at most$/);
    const fresh = await picture();
    await page.click('.look summary');
    await page.check('text=Contours');
    const contours = (svg) => (svg.match(/stroke-opacity="0\.55"/g) ?? []).length;
    await page.keyboard.press('Escape');
    assert.equal(await page.locator('.look').getAttribute('open'), null);
    assert.equal(contours(await svgText()), 5);
    assert.equal(await picture(), fresh, 'contours lie above the points');
    await page.click('.look summary');
    await page.check('text=Density');
    await until(async () => (await picture()) !== fresh);
    await page.click('h1');
    assert.equal(await page.locator('.look').getAttribute('open'), null);
    assert.match(await svgText(), /<image [^>]*href="data:image\/png;base64/);
  });
});

describe('room', () => {
  test('the plot fills the window, and small ranges leave the name of the x axis whole', async () => {
    const data = smallData();
    data.pairs.length = 1;
    for (const side of ['x', 'y']) data.pairs[0][side] = data.pairs[0][side].map((value) => value * 1e-5);
    page = await browser.open(data, { viewport: { width: 1440, height: 900 } });
    await page.click('.look summary');
    await page.check('text=Numbers on the axes');
    await drawn();
    const canvas = await page.locator('canvas.points').boundingBox();
    assert.ok(canvas.width * canvas.height > 0.39 * 1440 * 900, `${canvas.width} x ${canvas.height}`);
    const stage = await page.locator('#stage').boundingBox();
    assert.ok(stage.y + stage.height <= 900 && stage.y + stage.height > 870);
    const svg = await svgText();
    const places = [...svg.matchAll(/<text x="([\d.]+)" y="([\d.]+)"[^>]*>([^<]*)<\/text>/g)].map(([, x, y, words]) => ({ x: Number(x), y: Number(y), words }));
    const title = places.find(({ words }) => words === 'Component 1');
    assert.ok(title.y < 900 - 4);
    const numbers = places.filter(({ words }) => /^-?[\d.e+-]+$/.test(words));
    assert.ok(numbers.length >= 6 && numbers.every(({ y }) => y < title.y - 8), JSON.stringify(numbers));
  });

  test('the card at a gene does not cover the legend', async () => {
    page = await browser.open(smallData({ functions: Array(7).fill('A long description of what it does. '.repeat(5)) }));
    const { x, y } = await screenPlace(page, 5);
    await page.mouse.move(x, y);
    await until(() => page.locator('.tip').isVisible());
    const [card, legend] = [await page.locator('.tip').boundingBox(), await page.locator('#legend').boundingBox()];
    assert.ok(card.x + card.width <= legend.x);
    assert.ok(x < card.x || x > card.x + card.width || y < card.y || y > card.y + card.height);
  });
});

test('pictures of a crowd hold their points as one image', async () => {
  page = await browser.open(cloudData(20001));
  const svg = await svgText();
  assert.equal((svg.match(/<image /g) ?? []).length, 1);
  assert.ok(svg.length < 2e6 && (svg.match(/<path /g) ?? []).length < 10);
});

test('numbers are drawn by their scale', async () => {
  page = await browser.open(smallData({ labelColumns: LABEL_COLUMNS.slice(1) }));
  const colours = [];
  for (const gene of [0, 5]) colours.push(await pixelAt(gene));
  const [low, high] = colours;
  assert.ok(low[2] > low[1] && high[1] > high[2], `${low} and ${high}`);
});

test('where drawing is slow and there is a graphics card, the card draws the same', async () => {
  page = await browser.open(cloudData(800));
  const marks = (selector) => page.evaluate((which) => {
    const source = document.querySelector(which);
    const copy = new OffscreenCanvas(source.width, source.height).getContext('2d');
    copy.fillStyle = '#ffffff';
    copy.fillRect(0, 0, source.width, source.height);
    copy.drawImage(source, 0, 0);
    const { data } = copy.getImageData(0, 0, source.width, source.height);
    const sums = new Array(64).fill(0);
    data.forEach((value, at) => {
      const [row, column] = [Math.floor(at / 4 / source.width), Math.floor(at / 4) % source.width];
      sums[Math.floor((8 * row) / source.height) * 8 + Math.floor((8 * column) / source.width)] += 255 - value;
    });
    return sums;
  }, selector);
  const byArray = await marks('canvas.points');
  assert.equal((await look()).means, 'pixels');
  // A slow array, and the browser's own WebGL under the name of a card.
  await page.addInitScript(() => {
    const put = CanvasRenderingContext2D.prototype.putImageData;
    CanvasRenderingContext2D.prototype.putImageData = function slow(...values) {
      const end = performance.now() + 15;
      while (performance.now() < end);
      return put.apply(this, values);
    };
    const ask = WebGL2RenderingContext.prototype.getParameter;
    WebGL2RenderingContext.prototype.getParameter = function named(name) {
      return name === 0x9246 ? 'A card' : ask.call(this, name);
    };
  });
  await page.reload();
  await until(() => page.evaluate(() => document.documentElement.dataset.ready === 'true'));
  await page.locator('#chart-frame').focus();
  for (let turn = 0; turn < 12; turn += 1) {
    await page.keyboard.press('Shift+ArrowRight');
    await drawn();
    await page.keyboard.press('Home');
    await drawn();
  }
  assert.equal((await look()).means, 'webgl');
  const byCard = await marks('canvas.card-points');
  byCard.forEach((sum, part) => {
    assert.ok(Math.abs(sum - byArray[part]) <= 0.08 * byArray[part] + 2000, `part ${part}: ${sum} and ${byArray[part]}`);
  });
  assert.ok(byCard.some((sum) => sum > 10000));
});

test('on paper the chart is one light picture with all that was drawn, and the legend stands below', async () => {
  page = await browser.open(cloudData(600), { colorScheme: 'dark' });
  await page.evaluate(() => window.dispatchEvent(new Event('beforeprint')));
  await page.emulateMedia({ media: 'print', colorScheme: 'dark' });
  const paper = await page.evaluate(() => {
    const canvas = document.querySelector('.chart-paper');
    const { data } = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height);
    let [blue, frame] = [0, 0];
    for (let at = 0; at < data.length; at += 4) {
      if (data[at + 2] > 140 && data[at] < 100) blue += 1;
      if (data[at] === 0x93 && data[at + 2] === 0xac) frame += 1;
    }
    return { corner: [...data.slice(0, 4)], blue, frame };
  });
  assert.deepEqual(paper.corner, [255, 255, 255, 255]);
  assert.ok(paper.blue > 1000 && paper.frame > 1000, JSON.stringify(paper));
  const [chart, legend] = [await page.locator('.chart-paper').boundingBox(), await page.locator('#legend').boundingBox()];
  assert.ok(legend.y >= chart.y + chart.height);
  assert.equal(await page.locator('canvas.points').isVisible(), false);
  await page.evaluate(() => window.dispatchEvent(new Event('afterprint')));
  assert.equal(await page.locator('.chart-paper').count(), 0);
});
