// Where each link of the arm is: the product of the turns about the joints' axes, each given with all
// joints at zero, in the base frame. What is fixed to link i stays where it is at zero, moved by the
// turns of joints 1 to i.

import { Matrix4, Quaternion, Vector3 } from 'three';
import type { Arm, Axis } from './data';

/** The turn by `angle` about an axis that need not pass the origin. */
function turnAbout(axis: Axis, angle: number, to: Matrix4): Matrix4 {
  const direction = new Vector3(...axis.direction).normalize();
  const point = new Vector3(...axis.point_m);
  to.makeRotationAxis(direction, angle);
  // A point p goes to R (p - c) + c.
  return to.setPosition(point.clone().sub(point.clone().applyMatrix4(to)));
}

/** Placements of links 0 (the base) to 6. */
export function placeLinks(axes: readonly Axis[], joints: ArrayLike<number>, to: Matrix4[]): void {
  const turn = new Matrix4();
  (to[0] as Matrix4).identity();
  for (let i = 0; i < 6; i++) {
    turnAbout(axes[i] as Axis, joints[i] as number, turn);
    (to[i + 1] as Matrix4).multiplyMatrices(to[i] as Matrix4, turn);
  }
}

/** The tool of the description, with all joints at zero. */
export function toolAtZero(arm: Arm): Matrix4 {
  const [w, x, y, z] = arm.tool.wxyz;
  const one = new Vector3(1, 1, 1);
  return new Matrix4().compose(new Vector3(...arm.tool.position_m), new Quaternion(x, y, z, w), one);
}

export function newPlacements(): Matrix4[] {
  return Array.from({ length: 7 }, () => new Matrix4());
}
