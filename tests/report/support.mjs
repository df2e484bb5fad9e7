// Reports by the real tool, in a real browser.

import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { chromium } from 'playwright-core';

const { QAL, QAL_SOURCE, QAL_CHROMIUM, QAL_SCREENSHOTS, QAL_WORK } = process.env;
for (const folder of [QAL_SCREENSHOTS, QAL_WORK]) mkdirSync(folder, { recursive: true });

export const source = (path) => join(QAL_SOURCE, path);
export const work = (name) => join(QAL_WORK, name);

export function qal(...words) {
  return execFileSync(QAL, words, { encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'], maxBuffer: 1 << 28 });
}

/** Plans with `words`, and makes the report of what was planned. */
export function planned(name, ...words) {
  qal(...words, '--csv', work(`${name}.csv`), '--full', '--report', work(`${name}.html`));
  return work(`${name}.html`);
}

/** The rows of a CSV file, as objects of numbers. */
export function rows(csv) {
  const [head, ...lines] = readFileSync(csv, 'utf8').trim().split('\n');
  const names = head.split(',');
  return lines.map((line) => Object.fromEntries(line.split(',').map((text, i) => [names[i], Number(text)])));
}

const kData = /(<script type="application\/json" id="report-data">)([^]*?)(<\/script>)/;

/** A report with its data changed. */
export function changed(html, name, change) {
  const page = readFileSync(html, 'utf8');
  const data = JSON.parse(page.match(kData)[2]);
  change(data);
  const text = JSON.stringify(data).replace(/[<>&]/g, (c) => `\\u${c.charCodeAt(0).toString(16).padStart(4, '0')}`);
  writeFileSync(work(name), page.replace(kData, (_, begin, __, end) => begin + text + end));
  return work(name);
}

let browser = null;

export async function start() {
  browser = await chromium.launch({
    executablePath: QAL_CHROMIUM,
    args: ['--no-sandbox', '--use-angle=swiftshader', '--enable-unsafe-swiftshader'],
  });
}

export async function stop() {
  await browser.close();
}

/** Opens a report from disk; nothing may be said on the console, nothing asked for but the file. */
export async function withPage(html, options, use) {
  const context = await browser.newContext({ viewport: { width: 1440, height: 900 }, ...options });
  const page = await context.newPage();
  const said = [];
  page.on('console', (message) => said.push(message.text()));
  page.on('pageerror', (error) => said.push(error.message));
  page.on('request', (request) => { if (!request.url().startsWith('file:')) said.push(`asked for ${request.url()}`); });
  await page.addInitScript(() => {
    window.shifts = 0;
    new PerformanceObserver((list) => { for (const e of list.getEntries()) window.shifts += e.value; })
      .observe({ type: 'layout-shift', buffered: true });
  });
  await page.goto(pathToFileURL(html).href);
  await page.waitForFunction(() => document.documentElement.dataset.state !== undefined);
  await drawn(page);
  try {
    await use(page);
    assert.deepEqual(said, []);
  } finally {
    await context.close();
  }
}

/** Waits until the browser has drawn twice. */
export function drawn(page) {
  return page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(() => done()))));
}

export function screenshot(page, name, full = false) {
  return page.screenshot({ path: join(QAL_SCREENSHOTS, `${name}.png`), fullPage: full });
}

export async function scrubTo(page, share) {
  await page.locator('#time').evaluate((slider, value) => {
    slider.value = String(value);
    slider.dispatchEvent(new Event('input'));
  }, Math.round(10000 * share));
  await drawn(page);
}

/** Seconds on the clock. */
export async function clock(page) {
  return Number.parseFloat(await page.locator('#clock').textContent());
}

/** Where a point of the base frame [m] is in the picture [px]. */
export async function projected(page, [x, y, z]) {
  const m = await page.evaluate(() => window.qalReport.projection());
  const at = [0, 1, 2, 3].map((row) => m[row] * x + m[4 + row] * y + m[8 + row] * z + m[12 + row]);
  const { width, height } = await page.locator('#scene').evaluate(({ clientWidth, clientHeight }) =>
    ({ width: clientWidth, height: clientHeight }));
  return [(0.5 + at[0] / at[3] / 2) * width, (0.5 - at[1] / at[3] / 2) * height];
}

/**
 * Middle and number of the pixels of one colour, [r, g, b] to `within`, in a part of the page; near
 * [x, y, radius].
 */
export async function pixels(page, selector, color, near = [0, 0, 1e9], within = 10) {
  // Where the machine can't keep up, what stands still is drawn finely a moment later.
  await page.waitForTimeout(400);
  const png = await page.locator(selector).screenshot();
  return page.evaluate(async ({ data, color, near, within }) => {
    const image = new Image();
    image.src = `data:image/png;base64,${data}`;
    await image.decode();
    const canvas = document.createElement('canvas');
    [canvas.width, canvas.height] = [image.width, image.height];
    const context = canvas.getContext('2d');
    context.drawImage(image, 0, 0);
    const rgba = context.getImageData(0, 0, image.width, image.height).data;
    let count = 0, x = 0, y = 0;
    for (let i = 0; i < rgba.length; i += 4) {
      const at = [(i / 4) % image.width, Math.floor(i / 4 / image.width)];
      if (Math.hypot(at[0] - near[0], at[1] - near[1]) > near[2]) continue;
      if (color.some((c, k) => Math.abs(rgba[i + k] - c) > within)) continue;
      count++;
      x += at[0] + 0.5;
      y += at[1] + 0.5;
    }
    return { count, x: x / count, y: y / count };
  }, { data: png.toString('base64'), color, near, within });
}
