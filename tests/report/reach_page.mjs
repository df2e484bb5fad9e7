// The page of a reach study, as its readers use it.

import assert from 'node:assert/strict';
import { readFileSync, rmSync, statSync } from 'node:fs';
import { before, test } from 'node:test';
import { changed, fine, pixels, projected, qal, screenshot, withPage, work } from './support.mjs';

const kToolColor = [0, 184, 165];
const kStep = 0.1;
const kDirections = 40;
const kQuantities = ['reached_share', 'margin', 'smallest_singular_value', 'solutions'];

const html = work('reach.html');
let summary = null;
let cells = null;

/** The arrays of a .vti file, each behind its size in bytes: the study's own numbers. */
function vtiCells(path) {
  const file = readFileSync(path);
  const head = file.toString('latin1');
  const data = head.indexOf('_', head.indexOf('<AppendedData')) + 1;
  return Object.fromEntries([...head.matchAll(/<DataArray type="(\w+)" Name="(\w+)"[^>]*offset="(\d+)"/g)].map(([, type, name, offset]) => {
    const begin = data + Number(offset);
    const bytes = file.subarray(begin + 8, begin + 8 + Number(file.readBigUInt64LE(begin)));
    const kinds = { Float64: Float64Array, UInt32: Uint32Array };
    return [name, new kinds[type](bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.byteLength))];
  }));
}

/** What a study comes to, in a file of its own: one of an earlier run's may be of another study. */
function studied(file, ...words) {
  rmSync(work(file), { force: true });
  return JSON.parse(qal('reach', ...words, '-o', work(file), '--json'));
}

before(() => {
  summary = studied('reach.h5', '--box', '-1.1', '-1.1', '-0.1', '1.1', '1.1', '1.5', '--step', String(kStep), '--directions',
                    String(kDirections), '--vti', work('reach.vti'));
  cells = vtiCells(work('reach.vti'));
  qal('report', work('reach.h5'), '-o', html);
});

const kCount = [22, 22, 16];
const kFirst = [-1.05, -1.05, -0.05];
const indexOf = (cell) => [cell % kCount[0], Math.floor(cell / kCount[0]) % kCount[1], Math.floor(cell / kCount[0] / kCount[1])];
const cellAt = ([i, j, k]) => i + kCount[0] * (j + kCount[1] * k);
const centreOf = (cell) => indexOf(cell).map((i, axis) => kFirst[axis] + i * kStep);
const gap = (a, b) => Math.hypot(...a.map((x, i) => x - b[i]));
const cellOf = (page) => page.evaluate(() => window.qalReport.cell());
const toolOf = (page) => page.evaluate(() => window.qalReport.toolOfArm());

/** What the scale makes of a share of its highest value, by the legend in the page. */
async function colorOf(page, share) {
  const style = await page.locator('#gradient').evaluate((e) => e.style.background);
  const stops = [...style.matchAll(/rgb\((\d+),? (\d+),? (\d+)\)/g)].map(([, ...rgb]) => rgb.map(Number));
  const i = Math.min(Math.floor(share * (stops.length - 1)), stops.length - 2);
  return stops[i].map((c, k) => Math.round(c + (share * (stops.length - 1) - i) * (stops[i + 1][k] - c)));
}

// One page for all of it: opening one takes longer than what is looked at.
test('shows every cell in its colour, and the arm as it best reaches one', async () => {
  await withPage(html, { viewport: { width: 1400, height: 940 } }, async (page) => {
    await fine(page);
    await screenshot(page, 'reach');
    const best = summary.best_cell;
    assert.equal(await cellOf(page), best.cell);
    assert.ok(gap(await toolOf(page), best.centre_m) < 1e-5);
    assert.match(await page.locator('#verdict').textContent(), new RegExp(`${summary.cells_reached.toLocaleString('en')} of 7,744`));

    for (const quantity of kQuantities) {
      await page.locator('#quantity').selectOption(quantity);
      const shown = await page.evaluate(() => Array.from(window.qalReport.values(), (v) => (Number.isNaN(v) ? null : v)));
      const wrong = shown.findIndex((value, cell) => value !== (cells.reached_share[cell] > 0 ? Math.fround(cells[quantity][cell]) : null));
      assert.equal(wrong, -1, `${quantity} of cell ${wrong} is ${shown[wrong]}, not ${cells[quantity][wrong]}`);
    }

    // The slice across y alone, where nothing reaches the cell that is looked at.
    await page.locator('#quantity').selectOption('margin');
    for (const key of ['x', 's', '3']) await page.keyboard.press(key);
    await page.locator('.slider').first().fill('21');
    assert.equal(cells.reached_share[await cellOf(page)], 0);
    assert.match(await page.locator('#cell').textContent(), /Nothing reaches this cell/);
    const layer = indexOf(best.cell)[1];
    const highest = Math.max(...cells.margin.filter((v) => !Number.isNaN(v)));
    for (const [i, k] of [[5, 9], [8, 4]]) {
      const cell = cellAt([i, layer, k]);
      const at = await projected(page, centreOf(cell));
      const color = await colorOf(page, cells.margin[cell] / highest);
      const seen = await pixels(page, '#scene', color, [...at, 5], 3);
      assert.ok(seen.count > 40, `cell ${cell} is not ${color} at ${at}`);
    }

    const cell = cellAt([18, layer, 8]);
    const at = await projected(page, centreOf(cell));
    const box = await page.locator('#scene').boundingBox();
    await page.mouse.move(box.x + at[0] + 2, box.y + at[1]);
    assert.match(await page.locator('.cell-tip').textContent(), /^Margin to joint limits [\d.]+°x 750, y \S+, z 750 mm$/);
    await page.mouse.click(box.x + at[0], box.y + at[1]);
    assert.equal(await cellOf(page), cell);
    // By the joints, and to a pixel.
    assert.ok(gap(await toolOf(page), centreOf(cell)) < 1e-5);
    const dot = await pixels(page, '#scene', kToolColor, [...at, 30]);
    assert.ok(dot.count > 20 && gap([dot.x, dot.y], at) < 1, `${dot.count} pixels at ${[dot.x, dot.y]}, not ${at}`);
    const degrees = await page.locator('.joints-of-cell tr td:nth-child(2)').allTextContents();
    cells.joints.subarray(6 * cell, 6 * cell + 6).forEach((q, i) =>
      assert.ok(Math.abs(Number(degrees[i].replace('−', '-')) - (180 / Math.PI) * q) < 0.006));
    assert.equal(await page.locator('[data-value="solutions"]').textContent(), cells.solutions[cell].toLocaleString('en'));
    await page.keyboard.press('b');
    assert.equal(await cellOf(page), best.cell);
  });
});

test('shows a surface from a threshold on, cut open or not, on a phone', async () => {
  await withPage(html, { colorScheme: 'dark', viewport: { width: 390, height: 844 } }, async (page) => {
    const pictures = [];
    const picture = async () => { await fine(page); pictures.push(await page.locator('#scene').screenshot()); };
    await picture();
    await page.keyboard.press('c');
    await picture();
    await page.locator('.slider').nth(3).fill('180');
    await picture();
    assert.ok(!pictures[0].equals(pictures[1]) && !pictures[1].equals(pictures[2]), 'pictures are the same');
    assert.match(await page.locator('#cells').textContent(), /≥ 90 %/);
    assert.equal(await page.locator('.bars .left-out').count(), 35, 'shares of 1 to 35 of 40 are below 90 %');
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth), 'it is too wide');
    const unnamed = await page.locator('button, select, input, summary').evaluateAll((all) => all
      .filter((e) => e.offsetParent && !(e.ariaLabel || e.textContent.trim() || e.labels?.[0]?.textContent.trim()))
      .map((e) => e.outerHTML));
    assert.deepEqual(unnamed, []);
    await screenshot(page, 'reach_390_dark', true);
  });
});

test('opens 100,000 cells, here of a placement: the base stands in the cell', async () => {
  const many = studied('many.h5', '--box', '-1', '-1', '-0.1', '1', '1', '1.5', '--step', '0.04', '--directions', '4');
  qal('report', work('many.h5'), '-o', work('many.html'));
  const placed = changed(work('many.html'), 'placed.html', (data) => {
    const { study } = data.reach.summary;
    Object.assign(study, { kind: 'placement', poses: study.directions, later: [1] });
    for (const key of ['directions', 'spins', 'tilt_axis', 'tilt_cone_rad']) delete study[key];
    study.base.position_m = [0, 0, 0.2];
    data.reach.later = { of: 'a later version' };
  });
  const bytes = statSync(placed).size;
  await withPage(placed, {}, async (page) => {
    assert.equal(await page.evaluate(() => window.qalReport.values().length), 100000);
    const opened_ms = await page.evaluate(() => performance.getEntriesByName('qal-first-picture')[0].startTime);
    console.log(`100,000 cells: ${bytes} bytes, open after ${opened_ms.toFixed(0)} ms`);
    assert.ok(bytes < 4e6, `${bytes} bytes`);
    // 3 s on a machine of one's own; this one may be busy and draws in software.
    assert.ok(opened_ms < 9000, `${opened_ms} ms`);
    const expected = many.best_cell.centre_m.map((x, axis) => 2 * x - [0, 0, 0.2][axis]);
    assert.ok(gap(await toolOf(page), expected) < 1e-5, 'the base is not in the cell');
    assert.match(await page.locator('#cell').textContent(), /Poses reached/);
  });
});
