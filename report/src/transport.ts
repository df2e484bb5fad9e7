// Play, pause, step and scrub: the bar under the picture.

import type { Report } from './data';
import { byId, el, icon, kIcons } from './dom';
import { kSpeeds } from './playback';
import type { Playback } from './playback';
import { sampleAt } from './sampling';
import { fixed } from './units';

/** The slider is in steps of this share of the motion. */
const kSteps = 10000;
const kMostTicks = 100;

function setIcon(button: HTMLElement, path: string, label: string): void {
  button.replaceChildren(icon(path));
  button.setAttribute('aria-label', label);
  button.title = label;
}

function buttons(playback: Playback): void {
  const play = byId('play');
  const showState = (): void =>
    playback.playing.get() ? setIcon(play, kIcons.pause, 'Pause (space)') : setIcon(play, kIcons.play, 'Play (space)');
  showState();
  playback.playing.on(showState);
  play.addEventListener('click', () => playback.toggle());
  const others: [string, string, string, () => void][] = [
    ['first', kIcons.first, 'To the start (home)', () => playback.seek(playback.begin)],
    ['previous', kIcons.previous, 'One sample back (left)', () => playback.step(-1)],
    ['next', kIcons.next, 'One sample on (right)', () => playback.step(1)],
    ['last', kIcons.last, 'To the end (end)', () => playback.seek(playback.end)],
  ];
  for (const [id, path, label, act] of others) {
    setIcon(byId(id), path, label);
    byId(id).addEventListener('click', act);
  }
}

function speeds(playback: Playback): void {
  const select = byId<HTMLSelectElement>('speed');
  select.append(...kSpeeds.map((speed, i) => el('option', { value: String(i) }, `${speed} ×`)));
  const showSpeed = (): void => { select.value = String(playback.speed.get()); };
  showSpeed();
  playback.speed.on(showSpeed);
  select.addEventListener('change', () => playback.speed.set(Number(select.value)));
}

// Where steps begin, and where something is exceeded, above the slider.
function ticks(report: Report, playback: Playback): void {
  const motion = report.motions[0];
  const length = playback.end - playback.begin;
  if (!motion || length <= 0) return;
  const host = byId('ticks');
  const put = (kind: string, t: number): void => {
    const tick = el('span', { class: kind });
    tick.style.left = `${(100 * (t - playback.begin)) / length}%`;
    host.append(tick);
  };
  if (motion.steps.length <= kMostTicks) for (const step of motion.steps) put('step', step.begin_s);
  for (const check of motion.verdict.checks) {
    if (check.time_s !== null && (check.state === 'violation' || check.state === 'note')) put(check.state, check.time_s);
  }
}

export function transport(report: Report, playback: Playback): void {
  buttons(playback);
  speeds(playback);
  ticks(report, playback);
  const slider = byId<HTMLInputElement>('time');
  slider.max = String(kSteps);
  const length = playback.end - playback.begin;
  slider.addEventListener('input', () => {
    playback.playing.set(false);
    playback.seek(playback.begin + (length * Number(slider.value)) / kSteps);
  });
  const clock = byId('clock');
  const total = byId('total');
  const place = byId('place');
  const steps = report.motions[0]?.steps ?? [];
  const begins = Float64Array.from(steps, (step) => step.begin_s);
  const samples = report.motions[0]?.samples ?? 0;
  const show = (): void => {
    const t = playback.time;
    slider.value = String(length > 0 ? Math.round((kSteps * (t - playback.begin)) / length) : 0);
    slider.setAttribute('aria-valuetext', `${fixed(t, 3)} seconds`);
    clock.textContent = `${fixed(t, 3)} s`;
    total.textContent = `of ${fixed(playback.end, 3)} s`;
    const step = steps.length > 0 ? (steps[sampleAt(begins, t)]?.name ?? '') : '';
    place.textContent = [`sample ${playback.sample + 1} of ${samples}`, step].filter((part) => part !== '').join(' · ');
  };
  playback.moved.on(show);
  show();
}
