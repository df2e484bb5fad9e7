// The picture of a reach study: slices and surface of its cells, and the arm as it best reaches the one
// that is looked at.

import { Box3, BoxGeometry, BufferGeometry, EdgesGeometry, Float32BufferAttribute, Group, LineBasicMaterial, LineSegments,
         Points, PointsMaterial, Vector3 } from 'three';
import type { Mesh, Sprite } from 'three';
import { ArmScene } from './arm_scene';
import { ArmView, behindMaterial, ghostMaterial } from './arm_view';
import { kPalettes } from './colors';
import type { Theme } from './colors';
import type { Arm } from './data';
import { centreOf, indexOf, jointsOf, shiftOf } from './reach_data';
import type { Grid, Reach } from './reach_data';
import { pickCell } from './reach_pick';
import { Slice } from './reach_slice';
import type { ReachState } from './reach_state';
import { shownCells, surfaceGeometry, surfaceMesh } from './reach_surface';

const kGhost = '#7f8b99';

function boxOf({ first_m, step_m, count }: Grid): Box3 {
  const first = new Vector3(...first_m);
  return new Box3(first.clone().subScalar(step_m / 2),
                  first.clone().add(new Vector3(...count).subScalar(0.5).multiplyScalar(step_m)));
}

/** Around all cells that are reached; around the box where none is. */
function reachedBox(reach: Reach): Box3 {
  const { grid } = reach;
  if (reach.summary.cells_reached === 0) return boxOf(grid);
  const box = new Box3();
  const centre = new Vector3();
  for (let cell = 0; cell < reach.cells; cell++) {
    if ((reach.row[cell] as number) >= 0) box.expandByPoint(centre.set(...centreOf(grid, indexOf(grid, cell))));
  }
  return box.expandByScalar(grid.step_m / 2);
}

function edges(size: Vector3, color: string): LineSegments<EdgesGeometry, LineBasicMaterial> {
  return new LineSegments(new EdgesGeometry(new BoxGeometry(...size.toArray())),
                          new LineBasicMaterial({ color, toneMapped: false }));
}

export class ReachScene extends ArmScene {
  private readonly slices: readonly Slice[];
  private readonly surface: Mesh = surfaceMesh();
  private readonly outline: LineSegments<EdgesGeometry, LineBasicMaterial>;
  private readonly cell: LineSegments<EdgesGeometry, LineBasicMaterial>;
  /** The arm where cells hide it. */
  private readonly behind: ArmView;
  /** The arm as it last reached a cell, where nothing reaches the one that is looked at. */
  private readonly ghost: ArmView;
  private readonly missed: Sprite;
  /** The poses of a placement. */
  private readonly poses = new Points(new BufferGeometry(), new PointsMaterial({ size: 5, sizeAttenuation: false, toneMapped: false }));
  /** Which cells are cubes; null: none, or not known yet. */
  private cubes: Uint8Array | null = null;
  private stale = true;

  constructor(host: HTMLElement, arm: Arm, private readonly state: ReachState) {
    super(host, arm);
    const { grid } = state.reach;
    this.slices = ([0, 1, 2] as const).map((axis) => new Slice(grid, axis));
    const box = boxOf(grid);
    this.outline = edges(box.getSize(new Vector3()), '#000000');
    box.getCenter(this.outline.position);
    this.cell = edges(new Vector3(grid.step_m, grid.step_m, grid.step_m), '#000000');
    this.behind = new ArmView(arm, this.geometries, behindMaterial(), false);
    this.ghost = new ArmView(arm, this.geometries, ghostMaterial(kGhost), false);
    this.missed = this.marks.add('failure', new Vector3());
    const cells = new Group().add(...this.slices.map((slice) => slice.group), this.surface, this.outline, this.cell);
    this.poses.geometry.setAttribute('position', new Float32BufferAttribute(state.reach.poses_m, 3));
    this.stage.scene.add(cells, this.behind.group, this.ghost.group, this.poses);
    const joints = jointsOf(state.reach, state.cell.get());
    const seen = reachedBox(state.reach).expandByPoint(new Vector3());
    const { poses_m } = state.reach;
    for (let i = 0; i + 2 < poses_m.length; i += 3) seen.expandByPoint(new Vector3().fromArray(poses_m, i));
    this.arm.group.position.set(...shiftOf(state.reach, state.cell.get()));
    this.expandByArm(seen, joints ?? [0, 0, 0, 0, 0, 0]);
    this.frame(seen);
    state.looks.on(() => { this.stale = true; this.stage.request(); });
    state.cell.on(() => this.showArm());
    this.showArm();
  }

  override setTheme(theme: Theme): void {
    super.setTheme(theme);
    this.outline.material.color.set(kPalettes[theme].scene_grid_main);
    this.cell.material.color.set(kPalettes[theme].text);
    this.poses.material.color.set(kPalettes[theme].text);
  }

  /** Makes anew what the reader's choices have changed, once before it is drawn. */
  update(): void {
    if (!this.stale) return;
    this.stale = false;
    const { state } = this;
    const { grid } = state.reach;
    const field = state.field.get();
    this.slices.forEach((slice, axis) => {
      slice.group.visible = state.slices.get()[axis] === true;
      if (slice.group.visible) slice.show(field, state.index);
    });
    this.surface.visible = state.surface.get();
    this.cubes = this.surface.visible ? shownCells(grid, field, state.least, state.cut) : null;
    if (this.cubes) {
      this.surface.geometry.dispose();
      this.surface.geometry = surfaceGeometry(grid, field, this.cubes);
    }
  }

  private showArm(): void {
    const { reach } = this.state;
    const cell = this.state.cell.get();
    const joints = jointsOf(reach, cell);
    const centre = new Vector3(...centreOf(reach.grid, this.state.index));
    this.cell.position.copy(centre);
    this.missed.position.copy(centre);
    this.missed.visible = joints === null;
    for (const part of [this.arm.group, this.tool, this.tip, this.rod]) part.visible = joints !== null;
    this.ghost.group.visible = joints === null;
    // From the start nothing may be reached: then all joints are at zero.
    const shift = new Vector3(...shiftOf(reach, cell));
    for (const view of [this.arm, this.behind, this.ghost]) {
      view.group.position.copy(shift);
      if (joints) view.setJoints(joints);
    }
    if (joints) this.setToolOfArm();
    this.stage.request();
  }

  /** The cell under the pointer. */
  pickCell(event: PointerEvent): number | null {
    this.update();
    const { state } = this;
    return pickCell(state.reach.grid, this.stage.ray(event), state.field.get(), state.slices.get(), state.index, this.cubes);
  }
}
