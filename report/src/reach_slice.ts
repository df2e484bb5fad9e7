// One layer of cells, as a sheet through their centres.

import { BufferGeometry, DataTexture, DoubleSide, Float32BufferAttribute, Group, LineBasicMaterial, LineLoop, Mesh,
         MeshBasicMaterial, SRGBColorSpace } from 'three';
import { scaleColor } from './colors';
import { kAxisColors } from './frames';
import type { CellIndex, Grid } from './reach_data';
import { shareOf } from './reach_quantities';
import type { Field } from './reach_quantities';

export class Slice {
  readonly group = new Group();
  private readonly u: 0 | 1 | 2;
  private readonly v: 0 | 1 | 2;
  private readonly pixels: Uint8Array;
  private readonly texture: DataTexture;

  constructor(private readonly grid: Grid, private readonly axis: 0 | 1 | 2) {
    [this.u, this.v] = axis === 0 ? [1, 2] : axis === 1 ? [0, 2] : [0, 1];
    const [width, height] = [grid.count[this.u], grid.count[this.v]];
    this.pixels = new Uint8Array(4 * width * height);
    this.texture = new DataTexture(this.pixels, width, height);
    this.texture.colorSpace = SRGBColorSpace;
    const sheet = new Mesh(this.quad().setIndex([0, 1, 2, 0, 2, 3]), new MeshBasicMaterial({ map: this.texture, alphaTest: 0.5, side: DoubleSide,
                                                               toneMapped: false }));
    const frame = new LineLoop(this.quad(), new LineBasicMaterial({ color: kAxisColors[axis], toneMapped: false }));
    this.group.add(sheet, frame);
  }

  private quad(): BufferGeometry {
    const { grid, u, v } = this;
    const corners = [[0, 0], [1, 0], [1, 1], [0, 1]].flatMap((corner) => {
      const at = [0, 0, 0];
      [u, v].forEach((axis, i) => {
        at[axis] = grid.first_m[axis] + grid.step_m * ((corner[i] as number) * grid.count[axis] - 0.5);
      });
      return at;
    });
    return new BufferGeometry()
      .setAttribute('position', new Float32BufferAttribute(corners, 3))
      .setAttribute('uv', new Float32BufferAttribute([0, 0, 1, 0, 1, 1, 0, 1], 2));
  }

  /** Shows the layer of a cell. Where nothing is reached the sheet has holes. */
  show(field: Field, index: CellIndex): void {
    const { grid, axis, u, v } = this;
    const strides = [1, grid.count[0], grid.count[0] * grid.count[1]] as const;
    this.group.position.setComponent(axis, grid.first_m[axis] + index[axis] * grid.step_m);
    let at = 0;
    for (let b = 0; b < grid.count[v]; b++) {
      for (let a = 0; a < grid.count[u]; a++, at += 4) {
        const value = field.values[index[axis] * strides[axis] + a * strides[u] + b * strides[v]] as number;
        const reached = !Number.isNaN(value);
        const color = reached ? scaleColor(shareOf(field, value)) : [0, 0, 0];
        color.forEach((c, i) => { this.pixels[at + i] = Math.round(255 * c); });
        this.pixels[at + 3] = reached ? 255 : 0;
      }
    }
    this.texture.needsUpdate = true;
  }
}
