// What stands in the scene: the arm, the second motion's as a ghost, their ways, and the marks.

import { Box3, CylinderGeometry, Group, Matrix4, Mesh, MeshBasicMaterial, MeshStandardMaterial,
         Quaternion, SphereGeometry, Vector3 } from 'three';
import type { BufferGeometry, Object3D, Sprite } from 'three';
import { ArmView, ghostMaterial, solidMaterial } from './arm_view';
import { linkGeometries } from './body';
import { kPalettes } from './colors';
import type { Theme } from './colors';
import type { Motion, Report, Triple } from './data';
import { dispose, floorGrid, kAxisColors, shadowFloor, triad } from './frames';
import { Marks } from './marks';
import { momentAt, newMoment } from './sampling';
import { skeletonOf } from './skeleton';
import type { Skeleton } from './skeleton';
import { Stage } from './stage';
import { addToBox, PathLine, plainLine, positionsOf } from './tool_path';

const kGhost = '#7f8b99';
const kRefused = '#d2503f';
const kPossible = '#1f9e7a';
/** A tool further from the flange than this, as a share of the arm's length, is drawn as a rod. */
const kToolShare = 0.002;
/** Points of a way that are closer than this, as a share of the arm's length, are drawn as one. */
const kPathShare = 0.002;

export class RobotScene {
  readonly stage: Stage;
  readonly marks = new Marks();
  private readonly skeleton: Skeleton;
  private readonly geometries: BufferGeometry[];
  private readonly arm: ArmView;
  private readonly ghost: ArmView | null = null;
  private readonly ghost_parts = new Group();
  private readonly solutions: ArmView[] = [];
  private readonly tool: Group;
  private readonly tip: Sprite;
  private readonly ghost_tip: Sprite | null = null;
  private readonly rod: Mesh;
  private readonly moment = newMoment();
  private readonly floor = new Group();
  private extent = 1;

  constructor(host: HTMLElement, private readonly report: Report) {
    this.stage = new Stage(host);
    this.stage.onResize = (height, fov) => this.marks.fit(height, fov);
    this.skeleton = skeletonOf(report.arm);
    this.geometries = linkGeometries(report.arm, this.skeleton);
    const { scene } = this.stage;
    const size = this.skeleton.length;

    this.arm = new ArmView(report.arm, this.geometries, solidMaterial(), true);
    this.tool = triad(0.085 * size);
    this.tip = this.marks.add('tool', new Vector3());
    this.rod = new Mesh(new CylinderGeometry(0.5, 1, 1, 20).translate(0, 0.5, 0),
                        new MeshStandardMaterial({ color: 0x8a94a0, roughness: 0.5 }));
    this.rod.castShadow = true;
    this.rod.frustumCulled = false;
    scene.add(this.arm.group, this.tool, this.rod, this.marks.group, this.floor, this.ghost_parts);

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
    this.addBase(size);
    this.stage.frame(this.box());
    this.marks.fit(host.clientHeight, (this.stage.camera.fov * Math.PI) / 180);
  }

  private addLine(line: ReturnType<typeof plainLine>, to: Object3D): void {
    if (line) to.add(line);
  }

  private addBase(size: number): void {
    const base = triad(0.14 * size);
    this.stage.scene.add(base);
    ['X', 'Y', 'Z'].forEach((letter, i) => {
      const at = new Vector3().setComponent(i, 0.175 * size);
      this.marks.letter(letter, at, kAxisColors[i] as string);
    });
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
    explanation.solutions.forEach((solution) => {
      const view = new ArmView(this.report.arm, this.geometries,
                               ghostMaterial(solution.refused === null ? kPossible : kRefused), false);
      view.setJoints(solution.joints_rad);
      view.group.visible = false;
      this.solutions.push(view);
      this.stage.scene.add(view.group);
    });
  }

  /** Around the arm in all its poses, the ways, and what was asked for. */
  private box(): Box3 {
    const box = new Box3().expandByPoint(new Vector3());
    const add = (joints: ArrayLike<number>): void => {
      this.arm.setJoints(joints);
      this.arm.group.updateMatrixWorld(true);
      box.expandByObject(this.arm.group);
    };
    for (const motion of this.report.motions) {
      addToBox(box, motion);
      for (let k = 0; k <= 8; k++) {
        const i = Math.round((k / 8) * (motion.samples - 1));
        add(motion.joints_rad.subarray(6 * i, 6 * i + 6));
      }
    }
    const explanation = this.report.explanation;
    for (const point of explanation?.path_m ?? []) box.expandByPoint(new Vector3(...point));
    if (explanation?.point) box.expandByPoint(new Vector3(...explanation.point.position_m));
    for (const solution of explanation?.solutions ?? []) add(solution.joints_rad);
    if (this.report.motions.length === 0) add(explanation?.solutions[0]?.joints_rad ?? [0, 0, 0, 0, 0, 0]);
    this.extent = Math.max(box.getSize(new Vector3()).length(), 1e-3);
    return box;
  }

  setTheme(theme: Theme): void {
    const palette = kPalettes[theme];
    dispose(this.floor);
    this.floor.clear();
    this.floor.add(floorGrid(1.5 * this.extent, palette), shadowFloor(this.extent));
    this.stage.background(palette.scene);
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

  // Nothing moves: the arm stands in an admissible solution, if there is one, the tool frame where it
  // was asked for.
  private standStill(): void {
    const explanation = this.report.explanation;
    const solution = explanation?.solutions.find((s) => s.refused === null);
    this.arm.group.visible = solution !== undefined;
    this.arm.setJoints(solution?.joints_rad ?? [0, 0, 0, 0, 0, 0]);
    const point = explanation?.point;
    if (point) {
      const [w, x, y, z] = point.wxyz;
      this.setTool(new Vector3(...point.position_m), new Quaternion(x, y, z, w));
    }
    this.rod.visible = false;
  }

  private setTool(position: Vector3, orientation: Quaternion): void {
    this.tool.position.copy(position);
    this.tool.quaternion.copy(orientation);
    this.tip.position.copy(position);
    // A program's own tool, beyond what the description ends in.
    const flange = this.arm.toolPosition();
    const along = position.clone().sub(flange);
    const length = along.length();
    this.rod.visible = length > kToolShare * this.skeleton.length;
    if (!this.rod.visible) return;
    const thick = 0.011 * this.skeleton.length;
    this.rod.position.copy(flange);
    this.rod.quaternion.setFromUnitVectors(new Vector3(0, 1, 0), along.normalize());
    this.rod.scale.set(thick, length, thick);
  }

  /** For tests: where the arm's kinematics put the tool of the description, and how points are projected. */
  toolOfArm(): Triple {
    const { x, y, z } = this.arm.toolPosition();
    return [x, y, z];
  }
  projection(): number[] {
    const { camera } = this.stage;
    camera.updateMatrixWorld();
    return new Matrix4().multiplyMatrices(camera.projectionMatrix, camera.matrixWorldInverse).toArray();
  }
}
