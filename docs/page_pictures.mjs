/**
 * Makes the pictures of docs/plots.md from two runs on data/brauer2008_chemostat.tsv, and prints what the page says.
 *
 *     node docs/page_pictures.mjs DEMO.html CLUSTERS.html
 *
 * DEMO.html is the page of scripts/demo, CLUSTERS.html one of the same run with --clusters --quality. The tests of
 * the page say what this needs (docs/testing.md); pngquant (Debian) makes the pictures small.
 */

import { execFileSync } from 'node:child_process';
import { fileURLToPath } from 'node:url';
import { startBrowser, until } from '../tests/page/support.mjs';

const SIZE = { width: 1440, height: 900 };

/** A loop around the group at the lower edge of the map, in units of the map. */
const LOOP = [[2, -37.3], [11, -36.9], [18.4, -41.9], [21.7, -47.5], [20.6, -55.9], [11, -55.5], [5.4, -52.1], [3.2, -45.6]];

async function take(page, name, settings = {}) {
  const path = fileURLToPath(new URL(`images/${name}.png`, import.meta.url));
  await page.screenshot({ path, ...settings });
  execFileSync('pngquant', ['--force', '--strip', '--output', path, '256', path]);
}

/** Places on the screen of places on the map. */
function onScreen(page, places) {
  return page.evaluate((wanted) => {
    const { x, y } = JSON.parse(document.getElementById('chart-data').textContent).pairs[0];
    const { left, top } = document.getElementById('chart').getBoundingClientRect();
    const [one, other] = [0, 1].map(window.ovikPage.pixelOf);
    const [alongX, alongY] = [(other[0] - one[0]) / (x[1] - x[0]), (other[1] - one[1]) / (y[1] - y[0])];
    return wanted.map((place) => [left + one[0] + (place[0] - x[0]) * alongX, top + one[1] + (place[1] - y[0]) * alongY]);
  }, places);
}

async function lasso(page, places) {
  const [first, ...rest] = await onScreen(page, [...places, places[0]]);
  await page.click('#toolbar >> text=Lasso');
  await page.mouse.move(...first);
  await page.mouse.down();
  for (const place of rest) await page.mouse.move(...place, { steps: 4 });
  await page.mouse.up();
  await page.mouse.move(1, 1);
  await until(async () => (await page.locator('#conditions tbody tr').count()) > 0);
}

const lines = (page, rows) => page.locator(rows).evaluateAll((list) =>
  list.map((row) => [...row.querySelectorAll('.term-name, .term-numbers, th, td')].map(({ textContent }) => textContent).join('  ')));

const browser = await startBrowser();
const [demo, clustered] = process.argv.slice(2);

const page = await browser.openFile(demo, { viewport: SIZE });
await take(page, 'page');

const tour = await browser.openFile(clustered, { viewport: SIZE });
await until(async () => (await tour.getAttribute('.clusters', 'aria-busy')) === null);
await lasso(tour, LOOP);
await take(tour, 'tour-selection');
console.log(await tour.textContent('#selection h2'), `doubtful: ${await tour.isVisible('.doubt')}`);
console.log(await tour.textContent('#terms .counts'));
await tour.click('#terms >> text=/^Show [0-9]+/');
console.log((await lines(tour, '#terms .term-list > li')).slice(0, 30).join('\n'));
console.log((await lines(tour, '#conditions tbody tr')).join('\n'));
console.log((await tour.locator('.trust > div').allInnerTexts()).join('\n'));
await tour.click('#terms >> text=Show the best');
await tour.evaluate(() => window.scrollTo(0, 0));
const [top, bottom] = [await tour.locator('#profiles').boundingBox(), await tour.locator('#conditions').boundingBox()];
await take(tour, 'tour-profiles', {
  fullPage: true,
  clip: { x: top.x, y: top.y, width: top.width, height: bottom.y + bottom.height - top.y },
});
await browser.close();
