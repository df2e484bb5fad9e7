// Units as they are shown. Data is in rad and m throughout; degrees and millimetres are how most
// people read a robot's numbers, so they come first.

export type UnitSystem = 'workshop' | 'si';

export interface Unit {
  readonly factor: number;
  readonly label: string;
}

const kDegPerRad = 180 / Math.PI;
const kMmPerM = 1000;

/** How a quantity given in `unit` of the data, as "rad/s", is shown. */
export function shown(unit: string, system: UnitSystem): Unit {
  if (unit === 'share') return { factor: 100, label: '%' };
  if (unit === 'count') return { factor: 1, label: '' };
  if (system === 'si') return { factor: 1, label: pretty(unit) };
  if (/^rad\b/.test(unit)) return { factor: kDegPerRad, label: pretty(unit.replace(/^rad/, '°')) };
  if (/^m\b/.test(unit)) return { factor: kMmPerM, label: pretty(unit.replace(/^m/, 'mm')) };
  return { factor: 1, label: pretty(unit) };
}

function pretty(unit: string): string {
  return unit.replace('^2', '²').replace('^3', '³');
}

/** A number with `digits` significant places, never in powers of ten where a plain one will do. */
export function number(value: number | null, digits = 4): string {
  if (value === null || !Number.isFinite(value)) return '–';
  const size = Math.abs(value);
  if (size === 0) return '0';
  if (size < 1e-4 || size >= 1e7) return value.toExponential(Math.max(0, digits - 2)).replace('e+', 'e').replaceAll('-', '−');
  const places = Math.max(0, digits - 1 - Math.floor(Math.log10(size)));
  return value.toFixed(Math.min(places, 6)).replace('-', '−');
}

/** A number as short as it is at `digits` significant places. */
export function plain(value: number, digits = 4): string {
  return String(Number(value.toPrecision(digits))).replace('-', '−');
}

/** A number of fixed places, for columns whose digits must not jump about. */
export function fixed(value: number, places: number): string {
  if (!Number.isFinite(value)) return '–';
  const text = value.toFixed(places);
  return (Number(text) === 0 ? text.replace('-', '') : text).replace('-', '−');
}

export function quantity(value: number | null, unit: string, system: UnitSystem): string {
  const u = shown(unit, system);
  if (value === null) return '–';
  // A share of all is 100 %, not 100.0 %.
  const text = unit === 'share' ? plain(value * u.factor, 3) : number(value * u.factor);
  if (u.label === '°') return text + '°';
  return u.label ? `${text} ${u.label}` : text;
}

export function seconds(value: number): string {
  return `${fixed(value, 3)} s`;
}

export function sentence(text: string): string {
  return text.charAt(0).toUpperCase() + text.slice(1);
}
