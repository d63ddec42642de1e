/**
 * Bundles the sources of each page into its one file, page.html and comparison.html.
 *
 *     npm ci
 *     node build.mjs           writes the pages
 *     node build.mjs --check   fails if they are not what the sources give
 */

import { createHash } from 'node:crypto';
import { readFile, writeFile } from 'node:fs/promises';
import { fileURLToPath } from 'node:url';
import { build } from 'esbuild';

const PAGES = [
  {
    file: 'page.html',
    template: 'template.html',
    script: 'src/main.js',
    style: 'style.css',
    placeholders: ['{{page-title}}', '{{chart-data}}'],
  },
  {
    file: 'comparison.html',
    template: 'comparison_template.html',
    script: 'src/compare/main.js',
    style: 'comparison.css',
    placeholders: [
      '{{page-title}}', '{{comparison-head}}', '{{comparison-runs}}', '{{comparison-numbers}}', '{{comparison-data}}',
    ],
  },
];

function path(name) {
  return fileURLToPath(new URL(name, import.meta.url));
}

async function bundleScript(entry) {
  const notice = await readFile(path('THIRD_PARTY.md'), 'utf8');
  const { outputFiles } = await build({
    entryPoints: [path(entry)],
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

async function minifyStyle(entry) {
  const { outputFiles } = await build({ entryPoints: [path(entry)], bundle: true, write: false, minify: true });
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

async function makePage({ template, script: entry, style: sheet, placeholders }) {
  const script = await bundleScript(entry);
  const style = await minifyStyle(sheet);
  if (/<\/script|<!--/i.test(script)) throw new Error('the script would end its element too early');
  if (/<\/style|<!--/i.test(style)) throw new Error('the style sheet would end its element too early');
  let page = await readFile(path(template), 'utf8');
  page = fillIn(page, 'script-hash', hashOf(script));
  page = fillIn(page, 'style-hash', hashOf(style));
  page = fillIn(page, 'style', style);
  page = fillIn(page, 'script', script);
  for (const placeholder of placeholders) assertOnce(page, placeholder);
  return page;
}

for (const source of PAGES) {
  const page = await makePage(source);
  if (process.argv.includes('--check')) {
    const committed = await readFile(path(source.file), 'utf8').catch(() => '');
    if (committed !== page) {
      console.error(`${source.file} is not what the sources give: run node build.mjs`);
      process.exitCode = 1;
    }
  } else {
    await writeFile(path(source.file), page);
    console.log(`${source.file}: ${page.length} characters`);
  }
}
