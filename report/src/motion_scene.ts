// The picture of a motion: the arm, the second motion's as a ghost, their ways, and the marks.

import { Box3, Group, Mesh, MeshBasicMaterial, Quaternion, SphereGeometry, Vector3 } from 'three';
import type { Object3D, Sprite } from 'three';
import { ArmScene } from './arm_scene';
import { ArmView, ghostMaterial } from './arm_view';
import type { Motion, Report } from './data';
import { momentAt, newMoment } from './sampling';
import { addToBox, PathLine, plainLine, positionsOf } from './tool_path';

const kGhost = '#7f8b99';
const kRefused = '#d2503f';
const kPossible = '#1f9e7a';
/** Points of a way that are closer than this, as a share of the arm's length, are drawn as one. */
const kPathShare = 0.002;

export class MotionScene extends ArmScene {
  private readonly ghost: ArmView | null = null;
  private readonly ghost_parts = new Group();
  private readonly solutions: ArmView[] = [];
  private readonly ghost_tip: Sprite | null = null;
  private readonly moment = newMoment();

  constructor(host: HTMLElement, private readonly report: Report) {
    super(host, report.arm);
    const { scene } = this.stage;
    const size = this.skeleton.length;
    scene.add(this.ghost_parts);
    const second = report.motions[1];
    if (second) {
      this.ghost = new ArmView(report.arm, this.geometries, ghostMaterial(kGhost), false);
      this.ghost_parts.add(this.ghost.group);
      this.ghost_tip = this.marks.add('ghost-tool', new Vector3());
      this.addLine(plainLine(positionsOf(second, kPathShare * size), kGhost, 2, 0.012 * size), this.ghost_parts);
    }
    const first = report.motions[0];
    if (first) {
      const line = new PathLine(first, kPathShare * size, 3.5);
      this.stage.onCoarse = (coarse) => line.setThin(coarse);
      scene.add(line.group);
      this.addMarks(first);
    }
    this.addExplanation(size);
    this.frame(this.box());
  }

  private addLine(line: ReturnType<typeof plainLine>, to: Object3D): void {
    if (line) to.add(line);
  }

  private addMarks(motion: Motion): void {
    const zone = new MeshBasicMaterial({ color: 0x5b7fa6, transparent: true, opacity: 0.16, depthWrite: false });
    const ball = new SphereGeometry(1, 24, 16);
    // A program that repeats has the same corners again and again: one is drawn.
    const seen = new Set<string>();
    for (const { position_m, radius_m, begin_s } of motion.corners) {
      const key = [...position_m, radius_m].map((value) => value.toFixed(5)).join(' ');
      if (seen.has(key)) continue;
      seen.add(key);
      this.marks.add('corner', new Vector3(...position_m), begin_s);
      const zone_ball = new Mesh(ball, zone);
      zone_ball.position.set(...position_m);
      zone_ball.scale.setScalar(Math.max(radius_m, 1e-6));
      this.stage.scene.add(zone_ball);
    }
    for (const check of motion.verdict.checks) {
      if (check.sample === null || (check.state !== 'violation' && check.state !== 'note')) continue;
      const at = new Vector3().fromArray(motion.positions_m, 3 * check.sample);
      this.marks.add(check.state, at, check.time_s);
    }
  }

  private addExplanation(size: number): void {
    const explanation = this.report.explanation;
    if (!explanation) return;
    this.addLine(plainLine(explanation.path_m, '#c65a4d', 2.5, 0.014 * size), this.stage.scene);
    if (explanation.point && !explanation.ok) this.marks.add('failure', new Vector3(...explanation.point.position_m));
    const ghosts = [...explanation.solutions.map((s) => ({ joints: s.joints_rad, ok: s.refused === null })),
                    ...explanation.branches.map((b) => ({ joints: b.joints_rad, ok: b.ok }))];
    for (const { joints, ok } of ghosts) {
      const view = new ArmView(this.report.arm, this.geometries, ghostMaterial(ok ? kPossible : kRefused), false);
      view.setJoints(joints);
      view.group.visible = false;
      this.solutions.push(view);
      this.stage.scene.add(view.group);
    }
  }

  /** Around the arm in all its poses, the ways, and what was asked for. */
  private box(): Box3 {
    const box = new Box3().expandByPoint(new Vector3());
    for (const motion of this.report.motions) {
      addToBox(box, motion);
      for (let k = 0; k <= 8; k++) {
        const i = Math.round((k / 8) * (motion.samples - 1));
        this.expandByArm(box, motion.joints_rad.subarray(6 * i, 6 * i + 6));
      }
    }
    const explanation = this.report.explanation;
    for (const point of explanation?.path_m ?? []) box.expandByPoint(new Vector3(...point));
    if (explanation?.point) box.expandByPoint(new Vector3(...explanation.point.position_m));
    for (const { joints_rad } of [...(explanation?.solutions ?? []), ...(explanation?.branches ?? [])]) {
      this.expandByArm(box, joints_rad);
    }
    if (this.report.motions.length === 0) this.expandByArm(box, this.standing() ?? [0, 0, 0, 0, 0, 0]);
    return box;
  }

  setGhost(shown: boolean): void {
    this.ghost_parts.visible = shown;
    if (this.ghost_tip) this.ghost_tip.visible = shown;
    this.stage.request();
  }

  showSolutions(shown: ReadonlySet<number>): void {
    this.solutions.forEach((view, i) => { view.group.visible = shown.has(i); });
    this.stage.request();
  }

  /** Puts everything where it is at `t`. */
  setTime(t: number): void {
    const [first, second] = this.report.motions;
    if (second && this.ghost) {
      momentAt(second, t, this.moment);
      this.ghost.setJoints(this.moment.joints);
      this.ghost_tip?.position.fromArray(this.moment.position);
    }
    if (first) {
      momentAt(first, t, this.moment);
      this.arm.setJoints(this.moment.joints);
      const { position, wxyz } = this.moment;
      this.setTool(new Vector3().fromArray(position),
                   new Quaternion(wxyz[1], wxyz[2], wxyz[3], wxyz[0]));
    } else {
      this.standStill();
    }
    this.stage.request();
  }

  // Where the arm stands when nothing moves: in an admissible solution, or where one was sought from.
  private standing(): readonly number[] | null {
    const explanation = this.report.explanation;
    return explanation?.solutions.find((s) => s.refused === null)?.joints_rad ?? explanation?.before_rad ?? null;
  }

  private standStill(): void {
    const standing = this.standing();
    this.arm.group.visible = standing !== null;
    this.arm.setJoints(standing ?? [0, 0, 0, 0, 0, 0]);
    const point = this.report.explanation?.point;
    if (point) {
      const [w, x, y, z] = point.wxyz;
      this.setTool(new Vector3(...point.position_m), new Quaternion(x, y, z, w));
    } else {
      this.setToolOfArm();
    }
    // The point isn't where this arm's tool is: no rod leads there.
    this.rod.visible = false;
  }
}
