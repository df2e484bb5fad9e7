// What the study comes to, on top; and what was studied.

import { byId, el } from './dom';
import { placeText, triedIn } from './reach_cell';
import { indexOf } from './reach_data';
import type { ReachState } from './reach_state';
import type { Display } from './state';
import { number, plain, shown } from './units';
import type { UnitSystem } from './units';

function percent(share: number): string {
  return `${number(100 * share, 3)} %`;
}

function card(title: string, value: string, more: string): HTMLElement {
  return el('div', { class: 'check' }, el('span', { class: 'title' }, title), el('strong', {}, value), el('span', { class: 'place' }, more));
}

function cards(state: ReachState, units: UnitSystem): HTMLElement[] {
  const { cells, directions, summary } = state.reach;
  const count = (n: number): string => n.toLocaleString('en');
  const tried = triedIn(state.reach);
  const whole = summary.cells_reached_from_all_directions;
  const list = [
    card(state.reach.kind === 'placement' ? 'Cells with a pose reached' : 'Cells reached', percent(summary.cells_reached / cells), `${count(summary.cells_reached)} of ${count(cells)}`),
    card(`All ${count(directions)} ${tried} reached`, percent(whole / cells), `${count(whole)} cells`),
    card(`Mean share of ${tried}`, percent(summary.mean_share_of_directions), 'over all cells'),
  ];
  const best = summary.best_cell;
  if (best) {
    const reached = state.reach.reached_directions[best.cell] as number;
    const button = el('button', { type: 'button', class: 'check' }, el('span', { class: 'title' }, 'Best cell'),
                      el('strong', {}, `${count(reached)} of ${count(directions)} ${tried}`),
                      el('span', { class: 'place' }, placeText(state, indexOf(state.reach.grid, best.cell), units)));
    button.addEventListener('click', () => state.best());
    list.push(button);
  }
  return list.map((each) => el('li', {}, each));
}

// Whatever the description has beyond this is in the file.
function studied(state: ReachState, units: UnitSystem): [string, string][] {
  const { study } = state.reach.summary;
  const { count, step_m } = state.reach.grid;
  const unit = shown('m', units);
  const [low, high] = ['box_min_m', 'box_max_m'].map((key) =>
    (study[key] as number[]).map((v) => plain(v * unit.factor))) as [string[], string[]];
  const list: [string, string][] = [
    ['Box', [...'xyz'].map((axis, i) => `${axis} ${low[i]} to ${high[i]}`).join(', ') + ` ${unit.label}`],
    ['Cells', `${count.join(' × ')} of ${plain(step_m * unit.factor)} ${unit.label}`],
  ];
  const { line_m: line, line_direction: along } = study;
  const vector = (v: unknown): string => (v as number[]).map((x) => plain(x)).join(', ');
  if (typeof line === 'number' && line > 0) {
    list.push(['Arriving straight', `for ${plain(line * unit.factor)} ${unit.label} along ${along ? vector(along) : 'the tool\'s z axis'}`]);
  }
  const cone = study['tilt_cone_rad'];
  if (typeof cone !== 'number') return [...list, ['Poses', String(state.reach.directions)]];
  const axis = vector(study['tilt_axis']);
  const all = cone > Math.PI - 1e-9;
  list.push(['Directions', `${state.reach.directions}${all ? ', all around' : ` within ${plain(cone * shown('rad', units).factor)}${units === 'si' ? ' rad' : '°'} of ${axis}`}`],
            ['Rolls of each', String(study['spins'])]);
  return list;
}

export function reachSummary(state: ReachState, display: Display): void {
  const list = el('ul', { class: 'checks' });
  const facts = el('dl', { class: 'facts' });
  byId('verdict').append(list);
  byId('study').append(el('h2', {}, 'What was studied'), facts);
  const show = (): void => {
    const units = display.units.get();
    list.replaceChildren(...cards(state, units));
    facts.replaceChildren(...studied(state, units).map(([name, value]) => el('div', {}, el('dt', {}, name), el('dd', {}, value))));
  };
  show();
  display.units.on(show);
}
