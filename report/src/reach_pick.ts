// Which cell is under the pointer: a ray through the grid, from cell to cell.

import type { Ray } from 'three';
import { cellAt } from './reach_data';
import type { CellIndex, Grid } from './reach_data';
import type { Field } from './reach_quantities';

interface Hit {
  readonly cell: number;
  readonly distance: number;
}

type Triplet = [number, number, number];

// The ray in cells: cell i reaches from i to i + 1.
function inCells(grid: Grid, ray: Ray): { from: Triplet; along: Triplet } {
  const from = ray.origin.toArray().map((x, a) => (x - (grid.first_m[a] as number)) / grid.step_m + 0.5) as Triplet;
  const along = ray.direction.toArray().map((x) => x / grid.step_m) as Triplet;
  return { from, along };
}

// From where to where the ray is in the box; null: nowhere.
function span(grid: Grid, from: Triplet, along: Triplet): [number, number] | null {
  let [begin, end] = [0, Infinity];
  for (const axis of [0, 1, 2] as const) {
    const [a, b] = [-from[axis] / along[axis], (grid.count[axis] - from[axis]) / along[axis]];
    // Along the axis' own planes these are infinite, or NaN on one of them.
    begin = Math.max(begin, Math.min(a, b) || 0);
    end = Math.min(end, Math.max(a, b));
  }
  return begin < end ? [begin, end] : null;
}

/** The first cell of those that are shown as cubes. */
function firstCube(grid: Grid, ray: Ray, shown: Uint8Array): Hit | null {
  const { from, along } = inCells(grid, ray);
  const inside = span(grid, from, along);
  if (!inside) return null;
  let [distance] = inside;
  const axes = [0, 1, 2] as const;
  const index = axes.map((a) =>
    Math.min(Math.max(Math.floor(from[a] + distance * along[a]), 0), grid.count[a] - 1)) as Triplet;
  const next = axes.map((a) => (index[a] + (along[a] > 0 ? 1 : 0) - from[a]) / along[a]) as Triplet;
  for (;;) {
    const cell = cellAt(grid, index);
    if (shown[cell] === 1) return { cell, distance };
    const axis = axes.reduce((a, b) => (along[a] === 0 || (along[b] !== 0 && next[b] < next[a]) ? b : a));
    distance = next[axis];
    index[axis] += Math.sign(along[axis]);
    if (!(index[axis] >= 0 && index[axis] < grid.count[axis])) return null;
    next[axis] += 1 / Math.abs(along[axis]);
  }
}

/** The cell of a sheet, where it isn't a hole. */
function onSlice(grid: Grid, ray: Ray, axis: 0 | 1 | 2, layer: number, field: Field): Hit | null {
  const { from, along } = inCells(grid, ray);
  const distance = (layer + 0.5 - from[axis]) / along[axis];
  if (!(distance > 0 && distance < Infinity)) return null;
  const at = from.map((x, a) => Math.floor(x + distance * (along[a] as number))) as Triplet;
  at[axis] = layer;
  if (!at.every((i, a) => i >= 0 && i < (grid.count[a] as number))) return null;
  const cell = cellAt(grid, at);
  return Number.isNaN(field.values[cell]) ? null : { cell, distance };
}

/** What of the picture is hit first. @param shown cells that are cubes; null: none */
export function pickCell(grid: Grid, ray: Ray, field: Field, slices: readonly boolean[], at: CellIndex,
                         shown: Uint8Array | null): number | null {
  const hits = ([0, 1, 2] as const).map((axis) => (slices[axis] ? onSlice(grid, ray, axis, at[axis], field) : null));
  if (shown) hits.push(firstCube(grid, ray, shown));
  const nearest = hits.reduce((a, b) => (!a || (b && b.distance < a.distance) ? b : a), null);
  return nearest?.cell ?? null;
}
