// What the reader looks at in a reach study.

import type { CellIndex, Reach } from './reach_data';
import { cellAt, indexOf } from './reach_data';
import { fieldOf, quantitiesOf } from './reach_quantities';
import type { CellQuantity, Field } from './reach_quantities';
import { Signal, Value } from './state';

/** From which layers on along x, y and z cells are left out; null: not along that axis, or not at all. */
export type Cut = readonly [number | null, number | null, number | null] | null;

export class ReachState {
  readonly field: Value<Field>;
  /** The cell that is looked at: where the slices cross. */
  readonly cell: Value<number>;
  readonly slices: Value<readonly [boolean, boolean, boolean]>;
  readonly surface: Value<boolean>;
  readonly cut_open = new Value<boolean>(true);
  /** Of the surface, as a share of the scale. */
  readonly threshold = new Value<number>(0);
  /** Whatever changes how cells look. */
  readonly looks = new Signal();

  constructor(readonly reach: Reach) {
    this.field = new Value(fieldOf(reach, quantitiesOf(reach)[0] as CellQuantity));
    this.cell = new Value(reach.summary.best_cell?.cell ?? Math.floor(reach.cells / 2));
    // A box of one layer is seen as a whole in a slice; others are cut open so that the arm is seen.
    const [x, y, z] = reach.grid.count.map((count) => count === 1) as [boolean, boolean, boolean];
    this.slices = new Value(x || y || z ? [x, y, z] : [true, true, false]);
    this.surface = new Value(!(x || y || z));
    for (const value of [this.field, this.cell, this.slices, this.surface, this.cut_open, this.threshold]) {
      value.on(() => this.looks.emit());
    }
  }

  get index(): CellIndex {
    return indexOf(this.reach.grid, this.cell.get());
  }

  setIndex(axis: number, at: number): void {
    const index = this.index.map((i, a) => (a === axis ? at : i)) as unknown as CellIndex;
    this.cell.set(cellAt(this.reach.grid, index));
  }

  setQuantity(quantity: CellQuantity): void {
    this.field.set(fieldOf(this.reach, quantity));
  }

  toggleSlice(axis: number): void {
    this.slices.set(this.slices.get().map((on, a) => (a === axis ? !on : on)) as unknown as [boolean, boolean, boolean]);
  }

  best(): void {
    const best = this.reach.summary.best_cell;
    if (best) this.cell.set(best.cell);
  }

  /** The surface's least value, of what is shown. */
  get least(): number {
    return this.threshold.get() * this.field.get().highest;
  }

  get cut(): Cut {
    const slices = this.slices.get();
    if (!this.cut_open.get() || !slices.includes(true)) return null;
    const { index } = this;
    const at = (axis: 0 | 1 | 2): number | null => (slices[axis] ? index[axis] : null);
    return [at(0), at(1), at(2)];
  }
}
