// The page of motions and explanations.

import { byId } from './dom';
import type { Report } from './data';
import { showExplanation } from './explanation';
import { jointsTable } from './joints_table';
import { MotionScene } from './motion_scene';
import { hookOf, legend, tryScene } from './page';
import type { Page } from './page';
import { Playback } from './playback';
import { Plots } from './plots';
import { duration } from './sampling';
import type { Display } from './state';
import type { Themes } from './theme';
import { highestSpeed } from './tool_path';
import { transport } from './transport';
import { quantity } from './units';
import { showVerdict } from './verdict';

const kJumpS = 0.1;

function speedLegend(report: Report, display: Display): void {
  const motion = report.motions[0];
  if (!motion) return;
  const highest = highestSpeed(motion);
  const show = (): void => legend('Tool speed', quantity(highest, 'm/s', display.units.get()));
  show();
  display.units.on(show);
}

function notesOf(report: Report): string[] {
  const notes = report.motions.flatMap((motion) =>
    motion.notes.map((note) => (report.motions.length > 1 ? `${motion.name}: ${note}` : note)));
  if (report.motions.some((motion) => motion.rates === 'differences')) {
    notes.push('Speeds, accelerations or jerks that a file doesn\'t have are differences of its joints.');
  }
  return notes;
}

function bindScene(scene: MotionScene, display: Display, playback: Playback): void {
  const follow = (): void => scene.setTime(playback.time);
  follow();
  playback.moved.on(follow);
  display.ghost.on(() => scene.setGhost(display.ghost.get()));
  display.solutions.on(() => scene.showSolutions(display.solutions.get()));
  scene.showSolutions(display.solutions.get());
  scene.stage.onClick((event) => {
    const time: unknown = scene.stage.pick(event, scene.marks.group.children)?.userData['time_s'];
    if (typeof time === 'number') playback.seek(time);
  });
}

function ghostButton(display: Display, report: Report): void {
  const ghost = byId('ghost');
  ghost.hidden = report.motions.length < 2;
  ghost.addEventListener('click', () => display.ghost.set(!display.ghost.get()));
  const press = (): void => ghost.setAttribute('aria-pressed', String(display.ghost.get()));
  press();
  display.ghost.on(press);
}

function key(event: KeyboardEvent, playback: Playback, display: Display, plots: Plots | null): boolean {
  const jump = (direction: number): void => { playback.playing.set(false); playback.seek(playback.time + direction * kJumpS); };
  switch (event.key) {
    case ' ': playback.toggle(); return true;
    case 'ArrowLeft': if (event.shiftKey) jump(-1); else playback.step(-1); return true;
    case 'ArrowRight': if (event.shiftKey) jump(1); else playback.step(1); return true;
    case 'Home': playback.seek(playback.begin); return true;
    case 'End': playback.seek(playback.end); return true;
    case '+': case '=': playback.changeSpeed(1); return true;
    case '-': playback.changeSpeed(-1); return true;
    case 'g': case 'G': display.ghost.set(!display.ghost.get()); return true;
    case '[': plots?.zoomBy(2); return true;
    case ']': plots?.zoomBy(0.5); return true;
    case '0': plots?.zoom(-Infinity, Infinity); return true;
    default: return false;
  }
}

export function showMotions(report: Report, display: Display, chosen: Themes): Page {
  if (report.motions.length > 1) byId('title').textContent = report.motions.map((m) => m.name).join('  vs  ');
  const times = report.motions[0]?.time_s ?? new Float64Array([0]);
  const playback = new Playback(times, Math.max(0, ...report.motions.map(duration)));
  showVerdict(report, display, playback);
  if (report.explanation) showExplanation(report.explanation, display, (t) => { playback.playing.set(false); playback.seek(t); });
  ghostButton(display, report);
  speedLegend(report, display);
  const moves = report.motions.length > 0;
  byId('moving').hidden = !moves;
  byId('over-time').hidden = !moves;
  document.body.classList.toggle('still', !moves);
  if (moves) {
    transport(report, playback);
    jointsTable(report, display, playback, chosen.theme);
  }
  const scene = tryScene((host) => new MotionScene(host, report));
  if (scene) bindScene(scene, display, playback);
  const plots = moves ? new Plots(report, display, playback, chosen.theme) : null;
  const failed_at = report.explanation?.point?.time_s;
  if (typeof failed_at === 'number') playback.seek(failed_at);
  return {
    scene, plots,
    about: moves ? 'The arm and the way of its tool' : 'The arm and the point that was asked for',
    notes: notesOf(report),
    frame: (now_ms) => playback.frame(now_ms),
    key: (event) => key(event, playback, display, plots),
    hook: { ...hookOf(scene), time: () => playback.time },
  };
}
