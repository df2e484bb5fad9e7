// The page of a report: reads what the tool put into it and shows it.

import type { ArmScene } from './arm_scene';
import { readReport } from './data';
import type { Report } from './data';
import { byId, el } from './dom';
import { keys } from './keys';
import { showMotions } from './motion_page';
import { printing } from './print';
import type { Page } from './page';
import { showReach } from './reach_page';
import type { View } from './stage';
import { Display } from './state';
import { themes } from './theme';
import type { Themes } from './theme';

function notes(all: readonly string[]): void {
  byId('notes').hidden = all.length === 0;
  byId('notes-list').append(...all.map((note) => el('li', {}, note)));
}

function bindScene(scene: ArmScene, about: string, chosen: Themes): void {
  scene.setTheme(chosen.theme.get());
  scene.stage.view('free');
  chosen.theme.on(() => scene.setTheme(chosen.theme.get()));
  document.querySelectorAll<HTMLButtonElement>('[data-view]').forEach((button) =>
    button.addEventListener('click', () => scene.stage.view(button.dataset['view'] as View)));
  byId('scene').setAttribute('aria-label', `${about}. Arrow keys turn the picture, page up and down zoom.`);
}

function controls(display: Display, chosen: Themes): void {
  const units = byId<HTMLSelectElement>('units');
  units.addEventListener('change', () => display.units.set(units.value === 'si' ? 'si' : 'workshop'));
  byId('theme').addEventListener('click', () => chosen.toggle());
  byId('print').addEventListener('click', () => window.print());
}

function run(page: Page): void {
  let frames = 0;
  const frame = (now_ms: number): void => {
    page.frame(now_ms);
    page.scene?.stage.draw(now_ms);
    // The frame after the first that was drawn: for how long it takes to open.
    if (++frames === 2) performance.mark('qal-first-picture');
    requestAnimationFrame(frame);
  };
  requestAnimationFrame(frame);
}

function show(report: Report): void {
  const kind = report.reach ? 'reach study' : 'motion report';
  document.title = `${report.title} – ${kind}`;
  byId('title').textContent = report.title;
  byId('about').textContent = report.arm.about;
  byId('made-by').textContent = report.tool;
  document.body.dataset['page'] = report.reach ? 'reach' : 'motion';

  const display = new Display();
  const chosen = themes();
  controls(display, chosen);
  const page = report.reach ? showReach(report, report.reach, display) : showMotions(report, display, chosen);
  notes([...report.arm.notes, ...page.notes]);
  const { scene } = page;
  if (scene) bindScene(scene, page.about, chosen);
  printing(chosen, page.plots, scene);
  keys({
    view: (view) => scene?.stage.view(view),
    orbit: (azimuth, elevation, zoom) => scene?.stage.orbit(azimuth, elevation, zoom),
    toggleTheme: () => chosen.toggle(),
    own: (event) => page.key(event),
  });
  run(page);
  // For tests of the page alone.
  Object.assign(window, { qalReport: page.hook });
}

function main(): void {
  try {
    show(readReport(byId('report-data').textContent ?? ''));
    document.documentElement.dataset['state'] = 'ready';
  } catch (error) {
    document.documentElement.dataset['state'] = 'failed';
    const text = error instanceof Error ? error.message : String(error);
    byId('failure').textContent = text;
    byId('failure').hidden = false;
    byId('content').hidden = true;
  }
}

main();
