// The page of a report: reads what the tool put into it and shows it.

import { speedGradient } from './colors';
import { readReport } from './data';
import type { Report } from './data';
import { byId, el } from './dom';
import { showExplanation } from './explanation';
import { jointsTable } from './joints_table';
import { keys } from './keys';
import { Playback } from './playback';
import { Plots } from './plots';
import { printing } from './print';
import { RobotScene } from './robot_scene';
import { duration } from './sampling';
import type { View } from './stage';
import { Display } from './state';
import { themes } from './theme';
import type { Themes } from './theme';
import { highestSpeed } from './tool_path';
import { transport } from './transport';
import { quantity } from './units';
import { showVerdict } from './verdict';

function makeScene(report: Report): RobotScene | null {
  const host = byId('scene');
  try {
    return new RobotScene(host, report);
  } catch (error) {
    host.append(el('p', { class: 'no-scene' },
                   `The arm can't be drawn here, the rest of the page goes on: ${error instanceof Error ? error.message : String(error)}`));
    return null;
  }
}

function legend(report: Report, display: Display): void {
  const motion = report.motions[0];
  const host = byId('speed-legend');
  host.hidden = !motion;
  if (!motion) return;
  byId('gradient').style.background = speedGradient();
  const highest = highestSpeed(motion);
  const show = (): void => { byId('speed-high').textContent = quantity(highest, 'm/s', display.units.get()); };
  show();
  display.units.on(show);
}

function notes(report: Report): void {
  const all = [...report.arm.notes, ...report.motions.flatMap((motion) =>
    motion.notes.map((note) => (report.motions.length > 1 ? `${motion.name}: ${note}` : note)))];
  if (report.motions.some((motion) => motion.rates === 'differences')) {
    all.push('Speeds, accelerations or jerks that a file doesn\'t have are differences of its joints.');
  }
  byId('notes').hidden = all.length === 0;
  byId('notes-list').append(...all.map((note) => el('li', {}, note)));
}

function bindScene(scene: RobotScene, report: Report, display: Display, playback: Playback, chosen: Themes): void {
  const follow = (): void => scene.setTime(playback.time);
  scene.setTheme(chosen.theme.get());
  scene.stage.view('free');
  follow();
  playback.moved.on(follow);
  chosen.theme.on(() => scene.setTheme(chosen.theme.get()));
  display.ghost.on(() => scene.setGhost(display.ghost.get()));
  display.solutions.on(() => scene.showSolutions(display.solutions.get()));
  scene.showSolutions(display.solutions.get());
  document.querySelectorAll<HTMLButtonElement>('[data-view]').forEach((button) =>
    button.addEventListener('click', () => scene.stage.view(button.dataset['view'] as View)));
  let pressed = [0, 0];
  const canvas = scene.stage.renderer.domElement;
  canvas.addEventListener('pointerdown', (event) => { pressed = [event.clientX, event.clientY]; });
  canvas.addEventListener('pointerup', (event) => {
    if (Math.hypot(event.clientX - (pressed[0] ?? 0), event.clientY - (pressed[1] ?? 0)) > 4) return;
    const time: unknown = scene.stage.pick(event, scene.marks.group.children)?.userData['time_s'];
    if (typeof time === 'number') playback.seek(time);
  });
  const about = report.motions.length > 0 ? 'The arm and the way of its tool' : 'The arm and the point that was asked for';
  byId('scene').setAttribute('aria-label', `${about}. Arrow keys turn the picture, page up and down zoom.`);
}

function controls(display: Display, chosen: Themes, report: Report): void {
  const units = byId<HTMLSelectElement>('units');
  units.addEventListener('change', () => display.units.set(units.value === 'si' ? 'si' : 'workshop'));
  byId('theme').addEventListener('click', () => chosen.toggle());
  byId('print').addEventListener('click', () => window.print());
  const ghost = byId('ghost');
  ghost.hidden = report.motions.length < 2;
  ghost.addEventListener('click', () => display.ghost.set(!display.ghost.get()));
  const press = (): void => ghost.setAttribute('aria-pressed', String(display.ghost.get()));
  press();
  display.ghost.on(press);
}

function show(report: Report): void {
  document.title = `${report.title} – motion report`;
  byId('title').textContent = report.motions.length > 1 ? report.motions.map((m) => m.name).join('  vs  ') : report.title;
  byId('about').textContent = report.arm.about;
  byId('made-by').textContent = report.tool;

  const display = new Display();
  const chosen = themes();
  const times = report.motions[0]?.time_s ?? new Float64Array([0]);
  const playback = new Playback(times, Math.max(0, ...report.motions.map(duration)));
  showVerdict(report, display, playback);
  if (report.explanation) showExplanation(report.explanation, display, (t) => { playback.playing.set(false); playback.seek(t); });
  controls(display, chosen, report);
  legend(report, display);
  notes(report);
  const moves = report.motions.length > 0;
  byId('moving').hidden = !moves;
  byId('over-time').hidden = !moves;
  document.body.classList.toggle('still', !moves);
  if (moves) {
    transport(report, playback);
    jointsTable(report, display, playback, chosen.theme);
  }
  const scene = makeScene(report);
  if (scene) bindScene(scene, report, display, playback, chosen);
  const plots = moves ? new Plots(report, display, playback, chosen.theme) : null;
  const failed_at = report.explanation?.point?.time_s;
  if (typeof failed_at === 'number') playback.seek(failed_at);
  printing(chosen, plots, scene);
  keys({
    playback,
    view: (view) => scene?.stage.view(view),
    orbit: (azimuth, elevation, zoom) => scene?.stage.orbit(azimuth, elevation, zoom),
    toggleGhost: () => display.ghost.set(!display.ghost.get()),
    toggleTheme: () => chosen.toggle(),
    zoomPlots: (factor) => (factor === Infinity ? plots?.zoom(-Infinity, Infinity) : plots?.zoomBy(factor)),
  });
  let frames = 0;
  const frame = (now_ms: number): void => {
    playback.frame(now_ms);
    scene?.stage.draw(now_ms);
    // The frame after the first that was drawn: for how long it takes to open.
    if (++frames === 2) performance.mark('qal-first-picture');
    requestAnimationFrame(frame);
  };
  requestAnimationFrame(frame);
  if (scene) hook(scene, playback);
}

// For tests of the page alone: the moment, where the joints put the tool, how points come to the screen.
function hook(scene: RobotScene, playback: Playback): void {
  Object.assign(window, {
    qalReport: {
      time: () => playback.time,
      toolOfArm: () => scene.toolOfArm(),
      projection: () => scene.projection(),
    },
  });
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
