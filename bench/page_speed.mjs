/**
 * Prints how fast the chart page is: time until it is ready, and time per frame while zooming,
 * panning and pointing, with one event in every frame, as the median and the 95th percentile. Beside them
 * stand what the event takes before the frame is drawn, and the processor time of the page's thread for a
 * frame, which other programs change less; and the memory of the tab, resident and in the heap of scripts.
 *
 *     (cd plots/page && npm ci)
 *     node bench/page_speed.mjs [points ... | pages ...]      by default 6600, 100000 and 1000000
 *
 * A page is one that a run left (build/release/bench/write_results makes one of any number of rows).
 */

import { readFile } from 'node:fs/promises';

import { cloudData, startBrowser } from '../tests/page/support.mjs';

const FRAMES = { few: 120, many: 40 };

function quantile(values, share) {
  const sorted = [...values].sort((a, b) => a - b);
  return sorted[Math.min(Math.floor(sorted.length * share), sorted.length - 1)];
}

/**
 * Acts once in every frame, by events as a mouse would cause, and returns the times between the frames.
 *
 * @param {'pan'|'zoom'|'hover'} kind
 * @param {number} steps frames
 */
function framesWhile(page, kind, steps) {
  return page.evaluate(async ([what, count]) => {
    const target = document.querySelector('#chart');
    const box = target.getBoundingClientRect();
    const [x, y] = [box.left + box.width / 2, box.top + box.height / 2];
    const fire = (type, dx, dy) => target.dispatchEvent(new PointerEvent(type, {
      clientX: x + dx, clientY: y + dy, pointerType: 'mouse', pointerId: 1, bubbles: true, cancelable: true,
    }));
    const turn = (deltaY) => target.dispatchEvent(new WheelEvent('wheel', {
      clientX: x, clientY: y, deltaY, bubbles: true, cancelable: true,
    }));
    // There is no pointer that could be captured.
    target.setPointerCapture = () => {};
    const nextFrame = () => new Promise((done) => {
      requestAnimationFrame(done);
    });
    const act = {
      pan: (step) => fire('pointermove', 60 * Math.sin(step / 12), 60 * Math.cos(step / 12) - 60),
      zoom: (step) => turn(step % 20 < 10 ? -48 : 48),
      hover: (step) => fire('pointermove', 2 * (step % 60) - 60, 0),
    }[what];
    if (what === 'pan') fire('pointerdown', 0, 0);
    const times = [];
    const work = [];
    let last = await nextFrame();
    for (let step = 0; step < count; step += 1) {
      const begin = performance.now();
      act(step);
      work.push(performance.now() - begin);
      const now = await nextFrame();
      times.push(now - last);
      last = now;
    }
    if (what === 'pan') fire('pointerup', 0, 0);
    return { times, work };
  }, [kind, steps]);
}

const medianAndMost = (times) => [quantile(times, 0.5), quantile(times, 0.95)].map((time) => time.toFixed(1));

/** Processor time of the page's thread so far, in milliseconds. */
async function processorTime(session) {
  const { metrics } = await session.send('Performance.getMetrics');
  return 1000 * metrics.find(({ name }) => name === 'TaskDuration').value;
}

async function report(page, session, what, kind, steps) {
  const before = await processorTime(session);
  const { times, work } = await framesWhile(page, kind, steps);
  const processor = ((await processorTime(session)) - before) / steps;
  const [median, most] = medianAndMost(times);
  const [usual, longest] = medianAndMost(work);
  console.log(`  ${what.padEnd(20)} ${median} ms a frame, 95 % within ${most} ms; the event ${usual} ms, 95 % within ${longest} ms; processor ${processor.toFixed(1)} ms`);
}

async function zoomIn(page, isEnough) {
  await page.locator('#chart-frame').focus();
  do {
    await page.keyboard.press('+');
    await page.waitForTimeout(300);
  } while (!(await isEnough()));
}

/** Megabytes of the largest tab, and of the heap of its scripts after what nobody needs has gone. */
async function memoryOf(page, session) {
  await session.send('HeapProfiler.collectGarbage');
  const { metrics } = await session.send('Performance.getMetrics');
  const heap = metrics.find(({ name }) => name === 'JSHeapUsedSize').value / 1e6;
  const whole = await page.context().browser().newBrowserCDPSession();
  const { processInfo } = await whole.send('SystemInfo.getProcessInfo');
  await whole.detach();
  const tabs = processInfo.filter(({ type }) => type === 'renderer').map(async ({ id }) => {
    const status = await readFile(`/proc/${id}/status`, 'utf8');
    return Number(/VmRSS:\s+(\d+)/.exec(status)[1]) * 1024 / 1e6;
  });
  return { heap, resident: Math.max(...await Promise.all(tabs)) };
}

/** @param {string} what a number of points, or the file of a page */
async function measure(browser, what) {
  const page = await (/^\d+$/.test(what) ? browser.open(cloudData(Number(what))) : browser.openFile(what));
  const count = await page.evaluate(() => JSON.parse(document.querySelector('#chart-data').textContent).pointCount);
  const session = await page.context().newCDPSession(page);
  await session.send('Performance.enable', { timeDomain: 'threadTicks' });
  // The page alone, without making it.
  const begin = performance.now();
  await page.reload();
  await page.waitForSelector('html[data-ready]');
  const ready = performance.now() - begin;
  const processor = (await processorTime(session)).toFixed(0);
  console.log(`${count} points: ready ${ready.toFixed(0)} ms after the browser was asked for the page; processor ${processor} ms`);
  const { heap, resident } = await memoryOf(page, session);
  console.log(`  memory of the tab ${resident.toFixed(0)} MB, of its scripts ${heap.toFixed(0)} MB`);
  const steps = count > 300000 ? FRAMES.many : FRAMES.few;
  await report(page, session, 'zoom in and out', 'zoom', steps);
  await report(page, session, 'pan', 'pan', steps);
  await report(page, session, 'hover', 'hover', steps);
  await zoomIn(page, () => page.evaluate(() => window.ovikPage.look().shapes));
  await report(page, session, 'pan, few as shapes', 'pan', steps);
  console.log(`  drawn by ${await page.evaluate(() => window.ovikPage.look().means)}`);
  await page.context().close();
}

const asked = process.argv.slice(2);
const browser = await startBrowser();
try {
  for (const what of asked.length > 0 ? asked : ['6600', '100000', '1000000']) await measure(browser, what);
} finally {
  await browser.close();
}
