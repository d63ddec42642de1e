/** What the tests of the page share: data, pages made of them, and a browser to open them in. */

import { mkdtemp, readFile, rm, writeFile } from 'node:fs/promises';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

export const PAGE_FOLDER = fileURLToPath(new URL('../../plots/page/', import.meta.url));

const require = createRequire(join(PAGE_FOLDER, 'package.json'));
const { chromium } = require('playwright-core');

/** Source of the accessibility checker. */
export const AXE_FILE = require.resolve('axe-core/axe.min.js');

/** Coordinates without randomness: a fixed linear congruential generator, values from 0 to 1. */
export function createNumbers(seed = 1) {
  let state = seed >>> 0;
  return () => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return state / 2 ** 32;
  };
}

/** A whole set of data; `changes` replace parts of it. */
export function makeData(changes = {}) {
  return {
    type: 'scatter',
    title: 'Yeast in chemostats',
    name: 'brauer2008_tsne_30_0',
    texts: ['', '', '', ''],
    parameters: [['Perplexity', '30'], ['Theta', '0.5']],
    layout: {
      margins: [30, 180, 75, 120],
      legendWidth: 130,
      xTickTurn: 90,
      yTitleTurn: -90,
      tickDecimals: 0,
      grid: true,
    },
    showLabels: false,
    colourScheme: '',
    categoryOrder: [],
    colours: [],
    links: [],
    pointCount: 0,
    pairs: [],
    names: [],
    functions: [],
    genes: [],
    labels: [],
    labelColumns: [],
    ...changes,
  };
}

const PLACES = [
  ['CDC28', 0, 0, 'Cyclin-dependent kinase; "catalytic" subunit, main regulator', 'cycle'],
  ['CLN1', 10, 0, 'G1 cyclin involved in regulation of the cell cycle', 'cycle'],
  ['CLN2', 0, 10, 'G1 cyclin involved in regulation of the cell cycle', 'cycle'],
  ['HSP104', -10, 0, 'Disaggregase; heat shock protein', 'stress'],
  ['HSP12', 0, -10, 'Plasma membrane protein, heat shock', 'stress'],
  ['YAL001C', 30, 30, 'NULL', 'stress'],
  ['MYSTERY', -30, -30, '', 'other'],
];

/** Seven genes at known places, three labels and two pairs of components. */
export function smallData(changes = {}) {
  return makeData({
    pointCount: PLACES.length,
    pairs: [
      {
        group: 'Group:1:2',
        xTitle: 'Component 1',
        yTitle: 'Component 2',
        x: PLACES.map((place) => place[1]),
        y: PLACES.map((place) => place[2]),
      },
      {
        group: 'Group:1:3',
        xTitle: 'Component 1',
        yTitle: 'Component 3',
        x: PLACES.map((place) => place[1]),
        y: PLACES.map((place) => place[2] * 2 + 1),
      },
    ],
    names: PLACES.map((place) => place[0]),
    functions: PLACES.map((place) => place[3]),
    labels: PLACES.map((place) => place[4]),
    ...changes,
  });
}

/** What the small data may be coloured by: groups, then numbers, of which the last gene has none. */
export const LABEL_COLUMNS = [
  { title: 'process', texts: PLACES.map((place) => place[4]), numbers: [] },
  {
    title: 'half-life <min>',
    texts: PLACES.map((_, gene) => (gene === 6 ? '' : `${10 * gene}`)),
    numbers: PLACES.map((_, gene) => (gene === 6 ? null : 10 * gene)),
  },
];

/**
 * The matrix of the page's data, as the program writes it.
 *
 * @param {number[][]} rows NaN where a value is not known
 * @param {object} [parts] `bits`, `metric`, `columns`, and the places of values that were `filled` in
 */
export function matrixOf(rows, { bits = 16, metric = 'euclidean', columns, filled = [] } = {}) {
  const names = columns ?? rows[0].map((_, column) => `condition ${column + 1}`);
  const most = 2 ** bits - 2;
  const known = names.map((_, column) => rows.map((row) => row[column]).filter(Number.isFinite));
  const lows = known.map((values) => Math.min(...values));
  const steps = known.map((values, column) => (Math.max(...values) - lows[column]) / most);
  const codes = rows.flatMap((row) => row.map((value, column) => {
    if (!Number.isFinite(value)) return most + 1;
    return steps[column] > 0 ? Math.round((value - lows[column]) / steps[column]) : 0;
  }));
  const bytes = bits === 8 ? codes : codes.flatMap((code) => [code & 255, code >> 8]);
  const mask = new Uint8Array(Math.ceil(codes.length / 8));
  for (const at of filled) mask[at >> 3] |= 1 << (at & 7);
  return {
    columns: names,
    bits,
    lows,
    steps,
    values: Buffer.from(bytes).toString('base64'),
    filled: filled.length > 0 ? Buffer.from(mask).toString('base64') : '',
    metric,
  };
}

/** Terms of the small data: two of three genes each, one of a single gene, and the last gene without any. */
export const SMALL_TERMS = {
  list: [
    ['GO:0006950', 'response to stress', 'P'],
    ['GO:0000278', 'mitotic cell cycle', 'P'],
    ['GO:0005886', 'plasma membrane', 'C'],
  ],
  genes: [[0, 1], [1], [1], [0], [0], [2], []],
};

/** `count` genes in five round clouds, each with its label. */
export function cloudData(count, changes = {}) {
  const next = createNumbers(7);
  const spread = () => (next() + next() + next() - 1.5) * 12;
  const cloud = Array.from({ length: count }, (_, gene) => gene % 5);
  const centre = [[0, 0], [40, 10], [-35, 25], [10, -40], [-20, -30]];
  return makeData({
    pointCount: count,
    pairs: [{
      group: 'Group:1:2',
      xTitle: 'Component 1',
      yTitle: 'Component 2',
      x: cloud.map((which) => centre[which][0] + spread()),
      y: cloud.map((which) => centre[which][1] + spread()),
    }],
    names: cloud.map((_, gene) => `GENE${gene}`),
    functions: cloud.map((which) => `Protein of cloud ${which}`),
    labels: cloud.map((which) => `cloud ${which}`),
    ...changes,
  });
}

function escapeMarkup(text) {
  return text.replace(/[&<>"']/g, (character) => `&#${character.codePointAt(0)};`);
}

function escapeJson(value) {
  return JSON.stringify(value).replace(/[<>&\u2028\u2029]/g, (character) =>
    `\\u${character.codePointAt(0).toString(16).padStart(4, '0')}`);
}

/** The text of a page with `data` in it, as the program writes it; of a text, as it is. */
async function pageText(data) {
  const template = await readFile(join(PAGE_FOLDER, 'page.html'), 'utf8');
  const parts = { '{{page-title}}': escapeMarkup(data.title ?? ''), '{{chart-data}}': typeof data === 'string' ? data : escapeJson(data) };
  // In one pass: the title may itself hold a placeholder.
  return template.replace(/\{\{[a-z-]+\}\}/g, (placeholder) => parts[placeholder]);
}

/** Starts a browser; `close()` also removes the pages that were made for it. */
export async function startBrowser() {
  const browser = await chromium.launch({
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    args: ['--no-sandbox', '--disable-gpu'],
  });
  const folder = await mkdtemp(join(tmpdir(), 'ovik-page-'));
  let pages = 0;

  /** Makes a page with `data`, an object or a text, and opens it as `openFile` does. */
  async function open(data, ...rest) {
    pages += 1;
    const file = join(folder, `page${pages}.html`);
    await writeFile(file, await pageText(data));
    return openFile(file, ...rest);
  }

  /**
   * Opens a page from disk and waits until it is ready.
   *
   * @param {string} file
   * @param {object} [settings] of the browser's context
   * @param {boolean} [becomesReady] whether to wait
   * @returns the page; `page.problems` collects errors and dialogs, `page.requests` every address asked for
   */
  async function openFile(file, settings = {}, becomesReady = true) {
    const context = await browser.newContext({
      viewport: { width: 1200, height: 900 },
      reducedMotion: 'reduce',
      ...settings,
    });
    const page = await context.newPage();
    page.problems = [];
    page.requests = [];
    page.on('pageerror', (error) => page.problems.push(`error: ${error.message}`));
    page.on('console', (message) => {
      if (['error', 'warning'].includes(message.type())) page.problems.push(`console: ${message.text()}`);
    });
    page.on('dialog', (dialog) => {
      page.problems.push(`dialog: ${dialog.message()}`);
      dialog.dismiss();
    });
    page.on('request', (request) => page.requests.push(request.url()));
    page.address = pathToFileURL(file).href;
    await page.goto(page.address);
    if (becomesReady) await until(() => page.evaluate(() => document.documentElement.dataset.ready === 'true'));
    return page;
  }

  /** An empty page without the charts' policy, to look at files that were saved. */
  async function openReader() {
    return (await browser.newContext()).newPage();
  }

  return {
    folder,
    open,
    openFile,
    openReader,
    async close() {
      await browser.close();
      await rm(folder, { recursive: true });
    },
  };
}

/** Asks `check` until its answer is true; the page's policy forbids waiting inside the page. */
export async function until(check, { milliseconds = 15000, what = check.toString() } = {}) {
  const end = Date.now() + milliseconds;
  while (!(await check())) {
    if (Date.now() > end) throw new Error(`never came true: ${what}`);
    await new Promise((resolve) => {
      setTimeout(resolve, 25);
    });
  }
}

/** Place of a gene on the screen. */
export async function screenPlace(page, gene) {
  const box = await page.locator('#chart').boundingBox();
  const [x, y] = await page.evaluate((which) => window.ovikPage.pixelOf(which), gene);
  return { x: box.x + x, y: box.y + y };
}
