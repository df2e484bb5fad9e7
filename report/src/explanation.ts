// Why a request fails: the point, each solution there and why it is refused, and what would help.

import type { Branch, Explanation, FailingPoint, Remedy, Solution } from './data';
import { byId, el, icon, kIcons } from './dom';
import type { Display } from './state';
import { fixed, quantity, seconds, shown } from './units';

function anglesText(joints: readonly number[], display: Display): string {
  const unit = shown('rad', display.units.get());
  const places = unit.factor === 1 ? 4 : 2;
  return joints.map((q) => fixed(q * unit.factor, places)).join('  ');
}

function toggle(display: Display, i: number): void {
  const shown_now = new Set(display.solutions.get());
  if (!shown_now.delete(i)) shown_now.add(i);
  display.solutions.set(shown_now);
}

function solutionRow(solution: Solution, i: number, display: Display): HTMLTableRowElement {
  const button = el('button', { type: 'button', class: 'show', 'data-solution': String(i) },
                    `Solution ${i + 1}`);
  const angles = el('td', { class: 'angles' });
  const distance = el('td', { class: 'number' });
  const fill = (): void => {
    angles.textContent = anglesText(solution.joints_rad, display);
    distance.textContent = quantity(solution.distance_rad, 'rad', display.units.get());
  };
  const press = (): void => button.setAttribute('aria-pressed', String(display.solutions.get().has(i)));
  fill();
  press();
  display.units.on(fill);
  display.solutions.on(press);
  button.addEventListener('click', () => toggle(display, i));
  const ok = solution.refused === null;
  return el('tr', {}, el('td', {}, button), el('td', {}, solution.branch ?? '–'), angles, distance,
            el('td', { class: 'why', 'data-state': ok ? 'ok' : 'violation' }, icon(ok ? kIcons.ok : kIcons.violation),
               solution.refused ?? 'admissible'));
}

// Where it fails, and how far that is.
function placeOf(point: FailingPoint, display: Display, go: (t: number) => void): HTMLElement {
  const list = el('dl', { class: 'facts' });
  const fill = (): void => {
    const units = display.units.get();
    const facts: [string, string][] = [
      ['Failing point', `${point.position_m.map((v) => quantity(v, 'm', units)).join(', ')}`],
      ...(point.along === null ? [] : [['Along the way', `${(100 * point.along).toFixed(1)} %`] as [string, string]]),
      ...(point.distance_m === null ? [] : [['From the start', quantity(point.distance_m, 'm', units)] as [string, string]]),
    ];
    list.replaceChildren(...facts.flatMap(([name, value]) => [el('dt', {}, name), el('dd', {}, value)]));
    const time_s = point.time_s;
    if (time_s === null) return;
    const button = el('button', { type: 'button', class: 'plain' }, seconds(time_s));
    button.addEventListener('click', () => go(time_s));
    list.append(el('dt', {}, 'At'), el('dd', {}, button));
  };
  fill();
  display.units.on(fill);
  return list;
}

function heading(...names: string[]): HTMLTableSectionElement {
  return el('thead', {}, el('tr', {}, ...names.map((name) => el('th', { scope: 'col' }, name))));
}

function scrolled(table: HTMLTableElement, name: string): HTMLElement {
  return el('div', { class: 'scrolled', tabindex: '0', role: 'region', 'aria-label': name }, table);
}

function solutionsOf(explanation: Explanation, display: Display): HTMLElement[] {
  if (explanation.solutions.length === 0) return [];
  const all = el('button', { type: 'button', class: 'plain' }, 'Show all in the picture');
  const none = el('button', { type: 'button', class: 'plain' }, 'None');
  all.addEventListener('click', () => display.solutions.set(new Set(explanation.solutions.keys())));
  none.addEventListener('click', () => display.solutions.set(new Set()));
  const table = el('table', {}, heading('', 'Branch', 'Joints 1 to 6', 'Distance', 'Why'),
                   el('tbody', {}, ...explanation.solutions.map((s, i) => solutionRow(s, i, display))));
  return [el('h3', {}, explanation.ok ? 'Solutions' : 'Solutions at the failing point', el('span', { class: 'buttons' }, all, none)),
          scrolled(table, 'Solutions at the failing point')];
}

function remedyOf(remedy: Remedy): HTMLLIElement {
  return el('li', {}, remedy.text, remedy.command === null ? null : el('code', {}, remedy.command));
}

function branchRow(branch: Branch, display: Display): HTMLTableRowElement {
  const margin = el('td', { class: 'number' });
  const fill = (): void => { margin.textContent = quantity(branch.margin_rad, 'rad', display.units.get()); };
  fill();
  display.units.on(fill);
  return el('tr', {}, el('td', { 'data-state': branch.ok ? 'ok' : 'violation' },
                         icon(branch.ok ? kIcons.ok : kIcons.violation), branch.branch ?? '–'),
            el('td', {}, branch.text),
            el('td', { class: 'number' }, quantity(branch.duration_s, 's', 'si')), margin,
            el('td', { class: 'number' }, quantity(branch.singular_value, '', 'si')));
}

export function showExplanation(explanation: Explanation, display: Display, go: (t: number) => void): void {
  const host = byId('explanation');
  host.hidden = false;
  // The admissible solutions and the nearest of the others: where a reader looks first.
  const first = explanation.solutions.findIndex((s) => s.refused === null);
  if (explanation.solutions.length > 0) display.solutions.set(new Set([Math.max(first, 0)]));
  if (explanation.text.length > 0) {
    host.append(el('div', { class: 'prose' }, ...explanation.text.map((line) => el('p', {}, line))));
  }
  if (explanation.point && !explanation.ok) host.append(placeOf(explanation.point, display, go));
  host.append(...solutionsOf(explanation, display));
  if (explanation.remedies.length > 0) {
    host.append(el('h3', {}, 'What would help'), el('ul', { class: 'remedies' }, ...explanation.remedies.map(remedyOf)));
  }
  if (explanation.branches.length > 0) {
    const table = el('table', {}, heading('Branch', 'How it goes', 'Duration', 'Margin', 'Singular value'),
                     el('tbody', {}, ...explanation.branches.map((branch) => branchRow(branch, display))));
    host.append(el('h3', {}, 'Branches'), scrolled(table, 'Branches'));
  }
}
