// The cell that is looked at: what was found there, and the best joints.

import type { Arm, Joint } from './data';
import { byId, el, icon, kIcons } from './dom';
import { rangeOf } from './joints_table';
import { centreOf, jointsOf } from './reach_data';
import type { Reach } from './reach_data';
import { quantitiesOf, valueText } from './reach_quantities';
import type { CellQuantity } from './reach_quantities';
import type { ReachState } from './reach_state';
import type { Display } from './state';
import type { UnitSystem } from './units';
import { fixed, shown } from './units';

export function placeText(state: ReachState, cell: readonly [number, number, number], units: UnitSystem): string {
  const unit = shown('m', units);
  const at = centreOf(state.reach.grid, cell).map((v) => fixed(v * unit.factor, unit.factor === 1 ? 3 : 0));
  return `x ${at[0]}, y ${at[1]}, z ${at[2]} ${unit.label}`;
}

/** What is counted in each cell. */
export function triedIn(reach: Reach): string {
  return reach.kind === 'placement' ? 'poses' : 'directions';
}

function marginOf(joint: Joint, angle: number): number {
  return Math.min(angle - (joint.lower_rad ?? -Infinity), (joint.upper_rad ?? Infinity) - angle);
}

/** A quantity of a cell in words. */
export function cellText(reach: Reach, asked: CellQuantity, cell: number, units: UnitSystem): string {
  const row = reach.row[cell] as number;
  return row < 0 ? '–' : valueText(asked, asked.value(reach, cell, row), units);
}

function facts(reach: Reach, cell: number, units: UnitSystem): HTMLElement {
  const list = el('dl', { class: 'facts' });
  for (const asked of quantitiesOf(reach)) {
    const { key, title } = asked;
    const value = cellText(reach, asked, cell, units);
    const of = key === 'reached_share' ? el('small', {}, ` ${reach.reached_directions[cell]} of ${reach.directions}`) : null;
    list.append(el('div', {}, el('dt', {}, title), el('dd', { 'data-value': key }, value, of)));
  }
  return list;
}

function jointsOfCell(arm: Arm, joints: ArrayLike<number>, units: UnitSystem): HTMLElement {
  const angle = shown('rad', units);
  const head = (text: string, unit: string): HTMLElement =>
    el('th', { scope: 'col', class: 'number' }, text, unit ? el('span', { class: 'unit' }, unit) : '');
  const rows = arm.joints.map((joint, i) => {
    const value = joints[i] as number;
    const margin = marginOf(joint, value);
    const knob = el('span');
    const share = rangeOf(joint, value);
    knob.hidden = share === null;
    knob.style.transform = `translateX(${100 * (share ?? 0)}%)`;
    const places = angle.factor === 1 ? 4 : 2;
    return el('tr', {}, el('th', { scope: 'row' }, String(i + 1)),
              el('td', { class: 'number' }, fixed(value * angle.factor, places)),
              el('td', { class: 'range' }, el('span', { class: 'track', 'aria-hidden': 'true' }, knob)),
              el('td', { class: 'number' }, margin === Infinity ? 'no limit' : fixed(margin * angle.factor, places)));
  });
  return el('table', { class: 'joints-of-cell' }, el('caption', { class: 'sr' }, 'Joints as the arm is drawn'),
            el('thead', {}, el('tr', {}, el('th', { scope: 'col' }, 'Joint'), head('Angle', angle.label),
                               el('th', { scope: 'col' }, 'In its range'), head('To its limit', angle.label))),
            el('tbody', {}, ...rows));
}

export function reachCell(arm: Arm, state: ReachState, display: Display): void {
  const host = byId('cell');
  const { reach } = state;
  const show = (): void => {
    const units = display.units.get();
    const cell = state.cell.get();
    const joints = jointsOf(reach, cell);
    const best = reach.summary.best_cell?.cell === cell;
    const place = placeText(state, state.index, units);
    const tried = triedIn(reach);
    const title = el('h2', {}, best ? 'Best cell' : `Cell ${cell}`, el('span', { class: 'place' }, place));
    if (joints) host.replaceChildren(title, facts(reach, cell, units), jointsOfCell(arm, joints, units));
    else {
      const missed = reach.kind === 'placement' ? 'None of the poses is reached from here.' :
        'Nothing reaches this cell, from any direction that was tried.';
      host.replaceChildren(title, el('p', { class: 'missed' }, icon(kIcons.violation),
                                     el('span', {}, missed, el('br'), 'The ghost is the arm where it was before.')));
    }
    byId('live').textContent = joints ? `${place}: ${reach.reached_directions[cell]} of ${reach.directions} ${tried}` : `${place}: nothing is reached`;
  };
  show();
  state.cell.on(show);
  display.units.on(show);
}
