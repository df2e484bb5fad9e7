// Frames, drawn as three arrows: x red, y green, z blue, as everywhere in robotics; and the floor.

import { BufferGeometry, CylinderGeometry, GridHelper, Group, Material, Mesh, MeshBasicMaterial,
         PlaneGeometry, Quaternion, ShadowMaterial, Vector3, ConeGeometry } from 'three';
import type { Palette } from './colors';

export const kAxisColors = ['#d8392b', '#2e9e4f', '#2f72e0'] as const;

const kDirections = [new Vector3(1, 0, 0), new Vector3(0, 1, 0), new Vector3(0, 0, 1)] as const;

export function triad(size: number): Group {
  const group = new Group();
  kDirections.forEach((direction, i) => {
    const material = new MeshBasicMaterial({ color: kAxisColors[i] as string, toneMapped: false });
    const turn = new Quaternion().setFromUnitVectors(new Vector3(0, 1, 0), direction);
    const put = (geometry: BufferGeometry, along: number): void => {
      const mesh = new Mesh(geometry.translate(0, along, 0).applyQuaternion(turn), material);
      group.add(mesh);
    };
    put(new CylinderGeometry(0.035 * size, 0.035 * size, 0.8 * size, 12), 0.4 * size);
    put(new ConeGeometry(0.09 * size, 0.24 * size, 16), 0.88 * size);
  });
  return group;
}

/** The base grid, with lines a round length apart: 0.1, 0.2, 0.5, 1 ... m. */
export function gridStep(extent: number): number {
  const rough = extent / 12;
  const power = Math.pow(10, Math.floor(Math.log10(rough)));
  return [1, 2, 5, 10].map((k) => k * power).find((step) => step >= rough) as number;
}

export function floorGrid(extent: number, palette: Palette): GridHelper {
  const step = gridStep(extent);
  const cells = 2 * Math.ceil(extent / step / 2);
  const grid = new GridHelper(cells * step, cells, palette.scene_grid_main, palette.scene_grid);
  grid.rotateX(Math.PI / 2);
  return grid;
}

export function shadowFloor(extent: number): Mesh {
  const floor = new Mesh(new PlaneGeometry(3 * extent, 3 * extent), new ShadowMaterial({ opacity: 0.16 }));
  floor.receiveShadow = true;
  floor.position.z = -0.001 * extent;
  return floor;
}

export function dispose(group: { traverse(visit: (object: unknown) => void): void }): void {
  group.traverse((object) => {
    const { geometry, material } = object as { geometry?: BufferGeometry; material?: Material };
    geometry?.dispose();
    material?.dispose();
  });
}

