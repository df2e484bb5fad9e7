// Fewer points to draw, with the same picture: of each column of the plot the lowest and the highest
// value. For drawing alone: what is checked is checked on all samples, by the tool.

import { sampleAt } from './sampling';

export type Column = (number | null)[];

/** Value of series `series` at sample `i`. */
export interface Source {
  readonly time_s: Float64Array;
  readonly values: Float32Array;
  readonly width: number;
}

function shown(value: number): number | null {
  return Number.isFinite(value) ? value : null;
}

/** Borders of the columns: samples [borders[k], borders[k + 1]) are drawn as two points. */
export function borders(time_s: Float64Array, begin: number, end: number, columns: number): number[] {
  const first = Math.max(sampleAt(time_s, begin) - 1, 0);
  const last = Math.min(sampleAt(time_s, end) + 2, time_s.length);
  const count = last - first;
  const result: number[] = [];
  if (count <= 2 * columns) {
    for (let i = first; i <= last; i++) result.push(i);
    return result;
  }
  for (let k = 0; k <= columns; k++) result.push(first + Math.round((k * count) / columns));
  return result;
}

export function timesOf(time_s: Float64Array, at: readonly number[]): number[] {
  const times: number[] = [];
  for (let k = 0; k + 1 < at.length; k++) {
    const a = at[k] as number;
    const b = at[k + 1] as number;
    times.push(time_s[a] as number);
    if (b - a > 1) times.push(time_s[b - 1] as number);
  }
  return times;
}

/** The values of one series that go with `timesOf`, times `factor`. */
export function valuesOf(source: Source, series: number, at: readonly number[], factor: number): Column {
  const { values, width } = source;
  const column: Column = [];
  for (let k = 0; k + 1 < at.length; k++) {
    const a = at[k] as number;
    const b = at[k + 1] as number;
    if (b - a === 1) {
      column.push(shown((values[a * width + series] as number) * factor));
      continue;
    }
    let low = Infinity;
    let high = -Infinity;
    let low_at = a;
    let high_at = a;
    for (let i = a; i < b; i++) {
      const value = values[i * width + series] as number;
      if (value < low) { low = value; low_at = i; }
      if (value > high) { high = value; high_at = i; }
    }
    const first = low_at <= high_at ? low : high;
    const second = low_at <= high_at ? high : low;
    column.push(shown(first * factor), shown(second * factor));
  }
  return column;
}
