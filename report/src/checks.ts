// The checks of a verdict, those of one kind together: the worst joint stands for all.

import type { Check, CheckState } from './data';
import { number, shown } from './units';
import type { UnitSystem } from './units';

export interface CheckGroup {
  readonly key: string;
  readonly worst: Check;
  readonly all: readonly Check[];
}

const kSeverity: Readonly<Record<CheckState, number>> = { violation: 3, note: 2, ok: 1, measured: 0 };

/** Of its limit; null where there is none, or it is zero. */
export function share(check: Check): number | null {
  if (check.value === null || check.limit === null || check.limit === 0) return null;
  return Math.abs(check.value / check.limit);
}

function worse(a: Check, b: Check): boolean {
  if (a.state !== b.state) return kSeverity[a.state] > kSeverity[b.state];
  const by_share = (share(a) ?? -1) - (share(b) ?? -1);
  return by_share !== 0 ? by_share > 0 : Math.abs(a.value ?? 0) > Math.abs(b.value ?? 0);
}

// What nobody chose, as that time goes on, comes after the limits.
function rankOf({ worst }: CheckGroup): number {
  return 2 * kSeverity[worst.state] + (worst.origin === 'always' ? 0 : 1);
}

/** In the order of the verdict, with what is violated first. */
export function grouped(checks: readonly Check[]): CheckGroup[] {
  const keys = [...new Set(checks.map((check) => check.key))];
  const groups = keys.map((key): CheckGroup => {
    const all = checks.filter((check) => check.key === key);
    return { key, all, worst: all.reduce((worst, check) => (worse(check, worst) ? check : worst)) };
  });
  // The order of equals stays as it is.
  return groups.sort((a, b) => rankOf(b) - rankOf(a));
}

/** Whether there is a place to go to: where nothing was found there is none. */
export function hasPlace(check: Check): boolean {
  return check.time_s !== null && !(check.state === 'ok' && check.value === 0);
}

/** Value and limit; with as many digits as tell them apart where the value is beyond. */
export function valueAndLimit(check: Check, units: UnitSystem): { value: string; limit: string; unit: string } {
  const unit = shown(check.unit, units);
  const text = (value: number | null, digits: number): string =>
    number(value === null ? null : value * unit.factor, digits);
  const beyond = check.state === 'violation' || check.state === 'note';
  let digits = 4;
  while (digits < 9 && beyond && text(check.value, digits) === text(check.limit, digits)) digits++;
  return { value: text(check.value, digits), limit: check.limit === null ? '' : text(check.limit, digits), unit: unit.label };
}
