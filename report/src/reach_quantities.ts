// What cells are coloured by.

import type { Reach, ReachKind } from './reach_data';
import { quantity } from './units';
import type { UnitSystem } from './units';

export interface CellQuantity {
  readonly key: string;
  readonly title: string;
  /** Of the data, as in `units`. */
  readonly unit: string;
  /** What it says, in a sentence. */
  readonly about: string;
  /** Of a cell that is reached, by its row. */
  value(reach: Reach, cell: number, row: number): number;
}

function listOf(kind: ReachKind): readonly CellQuantity[] {
  const placement = kind === 'placement';
  return [
    { key: 'reached_share', title: placement ? 'Poses reached' : 'Directions reached', unit: 'share',
      about: placement ? 'Share of the poses that the arm reaches while its base stands in the cell.' :
        'Share of the directions of the tool\'s z axis from which the cell\'s centre is reached.',
      value: (reach, cell) => (reach.reached_directions[cell] as number) / reach.directions },
    { key: 'margin', title: 'Margin to joint limits', unit: 'rad',
      about: placement ? 'How far the joints stay from their limits, at the pose where that is least.' :
        'How far the best solution\'s joints stay from their limits.',
      value: (reach, _, row) => reach.margin_rad[row] as number },
    { key: 'smallest_singular_value', title: 'Smallest singular value', unit: '',
      about: `Of the Jacobian in metres and radians, ${placement ? 'the smallest of all poses' : 'at the best solution'}: 0 in a singularity.`,
      value: (reach, _, row) => reach.smallest_singular_value[row] as number },
    { key: 'solutions', title: 'Solutions', unit: 'count',
      about: `Admissible solutions of all ${placement ? 'poses' : 'directions'} together.`,
      value: (reach, _, row) => reach.solutions[row] as number },
  ];
}

const kQuantities: Readonly<Record<ReachKind, readonly CellQuantity[]>> = { reach: listOf('reach'), placement: listOf('placement') };

export function quantitiesOf(reach: Reach): readonly CellQuantity[] {
  return kQuantities[reach.kind];
}

/** A value with its unit. */
export function valueText(asked: CellQuantity, value: number, units: UnitSystem): string {
  if (value === Infinity) return 'no limit';
  if (asked.unit === 'count') return Math.round(value).toLocaleString('en');
  return quantity(value, asked.unit, units);
}

/** A quantity of every cell, NaN where nothing is reached, and the highest that is finite. */
export interface Field {
  readonly quantity: CellQuantity;
  readonly values: Float32Array;
  readonly highest: number;
}

export function fieldOf(reach: Reach, quantity: CellQuantity): Field {
  const values = new Float32Array(reach.cells).fill(NaN);
  let highest = 0;
  for (let cell = 0; cell < reach.cells; cell++) {
    const row = reach.row[cell] as number;
    if (row < 0) continue;
    const value = quantity.value(reach, cell, row);
    values[cell] = value;
    if (value > highest && value < Infinity) highest = value;
  }
  return { quantity, values, highest };
}

/** Where a value is in the scale from 0 to the highest; without bound is the end. */
export function shareOf(field: Field, value: number): number {
  return field.highest > 0 ? Math.min(Math.max(value / field.highest, 0), 1) : value > 0 ? 1 : 0;
}

export interface Histogram {
  readonly counts: readonly number[];
  /** Width of a bin, the first of which begins at 0. */
  readonly width: number;
}

const kBins = 40;
const kMostBins = 100;

// Where values are steps of a ladder, a bar is a step, as far as there is room.
function binsOf(reach: Reach, { quantity, highest }: Field): number {
  const steps = quantity.unit === 'share' ? Math.round(highest * reach.directions) : quantity.unit === 'count' ? highest : kBins;
  return Math.max(1, steps > kMostBins ? kBins : steps);
}

/** Of the cells that are reached. A bin has its upper end; the first one 0, too, and the last what has no bound. */
export function histogramOf(reach: Reach, field: Field): Histogram {
  const bins = binsOf(reach, field);
  const counts = new Array<number>(bins).fill(0);
  for (const value of field.values) {
    if (Number.isNaN(value)) continue;
    // A share has the seven digits of a float, and belongs to its own step.
    const bin = Math.max(Math.ceil(shareOf(field, value) * bins - 1e-4) - 1, 0);
    counts[bin] = (counts[bin] as number) + 1;
  }
  return { counts, width: field.highest / bins };
}
