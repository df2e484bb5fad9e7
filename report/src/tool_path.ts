// The way of the tool as a line coloured by its speed.

import { Box3, BufferGeometry, Color, Float32BufferAttribute, Group, Line, LineBasicMaterial, SRGBColorSpace,
         Vector3 } from 'three';
import { Line2 } from 'three/examples/jsm/lines/Line2.js';
import { LineGeometry } from 'three/examples/jsm/lines/LineGeometry.js';
import { LineMaterial } from 'three/examples/jsm/lines/LineMaterial.js';
import type { Motion, Triple } from './data';
import { scaleColor } from './colors';

/** Points beyond which a line would cost more than it shows. */
const kMaxPoints = 4000;

/** Samples that are drawn: far enough apart to be seen, with the first and the last. */
export function drawnSamples(positions: Float32Array, samples: number, spacing: number): number[] {
  const drawn: number[] = [];
  let x = NaN, y = NaN, z = NaN;
  for (let i = 0; i < samples; i++) {
    const px = positions[3 * i] as number;
    const py = positions[3 * i + 1] as number;
    const pz = positions[3 * i + 2] as number;
    if (!Number.isFinite(px + py + pz)) continue;
    // Written so that the first point, whose distance is NaN, is taken.
    if (Math.hypot(px - x, py - y, pz - z) < spacing && i !== samples - 1) continue;
    drawn.push(i);
    x = px; y = py; z = pz;
  }
  return drawn.length > kMaxPoints ? drawnSamples(positions, samples, 2 * spacing) : drawn;
}

export function highestSpeed(motion: Motion): number {
  let highest = 0;
  for (const speed of motion.tool_speed_m_s) if (speed > highest) highest = speed;
  return highest;
}

/** A line of so many pixels' width, and a thin one that costs little. */
export class PathLine {
  readonly group = new Group();

  constructor(motion: Motion, spacing: number, width_px: number) {
    const drawn = drawnSamples(motion.positions_m, motion.samples, spacing);
    if (drawn.length < 2) return;
    const highest = highestSpeed(motion) || 1;
    const positions: number[] = [];
    const colors: number[] = [];
    const color = new Color();
    for (const i of drawn) {
      positions.push(...motion.positions_m.subarray(3 * i, 3 * i + 3));
      const [r, g, b] = scaleColor((motion.tool_speed_m_s[i] as number) / highest);
      colors.push(...color.setRGB(r, g, b, SRGBColorSpace).toArray());
    }
    const wide = new LineGeometry().setPositions(positions);
    wide.setColors(colors);
    const thin = new BufferGeometry();
    thin.setAttribute('position', new Float32BufferAttribute(positions, 3));
    thin.setAttribute('color', new Float32BufferAttribute(colors, 3));
    this.group.add(new Line2(wide, new LineMaterial({ vertexColors: true, linewidth: width_px, toneMapped: false })),
                   new Line(thin, new LineBasicMaterial({ vertexColors: true, toneMapped: false })));
    this.setThin(false);
  }

  setThin(thin: boolean): void {
    this.group.children.forEach((line, i) => { line.visible = thin === (i === 1); });
  }
}

/** A line of one colour: the way that was asked for, or that of the second motion. */
export function plainLine(points: readonly Triple[], color: string, width_px: number, dash_m: number): Line2 | null {
  if (points.length < 2) return null;
  const line = new Line2(new LineGeometry().setPositions(points.flat()),
                         new LineMaterial({ color, linewidth: width_px, dashed: dash_m > 0, dashSize: dash_m,
                                            gapSize: 0.7 * dash_m, toneMapped: false }));
  line.computeLineDistances();
  return line;
}

export function positionsOf(motion: Motion, spacing: number): Triple[] {
  return drawnSamples(motion.positions_m, motion.samples, spacing).map((i) => {
    const [x, y, z] = motion.positions_m.subarray(3 * i, 3 * i + 3);
    return [x as number, y as number, z as number];
  });
}

export function addToBox(box: Box3, motion: Motion): void {
  const point = new Vector3();
  const stride = Math.max(1, Math.floor(motion.samples / 2000));
  for (let i = 0; i < motion.samples; i += stride) {
    point.fromArray(motion.positions_m, 3 * i);
    if (Number.isFinite(point.x + point.y + point.z)) box.expandByPoint(point);
  }
}
