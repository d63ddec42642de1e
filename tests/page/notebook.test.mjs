import assert from 'node:assert/strict';
import { execFile } from 'node:child_process';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { promisify } from 'node:util';
import { startBrowser } from './support.mjs';

/** The page in the frame that the Python package shows in notebooks; `OVIK_PYTHON` runs the package. */

const run = promisify(execFile);
const python = process.env.OVIK_PYTHON;

const CELL = `
import sys
import numpy, ovik
places = numpy.array([[0.0, 0.0], [10.0, 0.0], [0.0, 10.0]])
page = ovik.page(places, ["a", "b", "b"], names=["CDC28", "CLN1", "CLN2"], title="In a notebook")
open(sys.argv[1], "w", encoding="utf-8").write("<!doctype html><h1>Notebook</h1>" + page._repr_html_())
`;

let browser;

before(async () => {
  browser = await startBrowser();
});

after(() => browser.close());

test('the page works in the frame of a notebook', { skip: !python }, async () => {
  const notebook = join(browser.folder, 'notebook.html');
  await run(python, ['-c', CELL, notebook]);
  const page = await browser.openFile(notebook, {}, false);
  const frame = page.frameLocator('iframe');
  await frame.locator('html[data-ready="true"]').waitFor({ state: 'attached' });
  assert.equal(await frame.locator('h1').textContent(), 'In a notebook');

  await frame.locator('#find input').fill('CDC28');
  await frame.locator('#find input').press('Enter');
  assert.match(await frame.locator('#details').textContent(), /kinase/);

  const waiting = page.waitForEvent('download');
  await frame.locator('[aria-label="Save as SVG"]').click();
  assert.match((await waiting).suggestedFilename(), /^ovik_map.*\.svg$/);

  assert.deepEqual(page.problems, []);
  // Its origin is its own: the notebook is out of its reach.
  const [, inner] = page.frames();
  await assert.rejects(inner.evaluate(() => window.parent.document.title), /cross-origin|SecurityError/);
});
