/**
 * Prints how fast the chart page is: time until it is ready, and time per frame while zooming,
 * panning and pointing, with one event in every frame, as the median and the 95th percentile.
 *
 *     (cd plots/page && npm ci)
 *     node bench/page_speed.mjs [points ...]      by default 6600 and 200000
 */

import { cloudData, startBrowser } from '../tests/page/support.mjs';

const FRAMES = { few: 120, many: 25 };

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
    const target = document.querySelector('#chart canvas').parentElement;
    const box = target.getBoundingClientRect();
    const [x, y] = [box.left + box.width / 2, box.top + box.height / 2];
    const fire = (type, dx, dy) => target.dispatchEvent(new MouseEvent(type, {
      clientX: x + dx, clientY: y + dy, bubbles: true, cancelable: true,
    }));
    const turn = (deltaY) => target.dispatchEvent(new WheelEvent('wheel', {
      clientX: x, clientY: y, deltaY, bubbles: true, cancelable: true,
    }));
    const nextFrame = () => new Promise((done) => {
      requestAnimationFrame(done);
    });
    const act = {
      pan: (step) => fire('mousemove', 60 * Math.sin(step / 12), 60 * Math.cos(step / 12) - 60),
      zoom: (step) => turn(step % 20 < 10 ? -24 : 24),
      hover: (step) => fire('mousemove', 2 * (step % 60) - 60, 0),
    }[what];
    fire('mousemove', 0, 0);
    if (what === 'pan') fire('mousedown', 0, 0);
    const times = [];
    let last = await nextFrame();
    for (let step = 0; step < count; step += 1) {
      act(step);
      const now = await nextFrame();
      times.push(now - last);
      last = now;
    }
    if (what === 'pan') fire('mouseup', 0, 0);
    return times;
  }, [kind, steps]);
}

async function report(page, what, kind, steps) {
  const times = await framesWhile(page, kind, steps);
  const [median, most] = [quantile(times, 0.5), quantile(times, 0.95)].map((time) => time.toFixed(1));
  console.log(`  ${what.padEnd(24)} ${median} ms a frame, 95 % within ${most} ms`);
}

async function zoomIn(page, isEnough) {
  await page.locator('#chart-frame').focus();
  do {
    await page.keyboard.press('+');
    await page.waitForTimeout(300);
  } while (!(await isEnough()));
}

async function measure(browser, count) {
  const data = cloudData(count);
  const begin = performance.now();
  const page = await browser.open(data);
  console.log(`${count} points: written and ready in ${(performance.now() - begin).toFixed(0)} ms`);
  const steps = count > 50000 ? FRAMES.many : FRAMES.few;
  await report(page, 'zoom in and out', 'zoom', steps);
  await zoomIn(page, () => true);
  await report(page, 'pan', 'pan', steps);
  await report(page, 'hover', 'hover', steps);
  await zoomIn(page, () => page.evaluate(() => window.ovikPage.look().shapes));
  await report(page, 'pan, few as shapes', 'pan', steps);
  await page.context().close();
}

const counts = process.argv.slice(2).map(Number);
const browser = await startBrowser();
try {
  for (const count of counts.length > 0 ? counts : [6600, 200000]) await measure(browser, count);
} finally {
  await browser.close();
}
