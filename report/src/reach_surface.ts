// Cells as cubes: the faces between those that are shown and those that aren't.

import { BufferGeometry, CanvasTexture, Color, DoubleSide, Float32BufferAttribute, LinearMipmapLinearFilter, Mesh,
         MeshBasicMaterial, SRGBColorSpace, Uint32BufferAttribute, Uint8BufferAttribute } from 'three';
import { scaleColor } from './colors';
import type { CellIndex, Grid } from './reach_data';
import { shareOf } from './reach_quantities';
import type { Field } from './reach_quantities';
import type { Cut } from './reach_state';

const kColors = 256;

/** Faces of a cube, by axis and side: light falls from above, so that shapes are seen; and where the corners are. */
const kFaces = ([0, 1, 2] as const).flatMap((axis) => ([1, -1] as const).map((side) => {
  const [u, v] = [(axis + 1) % 3, (axis + 2) % 3];
  const corners = ([[-1, -1], [1, -1], [1, 1], [-1, 1]] as const).map(([a, b]) => {
    const at = [0, 0, 0];
    at[axis] = side / 2;
    at[u] = (side * a) / 2;
    at[v] = b / 2;
    return at as unknown as CellIndex;
  });
  return { axis, side, corners, light: axis === 2 ? (side > 0 ? 1 : 0.62) : axis === 1 ? 0.8 : 0.9 };
}));

/** Whether each cell is shown: at least the threshold, and not where it is cut open, from the slices on towards the eye of the first view. */
export function shownCells(grid: Grid, field: Field, threshold: number, cut: Cut): Uint8Array {
  const [nx, ny, nz] = grid.count;
  const shown = new Uint8Array(nx * ny * nz);
  let cell = 0;
  for (let k = 0; k < nz; k++) {
    for (let j = 0; j < ny; j++) {
      const open = cut !== null && (cut[1] === null || j <= cut[1]) && (cut[2] === null || k >= cut[2]);
      for (let i = 0; i < nx; i++, cell++) {
        // Not a number where nothing is reached.
        if (!((field.values[cell] as number) >= threshold)) continue;
        if (!open || (cut[0] !== null && i < cut[0])) shown[cell] = 1;
      }
    }
  }
  return shown;
}

interface Face {
  readonly cell: number;
  readonly index: CellIndex;
  readonly kind: number;
}

function visibleFaces(grid: Grid, shown: Uint8Array): Face[] {
  const faces: Face[] = [];
  const [nx, ny, nz] = grid.count;
  const strides = [1, nx, nx * ny];
  let cell = 0;
  for (let k = 0; k < nz; k++) {
    for (let j = 0; j < ny; j++) {
      for (let i = 0; i < nx; i++, cell++) {
        if (shown[cell] !== 1) continue;
        const index: CellIndex = [i, j, k];
        kFaces.forEach(({ axis, side }, kind) => {
          const next = index[axis] + side;
          const inside = next >= 0 && next < grid.count[axis];
          if (!inside || shown[cell + side * (strides[axis] as number)] !== 1) faces.push({ cell, index, kind });
        });
      }
    }
  }
  return faces;
}

// For each kind of face the colours of the scale, as bytes in the space that is drawn in.
function faceColors(): Uint8Array[] {
  const color = new Color();
  return kFaces.map(({ light }) => {
    const bytes = new Uint8Array(3 * kColors);
    for (let c = 0; c < kColors; c++) {
      const [r, g, b] = scaleColor(c / (kColors - 1));
      color.setRGB(light * r, light * g, light * b, SRGBColorSpace).toArray().forEach((x, i) => {
        bytes[3 * c + i] = Math.round(255 * x);
      });
    }
    return bytes;
  });
}

const kUv = [0, 0, 1, 0, 1, 1, 0, 1];
const kCorners = [0, 1, 2, 0, 2, 3];

export function surfaceGeometry(grid: Grid, field: Field, shown: Uint8Array): BufferGeometry {
  const faces = visibleFaces(grid, shown);
  const colors = faceColors();
  const positions = new Float32Array(12 * faces.length);
  const vertex_colors = new Uint8Array(12 * faces.length);
  const uv = new Float32Array(8 * faces.length);
  const indices = new Uint32Array(6 * faces.length);
  faces.forEach(({ cell, index, kind }, f) => {
    const { corners } = kFaces[kind] as (typeof kFaces)[number];
    const c = Math.round((kColors - 1) * shareOf(field, field.values[cell] as number));
    const color = (colors[kind] as Uint8Array).subarray(3 * c, 3 * c + 3);
    corners.forEach((corner, v) => {
      for (let axis = 0; axis < 3; axis++) {
        positions[12 * f + 3 * v + axis] = (grid.first_m[axis] as number) +
          grid.step_m * ((index[axis] as number) + (corner[axis] as number));
      }
      vertex_colors.set(color, 12 * f + 3 * v);
    });
    uv.set(kUv, 8 * f);
    kCorners.forEach((corner, v) => { indices[6 * f + v] = 4 * f + corner; });
  });
  return new BufferGeometry()
    .setAttribute('position', new Float32BufferAttribute(positions, 3))
    .setAttribute('color', new Uint8BufferAttribute(vertex_colors, 3, true))
    .setAttribute('uv', new Float32BufferAttribute(uv, 2))
    .setIndex(new Uint32BufferAttribute(indices, 1));
}

// A face with a darker rim: cells of one colour are told apart; from afar it fades.
function rim(): CanvasTexture {
  const canvas = document.createElement('canvas');
  canvas.width = canvas.height = 64;
  const c = canvas.getContext('2d');
  if (c) {
    c.fillStyle = '#ffffff';
    c.fillRect(0, 0, 64, 64);
    c.strokeStyle = 'rgb(30 40 55 / 34%)';
    c.lineWidth = 4;
    c.strokeRect(0, 0, 64, 64);
  }
  const texture = new CanvasTexture(canvas);
  texture.colorSpace = SRGBColorSpace;
  texture.minFilter = LinearMipmapLinearFilter;
  texture.anisotropy = 4;
  return texture;
}

export function surfaceMesh(): Mesh {
  const material = new MeshBasicMaterial({ vertexColors: true, map: rim(), side: DoubleSide, toneMapped: false });
  return new Mesh(new BufferGeometry(), material);
}
