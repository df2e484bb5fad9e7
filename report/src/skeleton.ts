// The lines that an arm without meshes is drawn along. A description gives axes, not the shape of the
// links between them: each link is led from its own axis to the next along their common perpendicular,
// so that links meet at the joints whatever the arm is.

import { Vector3 } from 'three';
import type { Arm, Axis } from './data';

/** Sine of the angle between axes below which they count as parallel: no foot is well defined. */
const kParallelSine = 1e-3;

export interface Link {
  /** Where it is held: on its joint's axis. The base's first point is on the floor. */
  readonly points: readonly Vector3[];
}

export interface Skeleton {
  /** Links 0 (the base) to 6, with all joints at zero, in the base frame. */
  readonly links: readonly Link[];
  /** Centre and direction of the joints' housings. */
  readonly housings: readonly { readonly center: Vector3; readonly axis: Vector3 }[];
  /** Length along all links [m]: how large things are drawn. */
  readonly length: number;
}

function pointOf(axis: Axis): Vector3 {
  return new Vector3(...axis.point_m);
}

function directionOf(axis: Axis): Vector3 {
  return new Vector3(...axis.direction).normalize();
}

export function footOf(point: Vector3, axis: Axis): Vector3 {
  const direction = directionOf(axis);
  const on = pointOf(axis);
  return on.addScaledVector(direction, point.clone().sub(on).dot(direction));
}

/** Feet of the common perpendicular, on `a` and on `b`; from `previous` when they are parallel. */
export function commonPerpendicular(a: Axis, b: Axis, previous: Vector3): [Vector3, Vector3] {
  const u = directionOf(a);
  const v = directionOf(b);
  const cosine = u.dot(v);
  const sine_squared = 1 - cosine * cosine;
  if (sine_squared < kParallelSine * kParallelSine) return [previous.clone(), footOf(previous, b)];
  const between = pointOf(b).sub(pointOf(a));
  const along_a = (between.dot(u) - cosine * between.dot(v)) / sine_squared;
  const along_b = (cosine * between.dot(u) - between.dot(v)) / sine_squared;
  return [pointOf(a).addScaledVector(u, along_a), pointOf(b).addScaledVector(v, along_b)];
}

function lengthOf(points: readonly Vector3[]): number {
  let length = 0;
  for (let i = 1; i < points.length; i++) length += (points[i] as Vector3).distanceTo(points[i - 1] as Vector3);
  return length;
}

/** Moves housings that would lie inside one another, or in the floor, along their axes, towards where the link goes. */
function housingsOf(arm: Arm, foot: Vector3, entries: readonly Vector3[], exits: readonly Vector3[], size: number): Skeleton['housings'] {
  const centers: Vector3[] = [];
  for (let i = 0; i < 6; i++) {
    const center = (entries[i] as Vector3).clone();
    const along = (exits[i] as Vector3).clone().sub(center);
    const crowded = [foot, ...centers].some((other) => other.distanceTo(center) < size);
    if (crowded && along.length() > 0) center.add(along.clone().setLength(Math.min(along.length(), size)));
    centers.push(center);
  }
  return centers.map((center, i) => ({ center, axis: directionOf(arm.axes[i] as Axis) }));
}

export function skeletonOf(arm: Arm): Skeleton {
  const tool = new Vector3(...arm.tool.position_m);
  const entries: Vector3[] = [footOf(new Vector3(), arm.axes[0] as Axis)];
  // The base stands on the plane of its frame, under the first joint.
  const foot = (entries[0] as Vector3).clone().setZ(0);
  const exits: Vector3[] = [];
  for (let i = 0; i < 5; i++) {
    const [exit, entry] = commonPerpendicular(arm.axes[i] as Axis, arm.axes[i + 1] as Axis, entries[i] as Vector3);
    exits.push(exit);
    entries.push(entry);
  }
  exits.push(footOf(tool, arm.axes[5] as Axis));

  const links: Link[] = [{ points: [foot, entries[0] as Vector3] }];
  for (let i = 0; i < 5; i++) {
    links.push({ points: [entries[i] as Vector3, exits[i] as Vector3, entries[i + 1] as Vector3] });
  }
  links.push({ points: [entries[5] as Vector3, exits[5] as Vector3, tool] });
  const length = Math.max(links.reduce((sum, link) => sum + lengthOf(link.points), 0), 1e-3);
  return { links, housings: housingsOf(arm, foot, entries, exits, 0.055 * length), length };
}
