// A reach study: what the tool found in each cell of its box.

import { float32, whole } from './base64';
import type { Raw, Triple } from './data';

export interface Grid {
  readonly count: Triple;
  /** Centre of cell 0 [m, base frame]. */
  readonly first_m: Triple;
  readonly step_m: number;
}

/** What the study comes to, as the command says it. */
export interface ReachSummary {
  readonly study: Raw;
  readonly cells_reached: number;
  readonly cells_reached_from_all_directions: number;
  readonly mean_share_of_directions: number;
  readonly best_cell: { readonly cell: number } | null;
}

/** Of a box, what of it is reached; of a placement, from which places of its base the arm reaches all poses. */
export type ReachKind = 'reach' | 'placement';

export interface Reach {
  readonly kind: ReachKind;
  readonly grid: Grid;
  readonly cells: number;
  /** How many are tried in each cell; of a placement how many poses. */
  readonly directions: number;
  readonly summary: ReachSummary;
  /** Of every cell, along x first, then y, then z. */
  readonly reached_directions: ArrayLike<number>;
  /** Of every cell, where it stands in what follows; -1 where nothing is reached. */
  readonly row: Int32Array;
  readonly solutions: ArrayLike<number>;
  readonly orientation: ArrayLike<number>;
  readonly margin_rad: Float32Array;
  readonly smallest_singular_value: Float32Array;
  readonly joints_rad: Float32Array;
  /** Positions of a placement's poses; none otherwise. */
  readonly poses_m: Float32Array;
}

/** Along x, y and z. */
export type CellIndex = readonly [number, number, number];

export function cellAt(grid: Grid, [i, j, k]: CellIndex): number {
  return i + grid.count[0] * (j + grid.count[1] * k);
}

export function indexOf(grid: Grid, cell: number): CellIndex {
  const [nx, ny] = grid.count;
  return [cell % nx, Math.floor(cell / nx) % ny, Math.floor(cell / (nx * ny))];
}

export function centreOf(grid: Grid, index: CellIndex): Triple {
  const at = (axis: 0 | 1 | 2): number => grid.first_m[axis] + index[axis] * grid.step_m;
  return [at(0), at(1), at(2)];
}

/** From where the arm is described to where it stands while a cell is looked at [m]. */
export function shiftOf(reach: Reach, cell: number): Triple {
  if (reach.kind === 'reach') return [0, 0, 0];
  const base = (reach.summary.study['base'] as { position_m: Triple }).position_m;
  const [x, y, z] = centreOf(reach.grid, indexOf(reach.grid, cell));
  return [x - base[0], y - base[1], z - base[2]];
}

/** The best joints of a cell; null where nothing is reached. */
export function jointsOf(reach: Reach, cell: number): Float32Array | null {
  const row = reach.row[cell] ?? -1;
  return row < 0 ? null : reach.joints_rad.subarray(6 * row, 6 * row + 6);
}

function wholeOf(raw: Raw, key: string): ArrayLike<number> {
  const { bytes, values } = raw[key] as { bytes: number; values: string };
  return whole(values, bytes, key);
}

function expect(values: ArrayLike<number>, count: number, what: string): void {
  if (values.length !== count) throw new Error(`${what} has ${values.length} values, not ${count}`);
}

export function reachOf(raw: Raw): Reach {
  const grid = raw['grid'] as Grid;
  const cells = grid.count[0] * grid.count[1] * grid.count[2];
  const reached_directions = wholeOf(raw, 'reached_directions');
  expect(reached_directions, cells, 'reached_directions');
  const row = new Int32Array(cells);
  let rows = 0;
  for (let cell = 0; cell < cells; cell++) row[cell] = (reached_directions[cell] as number) > 0 ? rows++ : -1;
  const floats = (key: string, width: number): Float32Array => {
    const values = float32(raw[key] as string, key);
    expect(values, rows * width, key);
    return values;
  };
  const summary = raw['summary'] as ReachSummary;
  const kind: ReachKind = summary.study['kind'] === 'placement' ? 'placement' : 'reach';
  const reach = {
    kind, grid, cells, reached_directions, row, summary,
    directions: summary.study[kind === 'placement' ? 'poses' : 'directions'] as number,
    solutions: wholeOf(raw, 'solutions'),
    orientation: wholeOf(raw, 'orientation'),
    margin_rad: floats('margin_rad', 1),
    smallest_singular_value: floats('smallest_singular_value', 1),
    joints_rad: floats('joints_rad', 6),
    poses_m: float32((raw['poses_m'] ?? '') as string, 'poses_m'),
  };
  expect(reach.solutions, rows, 'solutions');
  expect(reach.orientation, rows, 'orientation');
  return reach;
}
