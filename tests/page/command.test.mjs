import assert from 'node:assert/strict';
import { execFile } from 'node:child_process';
import { readFile, writeFile } from 'node:fs/promises';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { promisify } from 'node:util';
import { fileURLToPath } from 'node:url';
import { clustersOf } from '../../plots/page/src/cluster_facts.js';
import { createModel } from '../../plots/page/src/model.js';
import { enrich } from '../../plots/page/src/enrichment.js';
import { readDataset } from '../../plots/page/src/dataset.js';
import { startBrowser } from './support.mjs';

/** Pages as the command writes them; `OVIK_TSNE` is its path. */

const run = promisify(execFile);

const NAMES = [
  '</script><img src=x onerror=alert(1)>',
  "'; system(\"x\")",
  'ADE5,7',
  'CDC28',
  '"quoted", twice',
  '`back` $tick %d \\n',
  'gr\u00fc\u00df\u20ac \u{1f9ec}',
  'not a gene',
];

let browser;

before(async () => {
  browser = await startBrowser();
});

after(() => browser.close());

/** Runs the command on one row per name, results in a folder of that name. */
async function runCommand(folder, options) {
  const rows = NAMES.map((name, row) => `${name}\t${row % 3}\t${row * row}\t${5 - row}`);
  const matrix = join(browser.folder, 'matrix.tsv');
  await writeFile(matrix, `gene\ta\tb\tc\n${rows.join('\n')}\n`);
  const labels = join(browser.folder, 'labels');
  await writeFile(labels, `${NAMES.join('\n')}\n`);
  const results = join(browser.folder, folder);
  await run(process.env.OVIK_TSNE, [
    matrix, '--quiet', '--max-iter', '20', '--labels', labels, '--out-dir', results, ...options,
  ]);
  return results;
}

/** Searches for each name; what the page then says about the match. */
async function detailsOfNames(page) {
  const details = [];
  for (const name of NAMES) {
    await page.locator('#find input').fill(name);
    await page.locator('#find input').press('Enter');
    details.push(await page.locator('#details').textContent());
  }
  return details;
}

test('hostile names and labels are shown as they are and run nothing', async () => {
  const results = await runCommand('hostile', ['--perplexity', '2', '--name', 'm', '--title', NAMES[0]]);
  const page = await browser.openFile(join(results, 'm_tsne_2_0.html'));
  assert.equal(await page.title(), NAMES[0]);
  const details = await detailsOfNames(page);
  NAMES.forEach((name, row) => assert.ok(details[row].includes(name), `${name}: ${details[row]}`));
  assert.match(details[3], /cyclin-dependent/i);
  // Long labels are cut, and their boxes are named after all of them.
  const legend = await page.locator('#legend li').evaluateAll((rows) => rows.map((row) =>
    `${row.textContent} ${row.querySelector('input').getAttribute('aria-label')}`).join('\n'));
  for (const name of NAMES) {
    assert.ok(legend.includes(name), `${name}: ${legend}`);
  }
  assert.deepEqual(page.problems, []);
  assert.deepEqual(page.requests.filter((request) => request !== page.address && !request.startsWith('blob:')), []);
});

test('the page has the values of the matrix, as exactly as is asked for', async () => {
  const expressionOf = async (options) => {
    const results = await runCommand('values', ['--perplexity', '1.5', '--name', 'm', ...options]);
    const [, json] = /id="chart-data">(.*?)<\/script>/s.exec(await readFile(join(results, 'm_tsne_1_5.html'), 'utf8'));
    return readDataset(json).expression;
  };
  for (const [options, bound] of [[['--metric', 'pearson'], 49 / 131068], [['--page-data', 'small'], 49 / 508]]) {
    const expression = await expressionOf(options);
    assert.deepEqual(expression.columns, ['a', 'b', 'c']);
    assert.equal(expression.metric, options[1] === 'pearson' ? 'pearson' : 'euclidean');
    NAMES.forEach((_, row) => [row % 3, row * row, 5 - row].forEach((value, column) => {
      assert.ok(Math.abs(expression.value(row, column) - value) <= bound * 1.000001);
    }));
  }
  assert.equal(await expressionOf(['--page-data', 'none']), null);
});

test('clusters of the run are known from labels that are called so', async () => {
  const results = await runCommand('clusters', ['--perplexity', '1.5', '--name', 'm', '--clusters']);
  const [, json] = /id="chart-data">(.*?)<\/script>/s.exec(await readFile(join(results, 'm_tsne_1_5.html'), 'utf8'));
  assert.equal(clustersOf(createModel(readDataset(json))).isOfRun, true);
});

test('the parameters of the run stand at the foot', async () => {
  const results = await runCommand('foot', ['--perplexity', '1.5', '--theta', '0.25', '--name', 'm']);
  const page = await browser.openFile(join(results, 'm_tsne_1_5.html'));
  const foot = await page.locator('#foot').textContent();
  for (const words of [/Perplexity\s*1\.5/, /Theta\s*0\.25/, /8 rows, 3 columns/, /Last iteration\s*20/, /Random seed\s*11/]) {
    assert.match(foot, words);
  }
});

test('three components are three pairs to choose from', async () => {
  const results = await runCommand('three', ['--perplexity', '2', '--dims', '3', '--name', 'm']);
  const page = await browser.openFile(join(results, 'm_tsne_2_0.html'));
  const pairs = await page.locator('#pair option').allTextContents();
  assert.deepEqual(pairs, ['Component 2 against Component 1', 'Component 3 against Component 1', 'Component 3 against Component 2']);
});

test('odd file names work, and the same input gives the same page', async () => {
  const options = ['--perplexity', '2'];
  const folder = await runCommand('plain', [...options, '--name', 'm']);
  const wanted = await readFile(join(folder, 'm_tsne_2_0.html'), 'utf8');
  await runCommand('plain', [...options, '--name', 'm']);
  assert.equal(await readFile(join(folder, 'm_tsne_2_0.html'), 'utf8'), wanted);
  for (const name of ['a b', "it's", 'two\nlines', '100%41 #?', 'gr\u00fc\u00df', '"quoted"']) {
    const results = await runCommand('odd', [...options, '--name', name]);
    const page = await browser.openFile(join(results, `${name}_tsne_2_0.html`));
    assert.equal(await page.title(), name.replace('\n', ' '));
    assert.deepEqual(page.problems, []);
  }
});

test('the terms of a selection are those that the command finds, to the last bit', async () => {
  const matrix = fileURLToPath(new URL('../../data/eisen1998_timecourses.tsv', import.meta.url));
  const results = join(browser.folder, 'terms');
  await run(process.env.OVIK_TSNE, [matrix, '--quiet', '--max-iter', '2', '--name', 'm', '--out-dir', results]);
  const html = await readFile(join(results, 'm_tsne_20_0.html'), 'utf8');
  const dataset = readDataset(/id="chart-data">(.*?)<\/script>/s.exec(html)[1]);
  const chosen = dataset.functions.flatMap((text, gene) => (/ribosom/i.test(text) ? [gene] : []));
  assert.ok(chosen.length > 100);
  const list = join(browser.folder, 'genes.txt');
  await writeFile(list, chosen.map((gene) => dataset.names[gene]).join('\n'));
  const { stdout } = await run(process.env.OVIK_TSNE, ['--enrich', list, '--background', matrix]);
  const lines = stdout.trimEnd().split('\n').slice(1).map((line) => line.split('\t'));
  const found = enrich(dataset, chosen);
  assert.ok(found.length > 50 && found[0].p < 1e-100, `${found.length} terms`);
  assert.deepEqual(found.map(({ term, hits, size, drawn, total, fold, p, q }) => [dataset.terms.list[term].id, hits, size, drawn, total, fold, p, q]),
    lines.map(([id, , , ...numbers]) => [id, ...numbers.slice(0, 7).map(Number)]));
});
