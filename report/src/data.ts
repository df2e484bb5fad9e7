// What the page shows: the data as the tool writes it, and as the page works with it.

import { float32, float64, uint32 } from './base64';
import { reachOf } from './reach_data';
import type { Reach } from './reach_data';

export const kFormat = 'qal-report-1';

export type Triple = readonly [number, number, number];
export type Quad = readonly [number, number, number, number];

export interface Joint {
  readonly name: string;
  readonly lower_rad: number | null;
  readonly upper_rad: number | null;
  readonly velocity_rad_s: number | null;
  readonly acceleration_rad_s2: number | null;
  readonly jerk_rad_s3: number | null;
  readonly motor_rpm_per_rad_s: number | null;
  readonly motor_speed_rpm: number | null;
  readonly assumed: readonly string[];
}

/** A joint's axis with all joints at zero, in the base frame. */
export interface Axis {
  readonly point_m: Triple;
  readonly direction: Triple;
}

export interface Body {
  readonly link: number;
  readonly placement: readonly number[];
  readonly positions: Float32Array;
  readonly indices: Uint32Array;
  readonly color: Triple | null;
}

export interface Arm {
  readonly name: string;
  readonly about: string;
  readonly joints: readonly Joint[];
  readonly axes: readonly Axis[];
  readonly tool: { readonly position_m: Triple; readonly wxyz: Quad };
  readonly bodies: readonly Body[];
  readonly notes: readonly string[];
}

export type CheckState = 'ok' | 'violation' | 'note' | 'measured';

export interface Check {
  readonly key: string;
  readonly title: string;
  readonly unit: string;
  readonly joint: number | null;
  readonly value: number | null;
  readonly limit: number | null;
  readonly origin: string | null;
  readonly sample: number | null;
  readonly time_s: number | null;
  readonly state: CheckState;
}

export interface Verdict {
  readonly ok: boolean;
  readonly headline: string;
  readonly checks: readonly Check[];
}

export interface Corner {
  readonly step: number;
  readonly position_m: Triple;
  readonly radius_m: number;
  readonly deviation_m: number | null;
  readonly begin_s: number;
  readonly end_s: number;
}

export interface Step {
  readonly begin_s: number;
  readonly name: string;
}

/** A motion, sample by sample: 6 joints, 3 coordinates or 4 of a quaternion to a sample. */
export interface Motion {
  readonly name: string;
  readonly samples: number;
  readonly time_s: Float64Array;
  readonly joints_rad: Float32Array;
  readonly velocities_rad_s: Float32Array;
  readonly accelerations_rad_s2: Float32Array;
  readonly jerks_rad_s3: Float32Array;
  readonly rates: string;
  readonly positions_m: Float32Array;
  readonly wxyz: Float32Array;
  readonly tool_speed_m_s: Float32Array;
  readonly limit_margin_rad: Float32Array;
  readonly singular_value: Float32Array;
  readonly steps: readonly Step[];
  readonly corners: readonly Corner[];
  readonly verdict: Verdict;
  readonly notes: readonly string[];
}

export interface FailingPoint {
  readonly index: number | null;
  readonly along: number | null;
  readonly distance_m: number | null;
  readonly time_s: number | null;
  readonly position_m: Triple;
  readonly wxyz: Quad;
}

export interface Solution {
  readonly joints_rad: readonly number[];
  readonly branch: string | null;
  readonly distance_rad: number | null;
  readonly refused: string | null;
}

export interface Remedy {
  readonly kind: string;
  readonly text: string;
  readonly command: string | null;
  /** Lines for a program or an arm's file. */
  readonly keys?: string | null;
}

export interface Branch {
  readonly branch: string | null;
  readonly joints_rad: readonly number[];
  readonly ok: boolean;
  readonly text: string;
  readonly duration_s: number | null;
  readonly margin_rad: number | null;
  readonly singular_value: number | null;
}

export interface Explanation {
  readonly ok: boolean;
  readonly headline: string;
  readonly cause: string | null;
  readonly text: readonly string[];
  readonly point: FailingPoint | null;
  /** The joints from which the failing point is sought. */
  readonly before_rad?: readonly number[] | null;
  readonly path_m: readonly Triple[];
  readonly solutions: readonly Solution[];
  readonly remedies: readonly Remedy[];
  readonly branches: readonly Branch[];
}

export interface Report {
  readonly tool: string;
  readonly title: string;
  readonly arm: Arm;
  readonly motions: readonly Motion[];
  readonly explanation: Explanation | null;
  /** Of a reach study, which has no motions. */
  readonly reach: Reach | null;
}

/** What JSON holds before its arrays are read; a field that isn't known here is passed over. */
export type Raw = Record<string, unknown>;

function asRaw(value: unknown, what: string): Raw {
  if (typeof value !== 'object' || value === null) throw new Error(`${what} is missing`);
  return value as Raw;
}

function bodyOf(raw: Raw, place: string): Body {
  return {
    ...(raw as unknown as Body),
    positions: float32(raw['positions'] as string, `${place}: positions`),
    indices: uint32(raw['indices'] as string, `${place}: indices`),
  };
}

function motionOf(raw: Raw, place: string): Motion {
  const samples = raw['samples'] as number;
  const numbers = (key: string, width: number): Float32Array => {
    const values = float32(raw[key] as string, `${place}: ${key}`);
    if (values.length !== samples * width) {
      throw new Error(`${place}: ${key} has ${values.length} values, not ${samples} x ${width}`);
    }
    return values;
  };
  const time_s = float64(raw['time_s'] as string, `${place}: time_s`);
  if (time_s.length !== samples || samples < 1) {
    throw new Error(`${place}: time_s has ${time_s.length} values, not ${samples} (at least 1)`);
  }
  return {
    ...(raw as unknown as Motion),
    time_s,
    joints_rad: numbers('joints_rad', 6),
    velocities_rad_s: numbers('velocities_rad_s', 6),
    accelerations_rad_s2: numbers('accelerations_rad_s2', 6),
    jerks_rad_s3: numbers('jerks_rad_s3', 6),
    positions_m: numbers('positions_m', 3),
    wxyz: numbers('wxyz', 4),
    tool_speed_m_s: numbers('tool_speed_m_s', 1),
    limit_margin_rad: numbers('limit_margin_rad', 1),
    singular_value: numbers('singular_value', 1),
  };
}

/** Reads the text that the tool put into the page. Throws what a reader can be told. */
export function readReport(text: string): Report {
  let parsed: unknown;
  try {
    parsed = JSON.parse(text);
  } catch {
    throw new Error('This page holds no report. It is made by: qal report motion.csv -o report.html');
  }
  const raw = asRaw(parsed, 'the report');
  if (raw['format'] !== kFormat) {
    throw new Error(`This page reads ${kFormat}, not ${String(raw['format'])}: make it anew by qal report.`);
  }
  const arm = asRaw(raw['arm'], 'the arm');
  const bodies = (arm['bodies'] as Raw[]).map((body, i) => bodyOf(body, `mesh ${i + 1}`));
  const motions = (raw['motions'] as Raw[]).map((motion, i) => motionOf(motion, `motion ${i + 1}`));
  return {
    ...(raw as unknown as Report),
    arm: { ...(arm as unknown as Arm), bodies },
    motions,
    explanation: (raw['explanation'] ?? null) as Explanation | null,
    reach: raw['reach'] ? reachOf(asRaw(raw['reach'], 'the reach study')) : null,
  };
}
