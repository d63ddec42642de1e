import assert from 'node:assert/strict';
import { execFile } from 'node:child_process';
import { createHash } from 'node:crypto';
import { readdir, readFile } from 'node:fs/promises';
import { join } from 'node:path';
import { test } from 'node:test';
import { promisify } from 'node:util';
import { PAGE_FOLDER } from './support.mjs';

const run = promisify(execFile);
const committedPage = (name = 'page.html') => readFile(join(PAGE_FOLDER, name), 'utf8');

test('the committed pages are what the sources give', async () => {
  await assert.doesNotReject(run(process.execPath, [join(PAGE_FOLDER, 'build.mjs'), '--check']));
});

test('the page holds each placeholder once, and they stand where they belong', async () => {
  const page = await committedPage();
  assert.equal(page.split('{{page-title}}').length, 2);
  assert.equal(page.split('{{chart-data}}').length, 2);
  assert.match(page, /<title>\{\{page-title\}\}<\/title>/);
  assert.match(page, /<script type="application\/json" id="chart-data">\{\{chart-data\}\}<\/script>/);
});

test('the page that compares runs holds its placeholders once, in the order in which they are filled', async () => {
  const page = await committedPage('comparison.html');
  const placeholders = ['page-title', 'comparison-head', 'comparison-choice', 'comparison-runs', 'comparison-numbers', 'comparison-data'];
  assert.deepEqual(page.match(/\{\{[a-z-]+\}\}/g), placeholders.map((name) => `{{${name}}}`));
});

async function assertPolicy(name, pictures) {
  const page = await committedPage(name);
  const policy = page.match(/http-equiv="Content-Security-Policy" content="([^"]*)"/)[1];
  const hashOf = (text) => `'sha256-${createHash('sha256').update(text).digest('base64')}'`;
  const scripts = [...page.matchAll(/<script>([^]*?)<\/script>/g)];
  const styles = [...page.matchAll(/<style>([^]*?)<\/style>/g)];
  assert.equal(scripts.length, 1);
  assert.equal(styles.length, 1);
  assert.deepEqual(policy.split('; '), [
    "default-src 'none'",
    `img-src ${pictures}`,
    `script-src ${hashOf(scripts[0][1])}`,
    `style-src ${hashOf(styles[0][1])}`,
    "base-uri 'none'",
    "form-action 'none'",
  ]);
}

test('the policies allow the one script and the one style sheet by hash, and pictures', async () => {
  await assertPolicy('page.html', 'data: blob:');
  await assertPolicy('comparison.html', "file: 'self' data:");
});

test('the page carries the notices of the libraries in it', async () => {
  const page = await committedPage();
  const notices = (await readFile(join(PAGE_FOLDER, 'THIRD_PARTY.md'), 'utf8')).trim();
  assert.ok(page.includes(notices));
  const { dependencies = {} } = JSON.parse(await readFile(join(PAGE_FOLDER, 'package.json'), 'utf8'));
  for (const [name, version] of Object.entries(dependencies)) assert.ok(notices.includes(`${name} ${version}`), name);
  assert.equal(notices.includes('There is none'), Object.keys(dependencies).length === 0);
});

test('no source writes markup or runs text', async () => {
  const folder = join(PAGE_FOLDER, 'src');
  const own = (await readdir(join(folder, 'compare'))).map((file) => join('compare', file));
  const files = [...await readdir(folder), ...own].filter((file) => file.endsWith('.js'));
  assert.ok(files.length > 10);
  for (const file of files) {
    const text = await readFile(join(folder, file), 'utf8');
    const found = text.match(/innerHTML|outerHTML|insertAdjacentHTML|document\.write|\beval\(|new Function|Math\.random|Date\b/);
    assert.equal(found, null, `${file} holds ${found}`);
  }
});

test('the lock file names no host', async () => {
  const lock = await readFile(join(PAGE_FOLDER, 'package-lock.json'), 'utf8');
  assert.doesNotMatch(lock, /:\/\/|"resolved"/);
});
