// Why a request fails: the point, each solution there and why it is refused, and what would help.

import type { Branch, Explanation, FailingPoint, Remedy, Solution } from './data';
import { byId, el, icon, kIcons } from './dom';
import type { Display } from './state';
import { fixed, quantity, seconds, sentence, shown } from './units';

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

// Shows ghost `i` of the scene, or hides it.
function ghostButton(i: number, text: string, label: string, display: Display): HTMLButtonElement {
  const button = el('button', { type: 'button', class: 'show', 'data-ghost': String(i), 'aria-label': label, title: label }, text);
  const press = (): void => button.setAttribute('aria-pressed', String(display.solutions.get().has(i)));
  press();
  display.solutions.on(press);
  button.addEventListener('click', () => toggle(display, i));
  return button;
}

function solutionRow(solution: Solution, i: number, display: Display): HTMLTableRowElement {
  const angles = el('span', { class: 'angles' });
  const distance = el('td', { class: 'number' });
  const fill = (): void => {
    angles.textContent = anglesText(solution.joints_rad, display);
    distance.textContent = quantity(solution.distance_rad, 'rad', display.units.get());
  };
  fill();
  display.units.on(fill);
  const ok = solution.refused === null;
  const why = el('span', { class: 'why', 'data-state': ok ? 'ok' : 'violation' }, icon(ok ? kIcons.ok : kIcons.violation),
                 solution.refused ?? 'admissible');
  return el('tr', {}, el('td', {}, ghostButton(i, String(i + 1), `Show solution ${i + 1}`, display)),
            el('td', {}, solution.branch ?? 'solution', angles, why), distance);
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
  return el('thead', {}, el('tr', {}, ...names.map((name, i) => el('th', { scope: 'col', class: i < 2 ? '' : 'number' }, name))));
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
  const table = el('table', {}, heading('', 'Branch, joints 1 to 6, and why', 'Distance'),
                   el('tbody', {}, ...explanation.solutions.map((s, i) => solutionRow(s, i, display))));
  return [el('h3', {}, explanation.ok ? 'Solutions' : 'Solutions at the failing point', el('span', { class: 'buttons' }, all, none)),
          scrolled(table, 'Solutions at the failing point')];
}

function remedyOf(remedy: Remedy): HTMLLIElement {
  // The text may quote the keys already.
  const keys = remedy.keys && !remedy.text.includes(remedy.keys) ? remedy.keys : null;
  const code = [remedy.command, keys].filter((text) => text !== null);
  return el('li', {}, sentence(remedy.text), ...code.map((text) => el('code', {}, text)));
}

function branchRow(branch: Branch, ghost: number, display: Display): HTMLTableRowElement {
  const margin = el('td', { class: 'number' });
  const fill = (): void => { margin.textContent = quantity(branch.margin_rad, 'rad', display.units.get()); };
  fill();
  display.units.on(fill);
  return el('tr', {}, el('td', {}, ghostButton(ghost, 'Show', 'Show where this branch starts', display)),
            el('td', {}, branch.branch ?? '–',
               el('span', { class: 'why', 'data-state': branch.ok ? 'ok' : 'violation' },
                  icon(branch.ok ? kIcons.ok : kIcons.violation), branch.text)),
            el('td', { class: 'number' }, quantity(branch.duration_s, 's', 'si')), margin,
            el('td', { class: 'number' }, quantity(branch.singular_value, '', 'si')));
}

export function showExplanation(explanation: Explanation, display: Display, go: (t: number) => void): void {
  const host = byId('explanation');
  host.hidden = false;
  // The admissible solutions and the nearest of the others: where a reader looks first.
  const first = explanation.solutions.findIndex((s) => s.refused === null);
  if (explanation.solutions.length > 0) display.solutions.set(new Set([Math.max(first, 0)]));
  // The headline is in the verdict already.
  const text = explanation.text.filter((line) => line !== explanation.headline);
  if (text.length > 0) host.append(el('div', { class: 'prose' }, ...text.map((line) => el('p', {}, sentence(line)))));
  if (explanation.point && !explanation.ok) host.append(placeOf(explanation.point, display, go));
  host.append(...solutionsOf(explanation, display));
  if (explanation.remedies.length > 0) {
    host.append(el('h3', {}, 'What would help'), el('ul', { class: 'remedies' }, ...explanation.remedies.map(remedyOf)));
  }
  if (explanation.branches.length > 0) {
    const table = el('table', {}, heading('', 'Branch, and how it goes', 'Duration', 'Margin', 'Singular value'),
                     el('tbody', {}, ...explanation.branches.map((branch, i) => branchRow(branch, explanation.solutions.length + i, display))));
    host.append(el('h3', {}, 'Branches'), scrolled(table, 'Branches'));
  }
}
