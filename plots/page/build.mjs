/**
 * Bundles the page's sources into the one file page.html.
 *
 *     npm ci
 *     node build.mjs           writes page.html
 *     node build.mjs --check   fails if page.html is not what the sources give
 */

import { createHash } from 'node:crypto';
import { readFile, writeFile } from 'node:fs/promises';
import { fileURLToPath } from 'node:url';
import { build } from 'esbuild';

const PAGE = path('page.html');
const PLACEHOLDERS = ['{{page-title}}', '{{chart-data}}'];

function path(name) {
  return fileURLToPath(new URL(name, import.meta.url));
}

async function bundleScript() {
  const notice = await readFile(path('THIRD_PARTY.md'), 'utf8');
  const { outputFiles } = await build({
    entryPoints: [path('src/main.js')],
    bundle: true,
    write: false,
    minify: true,
    format: 'iife',
    target: ['es2022'],
    charset: 'ascii',
    legalComments: 'inline',
    define: { 'process.env.NODE_ENV': '"production"' },
    banner: { js: `/*!\n${notice.trim()}\n*/` },
  });
  return outputFiles[0].text.trim();
}

async function minifyStyle() {
  const { outputFiles } = await build({ entryPoints: [path('style.css')], bundle: true, write: false, minify: true });
  return outputFiles[0].text.trim();
}

function hashOf(text) {
  return `sha256-${createHash('sha256').update(text).digest('base64')}`;
}

function assertOnce(text, part) {
  const count = text.split(part).length - 1;
  if (count !== 1) throw new Error(`${part} stands ${count} times in the page, not once`);
}

/** Puts `value` in the place of the only `[[name]]`. */
function fillIn(template, name, value) {
  const slot = `[[${name}]]`;
  assertOnce(template, slot);
  return template.replace(slot, () => value);
}

async function makePage() {
  const script = await bundleScript();
  const style = await minifyStyle();
  if (/<\/script|<!--/i.test(script)) throw new Error('the script would end its element too early');
  if (/<\/style|<!--/i.test(style)) throw new Error('the style sheet would end its element too early');
  let page = await readFile(path('template.html'), 'utf8');
  page = fillIn(page, 'script-hash', hashOf(script));
  page = fillIn(page, 'style-hash', hashOf(style));
  page = fillIn(page, 'style', style);
  page = fillIn(page, 'script', script);
  for (const placeholder of PLACEHOLDERS) assertOnce(page, placeholder);
  return page;
}

const page = await makePage();
if (process.argv.includes('--check')) {
  const committed = await readFile(PAGE, 'utf8').catch(() => '');
  if (committed !== page) {
    console.error('page.html is not what the sources give: run node build.mjs');
    process.exitCode = 1;
  }
} else {
  await writeFile(PAGE, page);
  console.log(`page.html: ${page.length} characters`);
}
