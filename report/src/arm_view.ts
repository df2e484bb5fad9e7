// One arm in the scene: seven links, each moved by its own matrix.

import { GreaterDepth, Group, Material, Matrix4, Mesh, MeshStandardMaterial, Vector3 } from 'three';
import type { BufferGeometry } from 'three';
import type { Arm } from './data';
import { newPlacements, placeLinks, toolAtZero } from './kinematics';

export function solidMaterial(): Material {
  return new MeshStandardMaterial({ vertexColors: true, roughness: 0.55, metalness: 0.08 });
}

/** Where a ghost coincides with the arm, the arm is seen. */
export function ghostMaterial(color: string): MeshStandardMaterial {
  return new MeshStandardMaterial({ color, transparent: true, opacity: 0.32, depthWrite: false, roughness: 0.9,
                                    polygonOffset: true, polygonOffsetFactor: 2, polygonOffsetUnits: 2 });
}

/** For what is hidden by something else: seen through it, faintly. */
export function behindMaterial(): Material {
  return new MeshStandardMaterial({ color: '#ffffff', transparent: true, opacity: 0.42, depthFunc: GreaterDepth,
                                    depthWrite: false, roughness: 0.9 });
}

export class ArmView {
  readonly group = new Group();
  private readonly placements = newPlacements();
  private readonly tool: Matrix4;

  constructor(private readonly arm: Arm, geometries: readonly BufferGeometry[], material: Material, shadow: boolean) {
    this.tool = toolAtZero(arm);
    geometries.forEach((geometry, i) => {
      const mesh = new Mesh(geometry, material);
      mesh.matrixAutoUpdate = false;
      mesh.matrix = this.placements[i] as Matrix4;
      mesh.castShadow = shadow;
      mesh.frustumCulled = false;
      this.group.add(mesh);
    });
  }

  setJoints(joints: ArrayLike<number>): void {
    placeLinks(this.arm.axes, joints, this.placements);
    for (const mesh of this.group.children) mesh.matrixWorldNeedsUpdate = true;
  }

  /** Where the description's tool is, by the joints and where the arm stands. */
  toolPlacement(): Matrix4 {
    const { x, y, z } = this.group.position;
    return new Matrix4().makeTranslation(x, y, z).multiply(this.placements[6] as Matrix4).multiply(this.tool);
  }

  toolPosition(): Vector3 {
    return new Vector3().setFromMatrixPosition(this.toolPlacement());
  }
}
