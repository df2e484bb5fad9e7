// A motion between its samples.

import type { Motion } from './data';

/** The last sample at or before `t`; 0 before the first. */
export function sampleAt(time_s: Float64Array, t: number): number {
  let low = 0;
  let high = time_s.length - 1;
  while (low < high) {
    const middle = (low + high + 1) >> 1;
    if ((time_s[middle] as number) <= t) low = middle;
    else high = middle - 1;
  }
  return low;
}

/** The sample nearest to `t`. */
export function nearestSample(time_s: Float64Array, t: number): number {
  const before = sampleAt(time_s, t);
  const after = Math.min(before + 1, time_s.length - 1);
  return t - (time_s[before] as number) <= (time_s[after] as number) - t ? before : after;
}

export interface Moment {
  readonly joints: Float64Array;
  readonly position: Float64Array;
  readonly wxyz: Float64Array;
}

export function newMoment(): Moment {
  return { joints: new Float64Array(6), position: new Float64Array(3), wxyz: new Float64Array(4) };
}

function mix(from: Float32Array, width: number, a: number, b: number, share: number, to: Float64Array): void {
  for (let i = 0; i < width; i++) {
    const before = from[a * width + i] as number;
    to[i] = before + share * ((from[b * width + i] as number) - before);
  }
}

/** Joints and tool at `t`, in a straight line between two samples. */
export function momentAt(motion: Motion, t: number, to: Moment): void {
  const a = sampleAt(motion.time_s, t);
  const b = Math.min(a + 1, motion.samples - 1);
  const begin = motion.time_s[a] as number;
  const length = (motion.time_s[b] as number) - begin;
  const share = length > 0 ? Math.min(Math.max((t - begin) / length, 0), 1) : 0;
  mix(motion.joints_rad, 6, a, b, share, to.joints);
  mix(motion.positions_m, 3, a, b, share, to.position);

  // The two quaternions of one orientation differ in sign: the nearer one is taken.
  let dot = 0;
  for (let i = 0; i < 4; i++) {
    dot += (motion.wxyz[4 * a + i] as number) * (motion.wxyz[4 * b + i] as number);
  }
  const sign = dot < 0 ? -1 : 1;
  let norm = 0;
  for (let i = 0; i < 4; i++) {
    const value = (1 - share) * (motion.wxyz[4 * a + i] as number) +
                  share * sign * (motion.wxyz[4 * b + i] as number);
    to.wxyz[i] = value;
    norm += value * value;
  }
  norm = Math.sqrt(norm) || 1;
  for (let i = 0; i < 4; i++) to.wxyz[i] = (to.wxyz[i] as number) / norm;
}

export function duration(motion: Motion): number {
  return motion.time_s[motion.samples - 1] as number;
}
