// What was checked: the worst value of each check, its limit, and where. A click goes there.

import { grouped, hasPlace, share, valueAndLimit } from './checks';
import type { CheckGroup } from './checks';
import type { Check, CheckState, Motion, Report } from './data';
import { byId, el, icon, kIcons } from './dom';
import type { Playback } from './playback';
import type { Display } from './state';
import { seconds } from './units';

const kStateWord: Readonly<Record<CheckState, string>> = {
  ok: 'within', violation: 'violated', note: 'note', measured: 'measured',
};

const kOrigins: Readonly<Record<string, string>> = {
  described: 'of the description', assumed: 'assumed', option: 'given', always: 'always held',
};

type Go = (check: Check) => void;

function sentence(text: string): string {
  return text.charAt(0).toUpperCase() + text.slice(1);
}

function placeText(check: Check): string {
  if (!hasPlace(check)) return '';
  const where = check.joint === null ? [] : [`joint ${check.joint}`];
  return [...where, seconds(check.time_s ?? 0)].join(' at ');
}

function spoken(check: Check, display: Display): string {
  const { value, limit, unit } = valueAndLimit(check, display.units.get());
  return `${check.title} ${value}${limit ? ` of ${limit}` : ''} ${unit}, ${placeText(check) || 'nowhere'}, ${kStateWord[check.state]}`;
}

/** Keeps `fill` done in the units that the reader has chosen. */
function inUnits(display: Display, fill: () => void): void {
  fill();
  display.units.on(fill);
}

// One bar to a joint, or one for all: how much of the limit is used.
function meters(group: CheckGroup): HTMLElement {
  const host = el('span', { class: 'meters', 'aria-hidden': 'true' });
  for (const check of group.all) {
    const part = share(check);
    if (part === null) continue;
    const bar = el('span', { class: 'bar' });
    bar.style.width = `${Math.min(100, 100 * part)}%`;
    host.append(el('span', { class: 'meter', 'data-state': check.state }, bar));
  }
  return host;
}

// What nobody chose as a limit, and is kept: in a line of its own.
function plain(group: CheckGroup): boolean {
  return group.worst.state === 'ok' && group.worst.origin === 'always';
}

function list(groups: readonly CheckGroup[], name: string, display: Display, go: Go): HTMLElement[] {
  if (groups.length === 0) return [];
  return [el('ul', { class: name }, ...groups.map((group) => card(group, display, go)))];
}

function card(group: CheckGroup, display: Display, go: Go): HTMLLIElement {
  const check = group.worst;
  const value = el('span', { class: 'value' });
  const button = el('button', { type: 'button', class: plain(group) ? 'check chip' : 'check', 'data-state': check.state, 'data-check': check.key },
                    el('span', { class: 'title' }, icon(kIcons[check.state]), sentence(check.title)), value, meters(group),
                    el('span', { class: 'place' }, placeText(check), check.origin === 'assumed' ? el('span', {}, 'assumed limit') : null));
  inUnits(display, () => {
    const { value: number, limit, unit } = valueAndLimit(check, display.units.get());
    value.replaceChildren(el('strong', {}, number), `${limit ? ` of ${limit}` : ''} ${unit}`);
    button.setAttribute('aria-label', spoken(check, display));
  });
  button.disabled = !hasPlace(check);
  button.addEventListener('click', () => go(check));
  return el('li', {}, button);
}

function row(check: Check, display: Display, go: Go): HTMLTableRowElement {
  const place = el('button', { type: 'button', class: 'plain' }, hasPlace(check) ? seconds(check.time_s ?? 0) : '–');
  place.disabled = !hasPlace(check);
  place.addEventListener('click', () => go(check));
  const cells = ['value', 'limit', 'unit'].map((name) => el('td', { class: name === 'unit' ? '' : 'number' }));
  inUnits(display, () => {
    const { value, limit, unit } = valueAndLimit(check, display.units.get());
    [value, limit, unit].forEach((text, i) => { (cells[i] as HTMLElement).textContent = text; });
  });
  const part = share(check);
  return el('tr', { 'data-state': check.state },
            el('td', { 'data-state': check.state }, icon(kIcons[check.state]), sentence(check.title)),
            el('td', {}, check.joint === null ? '' : String(check.joint)), ...cells,
            el('td', { class: 'number' }, part === null ? '' : `${(100 * part).toFixed(1)} %`),
            el('td', {}, kOrigins[check.origin ?? ''] ?? ''), el('td', { class: 'number' }, place));
}

function everyCheck(motion: Motion, several: boolean, display: Display, go: Go): HTMLElement {
  const names = ['Check', 'Joint', 'Worst value', 'Limit', 'Unit', 'Used', 'Limit is', 'At'];
  const numeric = new Set(['Worst value', 'Limit', 'Used', 'At']);
  const head = names.map((name) => el('th', { scope: 'col', class: numeric.has(name) ? 'number' : '' }, name));
  const table = el('table', { class: 'every' }, el('thead', {}, el('tr', {}, ...head)),
                   el('tbody', {}, ...motion.verdict.checks.map((check) => row(check, display, go))));
  const name = several ? ` of ${motion.name}` : '';
  return el('details', { class: 'folded' },
            el('summary', {}, `Every check and measure${name}, joint by joint (${motion.verdict.checks.length})`),
            el('div', { class: 'scrolled', tabindex: '0', role: 'region', 'aria-label': 'Every check' }, table));
}

function headline(ok: boolean, text: string, name: string | null): HTMLElement {
  return el('p', { class: 'headline', 'data-ok': String(ok) }, icon(ok ? kIcons.ok : kIcons.violation),
            el('span', { class: 'says' }, sentence(text)), name === null ? null : el('span', { class: 'of' }, name));
}

export function showVerdict(report: Report, display: Display, playback: Playback): void {
  const host = byId('verdict');
  const { motions, explanation } = report;
  const go: Go = (check) => {
    playback.playing.set(false);
    if (check.time_s !== null) playback.seek(check.time_s);
    byId('live').textContent = spoken(check, display);
  };
  if (explanation) host.append(headline(explanation.ok, explanation.headline, null));
  motions.forEach((motion, m) => {
    const name = motions.length > 1 ? motion.name : explanation ? 'as far as it gets' : null;
    host.append(headline(motion.verdict.ok, motion.verdict.headline, name));
    const judged = grouped(motion.verdict.checks).filter((group) => group.worst.state !== 'measured');
    // A motion that comes second has its checks in the table alone.
    if (m === 0) {
      host.append(...list(judged.filter((group) => !plain(group)), 'checks', display, go),
                  ...list(judged.filter(plain), 'chips', display, go));
    }
    if (motion.verdict.checks.length > 0) host.append(everyCheck(motion, motions.length > 1, display, go));
  });
}
