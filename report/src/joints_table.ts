// The joints at the moment that is shown; a joint's button hides it in all plots.

import type { Joint, Report } from './data';
import { byId, el } from './dom';
import { kPalettes } from './colors';
import type { Theme } from './colors';
import type { Playback } from './playback';
import { momentAt, newMoment } from './sampling';
import type { Display, Value } from './state';
import { fixed, shown } from './units';

interface Row {
  readonly cells: readonly HTMLTableCellElement[];
  readonly knob: HTMLElement;
}

const kColumns = [
  { title: 'Speed', unit: 'rad/s', field: 'velocities_rad_s' },
  { title: 'Accel.', unit: 'rad/s^2', field: 'accelerations_rad_s2' },
] as const;

/** Where in its range the joint is. */
export function rangeOf(joint: Joint, angle: number): number | null {
  if (joint.lower_rad === null || joint.upper_rad === null || joint.upper_rad <= joint.lower_rad) return null;
  return Math.min(Math.max((angle - joint.lower_rad) / (joint.upper_rad - joint.lower_rad), 0), 1);
}

function rowOf(joint: Joint, i: number, display: Display, theme: Value<Theme>): [HTMLTableRowElement, Row] {
  const swatch = el('span', { class: 'swatch' }, String(i + 1));
  const button = el('button', { type: 'button', class: 'joint', 'data-joint': String(i + 1), title: `Hide or show joint ${i + 1} in the plots` },
                    swatch, el('span', { class: 'name' }, joint.name));
  const show = (): void => {
    button.setAttribute('aria-pressed', String(!display.hidden.get().has(i)));
    swatch.style.background = kPalettes[theme.get()].joints[i] as string;
  };
  show();
  display.hidden.on(show);
  theme.on(show);
  button.addEventListener('click', () => display.toggleJoint(i));
  const knob = el('span');
  const cells = Array.from({ length: 1 + kColumns.length }, () => el('td', { class: 'number' }));
  const row = el('tr', {}, el('th', { scope: 'row' }, button), cells[0] as HTMLElement,
                 el('td', { class: 'range' }, el('span', { class: 'track', 'aria-hidden': 'true' }, knob)),
                 ...cells.slice(1));
  return [row, { cells, knob }];
}

export function jointsTable(report: Report, display: Display, playback: Playback, theme: Value<Theme>): void {
  const made = report.arm.joints.map((joint, i) => rowOf(joint, i, display, theme));
  const head = el('tr');
  byId('joints').append(el('caption', { class: 'sr' }, 'Joints at the moment that is shown'), el('thead', {}, head),
                        el('tbody', {}, ...made.map(([row]) => row)));
  const pose = byId('pose');
  const moment = newMoment();
  const motion = report.motions[0];

  const showHead = (): void => {
    const units = display.units.get();
    const title = (text: string, unit: string): HTMLElement =>
      el('th', { scope: 'col', class: 'number' }, text, el('span', { class: 'unit' }, shown(unit, units).label));
    head.replaceChildren(el('th', { scope: 'col' }, 'Joint'), title('Angle', 'rad'),
                         el('th', { scope: 'col' }, 'In its range'),
                         ...kColumns.map((column) => title(column.title, column.unit)));
  };
  const show = (): void => {
    if (!motion) return;
    const units = display.units.get();
    momentAt(motion, playback.time, moment);
    const sample = playback.sample;
    const angle = shown('rad', units);
    made.forEach(([, row], i) => {
      const q = moment.joints[i] as number;
      (row.cells[0] as HTMLElement).textContent = fixed(q * angle.factor, angle.factor === 1 ? 4 : 2);
      kColumns.forEach((column, k) => {
        const value = motion[column.field][6 * sample + i] as number;
        (row.cells[k + 1] as HTMLElement).textContent = fixed(value * shown(column.unit, units).factor, angle.factor === 1 ? 4 : 2);
      });
      const share = rangeOf(report.arm.joints[i] as Joint, q);
      row.knob.hidden = share === null;
      row.knob.style.transform = `translateX(${100 * (share ?? 0)}%)`;
    });
    const length = shown('m', units);
    const speed = shown('m/s', units);
    const places = length.factor === 1 ? 4 : 1;
    const xyz = Array.from(moment.position, (v) => fixed(v * length.factor, places)).join('  ');
    const q = Array.from(moment.wxyz, (v) => fixed(v, 4)).join('  ');
    pose.replaceChildren(
      el('dt', {}, `Tool x y z [${length.label}]`), el('dd', {}, xyz),
      el('dt', {}, 'Quaternion w x y z'), el('dd', {}, q),
      el('dt', {}, `Tool speed [${speed.label}]`),
      el('dd', {}, fixed((motion.tool_speed_m_s[sample] as number) * speed.factor, places)));
  };
  display.units.on(() => { showHead(); show(); });
  playback.moved.on(show);
  showHead();
  show();
}
