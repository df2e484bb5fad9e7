// What every page has in its picture: the arm with its tool, the base's frame, the floor, and marks.

import { Box3, CylinderGeometry, Group, Matrix4, Mesh, MeshStandardMaterial, Quaternion, Vector3 } from 'three';
import type { BufferGeometry, Sprite } from 'three';
import { ArmView, solidMaterial } from './arm_view';
import { linkGeometries } from './body';
import { kPalettes } from './colors';
import type { Theme } from './colors';
import type { Arm, Triple } from './data';
import { dispose, floorGrid, kAxisColors, shadowFloor, triad } from './frames';
import { Marks } from './marks';
import { skeletonOf } from './skeleton';
import type { Skeleton } from './skeleton';
import { Stage } from './stage';

/** A tool further from the flange than this, as a share of the arm's length, is drawn as a rod. */
const kToolShare = 0.002;

export class ArmScene {
  readonly stage: Stage;
  readonly marks = new Marks();
  protected readonly skeleton: Skeleton;
  protected readonly geometries: BufferGeometry[];
  protected readonly arm: ArmView;
  protected readonly rod: Mesh;
  protected readonly tool: Group;
  protected readonly tip: Sprite;
  private readonly floor = new Group();
  private extent = 1;

  constructor(host: HTMLElement, arm: Arm) {
    this.stage = new Stage(host);
    this.stage.onResize = (height, fov) => this.marks.fit(height, fov);
    this.skeleton = skeletonOf(arm);
    this.geometries = linkGeometries(arm, this.skeleton);
    this.arm = new ArmView(arm, this.geometries, solidMaterial(), true);
    this.tool = triad(0.085 * this.skeleton.length);
    this.tip = this.marks.add('tool', new Vector3());
    this.rod = new Mesh(new CylinderGeometry(0.5, 1, 1, 20).translate(0, 0.5, 0),
                        new MeshStandardMaterial({ color: 0x8a94a0, roughness: 0.5 }));
    this.rod.castShadow = true;
    this.rod.frustumCulled = false;
    this.stage.scene.add(this.arm.group, this.tool, this.rod, this.marks.group, this.floor);
    this.addBase(this.skeleton.length);
  }

  private addBase(size: number): void {
    this.stage.scene.add(triad(0.14 * size));
    ['X', 'Y', 'Z'].forEach((letter, i) => {
      const at = new Vector3().setComponent(i, 0.175 * size);
      this.marks.letter(letter, at, kAxisColors[i] as string);
    });
  }

  /** Once all is there: what views have to show. */
  protected frame(box: Box3): void {
    this.extent = Math.max(box.getSize(new Vector3()).length(), 1e-3);
    this.stage.frame(box);
    this.marks.fit(this.stage.height, (this.stage.camera.fov * Math.PI) / 180);
  }

  /** Makes `box` large enough for the arm with these joints. */
  protected expandByArm(box: Box3, joints: ArrayLike<number>): void {
    this.arm.setJoints(joints);
    this.arm.group.updateMatrixWorld(true);
    box.expandByObject(this.arm.group);
  }

  setTheme(theme: Theme): void {
    const palette = kPalettes[theme];
    dispose(this.floor);
    this.floor.clear();
    this.floor.add(floorGrid(1.5 * this.extent, palette), shadowFloor(this.extent));
    this.stage.background(palette.scene);
  }

  protected setTool(position: Vector3, orientation: Quaternion): void {
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

  /** The tool where the arm has it. */
  protected setToolOfArm(): void {
    const tool = this.arm.toolPlacement();
    this.setTool(new Vector3().setFromMatrixPosition(tool), new Quaternion().setFromRotationMatrix(tool));
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
