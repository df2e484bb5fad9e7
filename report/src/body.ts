// The arm as a body: each link one geometry with colours of its own, so that a link is one call of the
// graphics card and a ghost takes the same shapes in another material.

import { BufferGeometry, Color, CylinderGeometry, Float32BufferAttribute, Quaternion, SphereGeometry,
         SRGBColorSpace, Vector3 } from 'three';
import { mergeGeometries, toCreasedNormals } from 'three/examples/jsm/utils/BufferGeometryUtils.js';
import { BufferAttribute, Matrix4 } from 'three';
import type { Arm, Body } from './data';
import { kJointColors } from './colors';
import type { Skeleton } from './skeleton';

const kShell = new Color(0xe4e7eb);
const kHousing = new Color(0x3b444f);
const kFlange = new Color(0x8a94a0);
const kMesh = new Color(0xd5d9de);
/** Triangles up to which edges are looked for; beyond, facets are shown as they are. */
const kMaxCreased = 60000;
const kCreaseRad = 0.6;

function painted(geometry: BufferGeometry, color: Color): BufferGeometry {
  const count = geometry.getAttribute('position').count;
  const colors = new Float32Array(3 * count);
  for (let i = 0; i < count; i++) color.toArray(colors, 3 * i);
  geometry.setAttribute('color', new Float32BufferAttribute(colors, 3));
  geometry.deleteAttribute('uv');
  return geometry.index ? geometry.toNonIndexed() : geometry;
}

function between(geometry: BufferGeometry, a: Vector3, b: Vector3): BufferGeometry {
  const along = b.clone().sub(a).normalize();
  const turn = new Quaternion().setFromUnitVectors(new Vector3(0, 1, 0), along);
  return geometry.applyQuaternion(turn).translate((a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2);
}

function tube(a: Vector3, b: Vector3, from: number, to: number, color: Color): BufferGeometry[] {
  if (a.distanceTo(b) < 1e-6) return [];
  return [painted(between(new CylinderGeometry(to, from, a.distanceTo(b), 24, 1), a, b), color)];
}

function ball(at: Vector3, radius: number, color: Color): BufferGeometry {
  return painted(new SphereGeometry(radius, 20, 12).translate(at.x, at.y, at.z), color);
}

/** A drum about a joint's axis with a ring of the joint's colour at either end. */
function housing(center: Vector3, axis: Vector3, radius: number, joint: number): BufferGeometry[] {
  const half = 1.25 * radius;
  const ring = 0.16 * radius;
  const at = (along: number): Vector3 => center.clone().addScaledVector(axis, along);
  const color = new Color(kJointColors[joint] as string);
  const parts = tube(at(-half), at(half), radius, radius, kHousing);
  for (const side of [-1, 1]) {
    parts.push(...tube(at(side * (half - 3 * ring)), at(side * (half - 2 * ring)), 1.03 * radius, 1.03 * radius, color));
    parts.push(...tube(at(side * half), at(side * (half + ring)), (side > 0 ? 1 : 0.86) * radius,
                       (side > 0 ? 0.86 : 1) * radius, kHousing));
  }
  return parts;
}

/** Radii of the housings: the wrist is slimmer than the shoulder. */
export function housingRadius(skeleton: Skeleton, joint: number): number {
  return skeleton.length * ([0.042, 0.038, 0.034, 0.027, 0.024, 0.021][joint] ?? 0.02);
}

function drawnLink(skeleton: Skeleton, i: number): BufferGeometry {
  const parts: BufferGeometry[] = [];
  const points = (skeleton.links[i] as Skeleton['links'][number]).points;
  const held = housingRadius(skeleton, Math.max(i - 1, 0));
  const next = housingRadius(skeleton, Math.min(i, 5));
  if (i === 0) {
    const [foot, top] = points as [Vector3, Vector3];
    const up = new Vector3(0, 0, top.z < 0 ? -1 : 1);
    parts.push(...tube(foot, foot.clone().addScaledVector(up, 0.35 * held), 1.9 * held, 1.8 * held, kHousing));
    parts.push(...tube(foot, top, 1.1 * held, 0.85 * held, kShell));
  } else {
    const joint = skeleton.housings[i - 1] as Skeleton['housings'][number];
    parts.push(...housing(joint.center, joint.axis, held, i - 1));
    const last = i === 6 ? points.length - 2 : points.length - 1;
    const thick = 0.8 * held;
    const thin = i === 6 ? 0.55 * held : 0.8 * next;
    for (let k = 0; k < last; k++) {
      const a = points[k] as Vector3;
      const b = points[k + 1] as Vector3;
      parts.push(...tube(a, b, k === 0 ? thick : (thick + thin) / 2, k === last - 1 ? thin : (thick + thin) / 2, kShell));
      parts.push(ball(b, k === last - 1 ? thin : (thick + thin) / 2, kShell));
    }
    if (i === 6) parts.push(...flange(points, held));
  }
  return merged(parts);
}

/** A plate across axis 6 where the tool is fixed, and a rod to a tool that isn't on the axis. */
function flange(points: readonly Vector3[], radius: number): BufferGeometry[] {
  const [wrist, foot, tool] = points as [Vector3, Vector3, Vector3];
  if (wrist.distanceTo(foot) < 1e-6) return tube(foot, tool, 0.3 * radius, 0.2 * radius, kFlange);
  const along = foot.clone().sub(wrist).normalize();
  const plate = foot.clone().addScaledVector(along, -0.45 * radius);
  return [...tube(plate, foot, 0.95 * radius, 0.95 * radius, kFlange),
          ...tube(foot, tool, 0.3 * radius, 0.2 * radius, kFlange)];
}

function merged(parts: readonly BufferGeometry[]): BufferGeometry {
  const geometry = parts.length > 0 ? mergeGeometries([...parts]) : null;
  return geometry ?? new BufferGeometry().setAttribute('position', new Float32BufferAttribute([], 3));
}

function meshOf(body: Body): BufferGeometry {
  let geometry = new BufferGeometry();
  geometry.setAttribute('position', new BufferAttribute(body.positions.slice(), 3));
  geometry.setIndex(new BufferAttribute(body.indices, 1));
  const p = body.placement;
  const at = (k: number): number => p[k] ?? 0;
  geometry.applyMatrix4(new Matrix4().set(at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7),
                                          at(8), at(9), at(10), at(11), 0, 0, 0, 1));
  if (body.indices.length / 3 <= kMaxCreased) {
    // Points within a hundredth count as one there: of a millimetre, not of a metre.
    geometry = toCreasedNormals(geometry.scale(1000, 1000, 1000), kCreaseRad).scale(1e-3, 1e-3, 1e-3);
  } else {
    geometry = geometry.toNonIndexed();
    geometry.computeVertexNormals();
  }
  return painted(geometry, body.color ? new Color().setRGB(...body.color, SRGBColorSpace) : kMesh);
}

/**
 * The geometry of links 0 to 6, with all joints at zero: the description's meshes; of a link without any, the
 * page's own.
 */
export function linkGeometries(arm: Arm, skeleton: Skeleton): BufferGeometry[] {
  return Array.from({ length: 7 }, (_, i) => {
    const bodies = arm.bodies.filter((body) => body.link === i);
    return bodies.length > 0 ? merged(bodies.map(meshOf)) : drawnLink(skeleton, i);
  });
}
