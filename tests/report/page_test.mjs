// The page of a report, as its readers use it.

import assert from 'node:assert/strict';
import { statSync, readFileSync, writeFileSync } from 'node:fs';
import { after, before, test } from 'node:test';
import { changed, clock, drawn, fine, pixels, planned, projected, qal, rows, screenshot, scrubTo, source, start, stop,
         withPage, work } from './support.mjs';
import './reach_page.mjs';

const kToolColor = [0, 184, 165];
const kViolationColor = [198, 47, 32];
const kJoint3 = [0, 128, 94];

const kArms = [
  ['reference', ['--from', '0', '-0.2', '0.2', '0', '1.5708', '0', '--to', '0.7', '0.3', '-0.1', '0.5', '1.2', '1']],
  ['ceiling_spherical', ['--from', '0', '0', '0', '0', '0', '0', '--to', '0.9', '-0.7', '0.6', '1.2', '-0.8', '1.5']],
  ['service_parallel', ['--from', '0.4', '-0.6', '0.9', '0.3', '-0.9', '0.2', '--to', '-0.8', '0.4', '-0.5', '1.1', '0.7', '-1.2']],
];
const kSizes = [[1440, 900], [820, 1180], [390, 844]];

const moves = new Map();
const made = {};

before(async () => {
  for (const [arm, ends] of kArms) moves.set(arm, planned(arm, 'joint', '--arm', source(`arms/${arm}.urdf`), ...ends));
  qal('plan', source('examples/welding_seam.toml'), '-o', work('seam.csv'), '--full', '--report', work('seam.html'));
  made.seam = work('seam.html');
  qal('line', '--from', '0', '-0.2', '0.2', '0', '1.5708', '0', '--by', '0', '0', '-0.3', '--profile', 'fixed',
      '--speed', '100', '--csv', work('steps.csv'));
  made.steps = work('steps.html');
  qal('report', work('steps.csv'), '-o', made.steps);
  await start();
});
after(stop);

test('is less than 0.9 MB without its data, and names the licences of what is in it', () => {
  const page = readFileSync(made.steps, 'utf8');
  const data = page.match(/id="report-data">([^]*?)<\/script>/)[1];
  const bytes = statSync(made.steps).size - data.length;
  console.log(`the page without data: ${bytes} bytes`);
  assert.ok(bytes < 900000 && bytes > 100000);
  assert.match(page, /three [\d.]+\s+The MIT License/);
  assert.match(page, /uplot [\d.]+\s+The MIT License/);
});

for (const [arm] of kArms) {
  for (const [width, height] of kSizes) {
    for (const colorScheme of ['light', 'dark']) {
      test(`opens: ${arm}, ${width} x ${height}, ${colorScheme}`, async () => {
        await withPage(moves.get(arm), { viewport: { width, height }, colorScheme }, async (page) => {
          assert.equal(await page.locator('html').getAttribute('data-state'), 'ready');
          assert.equal(await page.locator('html').getAttribute('data-theme'), colorScheme);
          await scrubTo(page, 0.6);
          await fine(page);
          assert.deepEqual(await page.evaluate(() => window.shifts), [], 'the layout shifts');
          assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth), 'it is too wide');
          // A picture of the whole page makes the window larger for a moment: that shifts.
          await screenshot(page, `${arm}_${width}_${colorScheme}`, width < 1000);
        });
      });
    }
  }
}

test('draws a picture for the documents', async () => {
  await withPage(made.seam, { viewport: { width: 1400, height: 1040 } }, async (page) => {
    await scrubTo(page, 0.63);
    await fine(page);
    await screenshot(page, 'report');
    assert.ok((await pixels(page, '#scene', [255, 255, 255])).count > 200, 'no corners are seen');
  });
});

test('can be read in both themes', async () => {
  for (const colorScheme of ['light', 'dark']) {
    await withPage(made.steps, { colorScheme }, async (page) => {
      const low = await page.evaluate(() => {
        const probe = document.body.appendChild(document.createElement('i'));
        const light = (name) => {
          probe.style.color = `var(--${name})`;
          const [r, g, b] = getComputedStyle(probe).color.match(/[\d.]+/g).map((c) => c / 255)
            .map((c) => (c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4));
          return 0.2126 * r + 0.7152 * g + 0.0722 * b;
        };
        const contrast = (a, b) => (Math.max(light(a), light(b)) + 0.05) / (Math.min(light(a), light(b)) + 0.05);
        const pairs = ['text', 'muted', 'ok', 'bad', 'note', 'accent'].flatMap((text) => [[text, 'surface'], [text, 'page']]);
        pairs.push(['ok', 'ok-soft'], ['bad', 'bad-soft'], ['muted', 'bad-soft'], ['accent-text', 'accent'], ['text', 'accent-soft']);
        return pairs.filter(([a, b]) => contrast(a, b) < 4.5).map(([a, b]) => `${a} on ${b}: ${contrast(a, b).toFixed(2)}`);
      });
      assert.deepEqual(low, []);
    });
  }
});

test('draws the tool where the CSV says, by kinematics and to a pixel', async () => {
  for (const [arm, html] of [...moves, ['seam', made.seam]]) {
    const csv = rows(work(`${arm}.csv`));
    await withPage(html, {}, async (page) => {
      for (const [k, share] of [0, 0.21, 0.5, 0.77, 1].entries()) {
        // Two views, so that depth is seen as well.
        await page.keyboard.press(k % 2 ? '3' : '1');
        await scrubTo(page, share);
        const time = await clock(page);
        const row = csv.reduce((best, r) => (Math.abs(r.time_s - time) < Math.abs(best.time_s - time) ? r : best));
        const speed = row.tcp_speed_m_s;
        const at = await projected(page, [row.x_m, row.y_m, row.z_m]);
        const dot = await pixels(page, '#scene', kToolColor, [...at, 30]);
        assert.ok(dot.count > 20, `${arm}: no dot at ${time} s`);
        assert.ok(Math.hypot(dot.x - at[0], dot.y - at[1]) < 1, `${arm}: ${[dot.x, dot.y]}, not ${at} at ${time} s`);
        if (arm === 'seam') continue; // its tool is the program's own
        const tool = await page.evaluate(() => window.qalReport.toolOfArm());
        const gap = Math.hypot(tool[0] - row.x_m, tool[1] - row.y_m, tool[2] - row.z_m);
        assert.ok(gap < 1e-5 + 0.005 * speed, `${arm}: the joints put the tool ${gap} m off at ${time} s`);
      }
    });
  }
});

test('draws the shapes and STL meshes of a URDF', async () => {
  const corner = [[0, 0, 0.4], [0.3, 0, 0], [0, 0.3, 0], [0, 0, 0]];
  const triangles = [[0, 1, 2], [1, 0, 3], [2, 1, 3], [0, 2, 3]].flatMap((face) =>
    ['facet normal 0 0 0', 'outer loop', ...face.map((i) => `vertex ${corner[i].join(' ')}`), 'endloop', 'endfacet']);
  writeFileSync(work('wedge.stl'), ['solid wedge', ...triangles, 'endsolid wedge', ''].join('\n'));
  const visual = '<link name="link_2"><visual><geometry><mesh filename="wedge.stl"/></geometry>' +
                 '<material name="m"><color rgba="0.9 0 0.9 1"/></material></visual></link>';
  writeFileSync(work('wedge.urdf'), readFileSync(source('arms/reference.urdf'), 'utf8').replace('<link name="link_2"/>', visual));
  await withPage(planned('wedge', 'joint', '--arm', work('wedge.urdf'), ...kArms[0][1]), {}, async (page) => {
    const seen = await pixels(page, '#scene', [190, 0, 190], undefined, 65);
    assert.ok(seen.count > 1000, `${seen.count} pixels of the mesh`);
    await screenshot(page, 'mesh');
  });
});

test('plays and is run by the keyboard alone', async () => {
  await withPage(made.seam, {}, async (page) => {
    await page.keyboard.press(' ');
    await page.waitForFunction(() => window.qalReport.time() > 0.3);
    await page.keyboard.press(' ');
    const stopped = await clock(page);
    await page.waitForTimeout(200);
    assert.equal(await clock(page), stopped);

    const csv = rows(work('seam.csv'));
    await page.keyboard.press('Home');
    assert.equal(await clock(page), 0);
    for (const [key, expected] of [['ArrowRight', csv[1].time_s], ['ArrowRight', csv[2].time_s], ['ArrowLeft', csv[1].time_s],
                                   ['Shift+ArrowRight', csv[1].time_s + 0.1], ['End', csv.at(-1).time_s]]) {
      await page.keyboard.press(key);
      assert.ok(Math.abs(await clock(page) - expected) < 6e-4, `${key}: ${await clock(page)}, not ${expected}`);
    }
    await page.keyboard.press('-');
    assert.equal(await page.locator('#speed option:checked').textContent(), '0.5 ×');
    const side = await page.evaluate(() => window.qalReport.projection());
    await page.keyboard.press('4');
    await drawn(page);
    assert.notDeepEqual(await page.evaluate(() => window.qalReport.projection()), side);
    const theme = await page.locator('html').getAttribute('data-theme');
    await page.keyboard.press('d');
    assert.notEqual(await page.locator('html').getAttribute('data-theme'), theme);
    await page.keyboard.press('?');
    assert.ok(await page.locator('#help').isVisible());
    await page.keyboard.press('Escape');
    assert.ok(!(await page.locator('#help').isVisible()));
    // All that can be used is reached by Tab and has a name.
    const unnamed = await page.locator('button, select, input, summary, [tabindex="0"]').evaluateAll((all) => all
      .filter((e) => !(e.ariaLabel || e.textContent.trim() || e.labels?.[0]?.textContent.trim())).map((e) => e.outerHTML));
    assert.deepEqual(unnamed, []);
  });
});

test('shows what is violated, and goes there', async () => {
  const verdict = JSON.parse(readFileSync(made.steps, 'utf8').match(/id="report-data">([^]*?)<\/script>/)[1]).motions[0].verdict;
  const worst = verdict.checks.filter((check) => check.state === 'violation')
    .reduce((a, b) => (b.value / b.limit > a.value / a.limit ? b : a));
  await withPage(made.steps, {}, async (page) => {
    const headline = page.locator('#verdict .headline').first();
    assert.equal((await headline.textContent()).toLowerCase(), verdict.headline.toLowerCase());
    const card = page.locator(`.check[data-check="${worst.key}"]`);
    assert.equal(await card.getAttribute('data-state'), 'violation');
    await card.click();
    await drawn(page);
    assert.ok(Math.abs(await clock(page) - worst.time_s) < 6e-4);
    assert.match(await page.locator('#live').textContent(), /violated/);
    const row = rows(work('steps.csv'))[worst.sample];
    await page.keyboard.press('2');
    await scrubTo(page, 0.5);
    const at = await projected(page, [row.x_m, row.y_m, row.z_m]);
    const mark = await pixels(page, '#scene', kViolationColor, [...at, 14]);
    assert.ok(mark.count > 20, `${mark.count} pixels of a mark at ${at}`);
    assert.ok(await page.locator('#ticks .violation').count() > 0);
    await screenshot(page, 'violations');
  });
});

test('hides a joint everywhere, zooms, and changes units', async () => {
  await withPage(moves.get('reference'), { viewport: { width: 1440, height: 2400 } }, async (page) => {
    const plots = ['angle', 'velocity', 'acceleration', 'jerk', 'motor'];
    const seen = async () => Promise.all(plots.map(async (key) => (await pixels(page, `[data-plot="${key}"]`, kJoint3)).count));
    for (const count of await seen()) assert.ok(count > 30);
    await page.locator('[data-joint="3"]').click();
    assert.deepEqual(await seen(), [0, 0, 0, 0, 0]);
    await page.locator('[data-joint="3"]').click();

    const plot = page.locator('[data-plot="velocity"] .u-over');
    const box = await plot.boundingBox();
    await page.mouse.move(box.x + 0.25 * box.width, box.y + 40);
    await page.mouse.down();
    await page.mouse.move(box.x + 0.5 * box.width, box.y + 60, { steps: 4 });
    await page.mouse.up();
    await page.mouse.click(box.x + 0.5 * box.width, box.y + 50);
    const end = rows(work('reference.csv')).at(-1).time_s;
    const middle = await clock(page);
    assert.ok(Math.abs(middle - 0.375 * end) < 0.01 * end, `the middle of the zoomed plot is at ${middle} s of ${end} s`);
    await page.keyboard.press('0');
    await page.mouse.click(box.x + 0.5 * box.width, box.y + 50);
    assert.ok(Math.abs(await clock(page) - 0.5 * end) < 0.01 * end);

    await page.locator('#units').selectOption('si');
    assert.match(await page.locator('[data-plot="velocity"] figcaption').textContent(), /rad\/s/);
    assert.match(await page.locator('[data-check="joint_speed_rad_s"]').textContent(), /rad\/s/);
  });
});

test('takes names and texts for data', async () => {
  const markup = '</script><img src=x onerror="window.pwned=1"><b>bold</b>&lt;';
  const arm = work('arm.urdf');
  writeFileSync(arm, readFileSync(source('arms/reference.urdf'), 'utf8')
    .replaceAll('joint_2', 'joint_2&lt;/script&gt;&lt;img src=x onerror=&quot;window.pwned=1&quot;&gt;'));
  const csv = work('a<img src=x onerror="window.pwned=1">.csv');
  writeFileSync(csv, readFileSync(work('steps.csv')));
  qal('report', csv, '--arm', arm, '-o', work('names.html'));
  const html = changed(work('names.html'), 'markup.html', (data) => {
    data.title = markup;
    data.arm.about = markup;
    data.arm.notes = [markup];
    data.unknown_field = { of: 'a later version' };
    Object.assign(data.motions[0], { notes: [markup], steps: [{ begin_s: 0, name: markup }] });
    Object.assign(data.motions[0].verdict, { headline: markup });
    data.motions[0].verdict.checks[0].title = markup;
    data.explanation = { ok: false, headline: markup, cause: markup, text: [markup], point: null, path_m: [],
                         solutions: [{ joints_rad: [0, 0, 0, 0, 0, 0], branch: markup, distance_rad: 1, refused: markup }],
                         remedies: [{ kind: 'start', text: markup, command: markup }],
                         branches: [{ branch: markup, joints_rad: [0, 0, 0, 0, 0, 0], ok: true, text: markup }] };
  });
  for (const file of [work('names.html'), html]) {
    await withPage(file, {}, async (page) => {
      assert.equal(await page.locator('html').getAttribute('data-state'), 'ready');
      await page.waitForTimeout(100);
      assert.equal(await page.evaluate(() => window.pwned), undefined);
      assert.equal(await page.locator('#content img, #content b, #content script').count(), 0);
      assert.match(await page.locator('[data-joint="2"]').textContent(), /joint_2<\/script><img/);
    });
  }
  await withPage(html, {}, async (page) => {
    assert.equal(await page.locator('h1').textContent(), markup);
    assert.equal(await page.locator('.remedies code').textContent(), markup);
  });
});

test('opens 100,000 points and scrubs through them', async () => {
  const waves = [[0.8, 9, 0], [0.3, 7, -0.2], [0.3, 5, 0.2], [0.6, 4, 0], [0.5, 6, 1.4], [1.2, 8, 0]];
  const lines = Array.from({ length: 100000 }, (_, i) => [0.005 * i, ...waves.map(([size, period, middle]) =>
    middle + size * Math.sin((2 * Math.PI * 0.005 * i) / period))].map((v) => v.toFixed(9)).join(','));
  writeFileSync(work('long.csv'), ['time_s,q1_rad,q2_rad,q3_rad,q4_rad,q5_rad,q6_rad', ...lines, ''].join('\n'));
  qal('report', work('long.csv'), '-o', work('long.html'));
  await withPage(work('long.html'), {}, async (page) => {
    const opened_ms = await page.evaluate(() => performance.getEntriesByName('qal-first-picture')[0].startTime);
    const { frame_ms, work_ms } = await page.evaluate(() => new Promise((done) => {
      const slider = document.querySelector('#time');
      const middle = (times) => times.sort((a, b) => a - b)[times.length >> 1];
      const apart = [], work = [];
      let last = performance.now();
      const step = () => {
        const begin = performance.now();
        apart.push(begin - last);
        last = begin;
        slider.value = String((apart.length * 97) % 10000);
        slider.dispatchEvent(new Event('input'));
        work.push(performance.now() - begin);
        if (apart.length < 90) requestAnimationFrame(step);
        else done({ frame_ms: middle(apart), work_ms: middle(work) });
      };
      requestAnimationFrame(step);
    }));
    console.log(`100,000 points: open after ${opened_ms.toFixed(0)} ms; scrubbed at a frame every ${frame_ms.toFixed(1)} ms ` +
                `without a graphics card, ${work_ms.toFixed(1)} ms of it the page's own work`);
    // 3 s and 30 frames a second on a machine of one's own; this one may be busy and draws in software.
    assert.ok(opened_ms < 9000, `${opened_ms} ms`);
    assert.ok(work_ms < 16, `${work_ms} ms a frame`);
    assert.ok(frame_ms < 300, `a frame every ${frame_ms} ms`);
    await screenshot(page, 'long');
  });
});

test('shows a second motion as a ghost', async () => {
  qal('report', work('seam.csv'), work('steps.csv'), '-o', work('two.html'));
  await withPage(work('two.html'), {}, async (page) => {
    await scrubTo(page, 0.002);
    const ghost = page.locator('#ghost');
    assert.equal(await ghost.getAttribute('aria-pressed'), 'true');
    await fine(page);
    const both = await page.locator('#scene').screenshot();
    await screenshot(page, 'two_motions');
    await page.keyboard.press('g');
    await fine(page);
    assert.equal(await ghost.getAttribute('aria-pressed'), 'false');
    assert.ok(!both.equals(await page.locator('#scene').screenshot()), 'the picture is the same without the ghost');
    assert.equal(await page.locator('#verdict .headline').count(), 2);
  });
});

test('explains: the failing point, its solutions as ghosts, and why', async () => {
  const near = ['0', '-0.2', '0.2', '0', '1.5708', '0'];
  const answer = JSON.parse(qal('ik', '--all', '--json', '--pose', '0.35', '0', '0.7', '0', '0', '1', '0', '--near', ...near));
  const found = answer.solutions;
  const html = changed(moves.get('reference'), 'explained.html', (data) => {
    data.motions = [];
    data.explanation = {
      ok: false, headline: 'the line leaves the reach of the arm at 61.2 % of its way', cause: 'out_of_reach',
      text: ['The point at 61.2 % has solutions, each of them out of the range of a joint.'],
      point: { index: 7, along: 0.612, distance_m: 0.2, time_s: null, position_m: [0.35, 0, 0.7], wxyz: [0, 0, 1, 0] },
      path_m: [[0.35, -0.2, 0.7], [0.35, 0, 0.7], [0.35, 0.3, 0.7]],
      solutions: found.map((s, i) => ({ joints_rad: s.joints_rad, branch: 'shoulder front, elbow up', distance_rad: 0.1 * i,
                                        refused: i === 0 ? null : 'joint 5 beyond its range by 0.2 rad' })),
      remedies: [{ kind: 'start', text: 'Start with the elbow down.', command: 'qal line --from 0 0 0 0 0 0' }],
      branches: [],
    };
  });
  await withPage(html, {}, async (page) => {
    const shown = page.locator('button.show');
    assert.equal(await shown.count(), found.length);
    assert.match(await page.locator('#explanation').textContent(), /beyond its range by 0\.2 rad/);
    await fine(page);
    const one = await page.locator('#scene').screenshot();
    await shown.nth(1).click();
    await fine(page);
    assert.equal(await shown.nth(1).getAttribute('aria-pressed'), 'true');
    assert.ok(!one.equals(await page.locator('#scene').screenshot()), 'no ghost is drawn');
    const at = await projected(page, [0.35, 0, 0.7]);
    assert.ok((await pixels(page, '#scene', kViolationColor, [...at, 20])).count > 20, 'no mark at the failing point');
    assert.equal(await page.locator('#over-time').isVisible(), false);
    await screenshot(page, 'explanation', true);
  });
});

test('prints in light, with pictures of scene and plots and every check', async () => {
  await withPage(made.seam, { colorScheme: 'dark', viewport: { width: 760, height: 1060 } }, async (page) => {
    await page.emulateMedia({ media: 'print', colorScheme: 'dark' });
    await page.waitForFunction(() => document.querySelectorAll('img.printed').length === 9);
    assert.equal(await page.locator('html').getAttribute('data-theme'), 'light');
    assert.ok(await page.locator('table.every').first().isVisible());
    assert.ok(!(await page.locator('.transport').isVisible()));
    await screenshot(page, 'print', true);
    await page.emulateMedia({ media: 'screen' });
    await page.waitForFunction(() => document.querySelectorAll('img.printed').length === 0);
    assert.equal(await page.locator('html').getAttribute('data-theme'), 'dark');
  });
});
