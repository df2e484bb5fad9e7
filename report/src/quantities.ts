// What is plotted over time.

import type { Arm, Check, Motion } from './data';
import type { Source } from './decimate';
import { number } from './units';

export interface Bound {
  readonly value: number;
  /** Joint 0 to 5 it holds for; null: for the whole plot. */
  readonly joint: number | null;
  readonly assumed: boolean;
}

export interface Quantity {
  readonly key: string;
  readonly title: string;
  /** As the data has it, before the reader's choice of units. */
  readonly unit: string;
  /** A line for each joint, or one line. */
  readonly per_joint: boolean;
  readonly bounds: readonly Bound[];
  /** Always in the picture: 0 for a distance. */
  readonly from: number | null;
  source(motion: Motion): Source;
  /** Whether a check of the verdict is about this quantity. */
  matches(check: Check): boolean;
}

function motorSpeeds(arm: Arm, motion: Motion): Float32Array {
  const speeds = new Float32Array(motion.velocities_rad_s.length);
  for (let i = 0; i < speeds.length; i++) {
    speeds[i] = (motion.velocities_rad_s[i] as number) * (arm.joints[i % 6]?.motor_rpm_per_rad_s ?? NaN);
  }
  return speeds;
}

type LimitKey = 'velocity_rad_s' | 'acceleration_rad_s2' | 'jerk_rad_s3' | 'motor_speed_rpm';

function bothWays(arm: Arm, key: LimitKey): Bound[] {
  return arm.joints.flatMap((joint, i) => {
    const limit = joint[key];
    if (limit === null || limit === undefined) return [];
    const assumed = joint.assumed.includes(key);
    return [{ value: limit, joint: i, assumed }, { value: -limit, joint: i, assumed }];
  });
}

function range(arm: Arm): Bound[] {
  return arm.joints.flatMap((joint, i) =>
    [joint.lower_rad, joint.upper_rad].flatMap((value) =>
      value === null ? [] : [{ value, joint: i, assumed: false }]));
}

type Field = 'joints_rad' | 'velocities_rad_s' | 'accelerations_rad_s2' | 'jerks_rad_s3' | 'tool_speed_m_s' |
             'limit_margin_rad' | 'singular_value';

function field(name: Field, width: 1 | 6): (motion: Motion) => Source {
  return (motion) => ({ time_s: motion.time_s, values: motion[name], width });
}

function about(pattern: RegExp): (check: Check) => boolean {
  return (check) => pattern.test(check.key);
}

export function quantitiesOf(arm: Arm): Quantity[] {
  const joint = { per_joint: true, from: null };
  const one = { per_joint: false, from: 0 };
  const motors = arm.joints.some((j) => typeof j.motor_rpm_per_rad_s === 'number');
  const computed = new Map<Motion, Float32Array>();
  const motor_source = (motion: Motion): Source => {
    const values = computed.get(motion) ?? motorSpeeds(arm, motion);
    computed.set(motion, values);
    return { time_s: motion.time_s, values, width: 6 };
  };
  return [
    { ...joint, key: 'angle', title: 'Joint angle', unit: 'rad', bounds: range(arm),
      source: field('joints_rad', 6), matches: about(/^beyond_range/) },
    { ...joint, key: 'velocity', title: 'Joint speed', unit: 'rad/s', bounds: bothWays(arm, 'velocity_rad_s'),
      source: field('velocities_rad_s', 6), matches: about(/^joint_speed/) },
    { ...joint, key: 'acceleration', title: 'Joint acceleration', unit: 'rad/s^2',
      bounds: bothWays(arm, 'acceleration_rad_s2'), source: field('accelerations_rad_s2', 6),
      matches: about(/^joint_acceleration/) },
    { ...joint, key: 'jerk', title: 'Joint jerk', unit: 'rad/s^3', bounds: bothWays(arm, 'jerk_rad_s3'),
      source: field('jerks_rad_s3', 6), matches: about(/^joint_jerk/) },
    ...(motors ? [{ ...joint, key: 'motor', title: 'Motor speed', unit: 'rpm', bounds: bothWays(arm, 'motor_speed_rpm'),
                    source: motor_source, matches: about(/^motor/) }] : []),
    { ...one, key: 'tool', title: 'Tool speed', unit: 'm/s', bounds: [], source: field('tool_speed_m_s', 1),
      matches: about(/^tool_speed/) },
    { ...one, key: 'margin', title: 'Margin to the nearest joint limit', unit: 'rad',
      bounds: [{ value: 0, joint: null, assumed: false }], source: field('limit_margin_rad', 1), matches: () => false },
    { ...one, key: 'singular', title: 'Margin to singularities (smallest singular value)', unit: '',
      bounds: [{ value: 0, joint: null, assumed: false }], source: field('singular_value', 1),
      matches: () => false },
  ];
}

/** The limits in words, joints of equal ones together: "limit 1, 2, 3: ±49.6, 4, 5, 6: ±59.4". */
export function limitsText(bounds: readonly Bound[], factor: number): string {
  const by_joint = new Map<number | null, number[]>();
  for (const { joint, value } of bounds) by_joint.set(joint, [...(by_joint.get(joint) ?? []), value * factor]);
  const groups = new Map<string, number[]>();
  for (const [joint, values] of by_joint) {
    if (joint === null) continue;
    const [low, high] = [Math.min(...values), Math.max(...values)];
    const text = low === -high ? `±${number(high, 3)}` : `${number(low, 3)} to ${number(high, 3)}`;
    groups.set(text, [...(groups.get(text) ?? []), joint + 1]);
  }
  if (groups.size === 0) return '';
  const parts = [...groups].map(([text, joints]) => (groups.size === 1 ? text : `${joints.join(' ')}: ${text}`));
  return `${bounds.some((bound) => bound.assumed) ? 'assumed limit' : 'limit'} ${parts.join(', ')}`;
}
