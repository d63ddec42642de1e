import assert from 'node:assert/strict';
import { after, before, describe, test } from 'node:test';
import { readFile } from 'node:fs/promises';
import { AXE_FILE, cloudData, LABEL_COLUMNS, smallData, startBrowser, until } from './support.mjs';

let browser;
let axe;

before(async () => {
  browser = await startBrowser();
  axe = await readFile(AXE_FILE, 'utf8');
});

after(() => browser.close());

const PHONE = { viewport: { width: 360, height: 800 }, hasTouch: true, isMobile: true, deviceScaleFactor: 2 };

async function violations(page) {
  await page.evaluate(axe);
  const { violations: found } = await page.evaluate(() => window.axe.run());
  return found.filter(({ impact }) => ['serious', 'critical'].includes(impact))
    .map(({ id, nodes }) => `${id}: ${nodes.map((node) => node.html.slice(0, 120)).join(' | ')}`);
}

describe('the accessibility checker finds nothing serious', () => {
  for (const colorScheme of ['light', 'dark']) {
    for (const [size, settings] of [['a desktop', {}], ['a phone', PHONE]]) {
      test(`${colorScheme}, on ${size}`, async () => {
        const page = await browser.open(smallData({ links: ['table.csv'] }), { colorScheme, ...settings });
        assert.deepEqual(await violations(page), []);
        await page.fill('#search', 'heat');
        await page.keyboard.press('Enter');
        await page.click('text=Select matches');
        await page.click('summary');
        assert.equal(await page.locator('#selection tbody tr').count(), 2);
        assert.deepEqual(await violations(page), []);
        await page.context().close();
      });
    }
  }

  test('coloured by groups and by numbers', async () => {
    for (const settings of [{}, PHONE]) {
      const page = await browser.open(smallData({ labelColumns: LABEL_COLUMNS }), settings);
      for (const title of ['half-life <min>', 'process']) {
        await page.selectOption('#colouring', { label: title });
        assert.deepEqual(await violations(page), []);
      }
      await page.context().close();
    }
  });

  test('without labels and without points', async () => {
    for (const data of [smallData({ labels: [] }), smallData({ pointCount: 0, pairs: [], names: [], functions: [], labels: [] })]) {
      const page = await browser.open(data);
      assert.deepEqual(await violations(page), []);
      await page.context().close();
    }
  });
});

describe('on a phone', () => {
  test('nothing is wider than the screen, and the legend stands under the chart', async () => {
    const page = await browser.open(smallData({ title: 'Yeast'.repeat(60) }), PHONE);
    await page.click('text=Select in view');
    await page.locator('#chart-frame').focus();
    await page.keyboard.press('ArrowRight');
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth));
    const chart = await page.locator('#chart').boundingBox();
    const legend = await page.locator('#legend').boundingBox();
    assert.ok(legend.y >= chart.y + chart.height);
    await page.context().close();
  });

  test('what can be touched is large enough', async () => {
    const page = await browser.open(smallData(), PHONE);
    await page.click('text=Select in view');
    const small = await page.evaluate(() => [...document.querySelectorAll('button, select, input[type=search], #legend label, summary')]
      .filter((node) => node.offsetParent !== null && node.getBoundingClientRect().height < 40)
      .map((node) => `${node.textContent} ${node.getBoundingClientRect().height}`));
    assert.deepEqual(small, []);
    await page.context().close();
  });

  test('a tap shows the gene', async () => {
    const page = await browser.open(smallData(), PHONE);
    await page.locator('#chart').scrollIntoViewIfNeeded();
    const box = await page.locator('#chart').boundingBox();
    const [x, y] = await page.evaluate(() => window.ovikPage.pixelOf(5));
    await page.touchscreen.tap(box.x + x + 8, box.y + y + 8);
    await until(async () => (await page.locator('#details .gene-name').count()) === 1);
    assert.equal(await page.locator('#details .gene-name').innerText(), 'YAL001C');
    await page.context().close();
  });
});

test('every control can be reached by Tab alone', async () => {
  const page = await browser.open(smallData());
  const seen = new Set();
  for (let step = 0; step < 40; step += 1) {
    await page.keyboard.press('Tab');
    seen.add(await page.evaluate(() => {
      const node = document.activeElement;
      return node.id || node.getAttribute('aria-label') || node.closest('label')?.innerText.trim().split(/\s/)[0] || node.innerText;
    }));
  }
  for (const control of ['search', 'pair', 'Box', 'Lasso', 'Zoom in', 'Reset the view', 'Select in view', 'Save as PNG', 'Save as SVG', 'theme', 'chart-frame', 'cycle', 'All labels', 'Keys and gestures']) {
    assert.ok(seen.has(control), `${control} not in ${[...seen].join(', ')}`);
  }
  await page.context().close();
});

test('two fingers zoom', async () => {
  const page = await browser.open(cloudData(300), PHONE);
  await page.locator('#chart').scrollIntoViewIfNeeded();
  const box = await page.locator('#chart').boundingBox();
  const [x, y] = [box.x + box.width / 2, box.y + box.height / 2];
  const before = await page.evaluate(() => window.ovikPage.view());
  const session = await page.context().newCDPSession(page);
  const touch = (type, apart) => session.send('Input.dispatchTouchEvent', {
    type,
    touchPoints: apart ? [{ x: x - apart, y, id: 0 }, { x: x + apart, y, id: 1 }] : [],
  });
  await touch('touchStart', 20);
  for (const apart of [30, 40, 50, 60]) await touch('touchMove', apart);
  await touch('touchEnd');
  const now = await page.evaluate(() => window.ovikPage.view());
  assert.ok(now.x1 - now.x0 < 0.9 * (before.x1 - before.x0));
  assert.deepEqual(page.problems, []);
  await page.context().close();
});
