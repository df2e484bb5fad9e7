// All plots: one span of time, one cursor.

import { kPalettes } from './colors';
import type { Theme } from './colors';
import type { Report } from './data';
import { byId, el } from './dom';
import { Plot } from './plot';
import { quantitiesOf } from './quantities';
import type { Playback } from './playback';
import type { Display } from './state';
import type { Value } from './state';

export class Plots {
  readonly plots: readonly Plot[];
  // One line through all plots: eight would have the browser compose all of them for each moment.
  private readonly playhead = el('div', { id: 'playhead' });
  private readonly whole: readonly [number, number];

  constructor(report: Report, private readonly display: Display, private readonly playback: Playback,
              theme: Value<Theme>) {
    this.whole = [playback.begin, playback.end > playback.begin ? playback.end : playback.begin + 1];
    display.span.set(this.whole);
    const context = {
      motions: report.motions,
      display,
      palette: () => kPalettes[theme.get()],
      seek: (t: number) => { playback.playing.set(false); playback.seek(t); },
      zoom: (begin: number, end: number) => this.zoom(begin, end),
    };
    this.plots = quantitiesOf(report.arm).map((quantity) => new Plot(quantity, context));
    byId('plots').append(...this.plots.map((plot) => plot.figure), this.playhead);
    new ResizeObserver(() => this.place()).observe(byId('plots'));
    for (const value of [display.units, display.hidden, display.ghost, display.span, theme]) {
      value.on(() => this.update());
    }
    playback.moved.on(() => this.follow());
    byId('zoom-in').addEventListener('click', () => this.zoomBy(0.5));
    byId('zoom-out').addEventListener('click', () => this.zoomBy(2));
    byId('zoom-all').addEventListener('click', () => this.zoom(-Infinity, Infinity));
    this.update();
  }

  update(): void {
    for (const plot of this.plots) plot.update();
    this.place();
  }

  /** Shows the times from `begin` to `end`, as far as there are any. */
  zoom(begin: number, end: number): void {
    const [first, last] = this.whole;
    const shortest = 1e-6 * (last - first);
    const from = Math.max(begin, first);
    const to = Math.min(end, last);
    if (to - from > shortest) this.display.span.set([from, to]);
  }

  /** Around the moment that is shown. */
  zoomBy(factor: number): void {
    const [begin, end] = this.display.span.get();
    const length = Math.min((end - begin) * factor, this.whole[1] - this.whole[0]);
    const middle = Math.min(Math.max(this.playback.time, begin), end);
    const from = Math.min(Math.max(middle - (middle - begin) * factor, this.whole[0]), this.whole[1] - length);
    this.zoom(from, from + length);
  }

  // A zoomed plot goes along with the moment that is shown.
  private follow(): void {
    const t = this.playback.time;
    const [begin, end] = this.display.span.get();
    if (t < begin || t > end) {
      const length = end - begin;
      const from = Math.min(Math.max(t - 0.1 * length, this.whole[0]), this.whole[1] - length);
      this.zoom(from, from + length);
    }
    this.place();
  }

  private place(): void {
    const x = this.plots[0]?.placeOf(this.playback.time) ?? null;
    this.playhead.style.visibility = x === null ? 'hidden' : 'visible';
    if (x !== null) this.playhead.style.transform = `translateX(${x}px)`;
  }
}
