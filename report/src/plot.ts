// One plot over time.

import uPlot from 'uplot';
import type { Palette } from './colors';
import type { Motion } from './data';
import { borders, timesOf, valuesOf } from './decimate';
import type { Column } from './decimate';
import { el } from './dom';
import type { Quantity } from './quantities';
import { limitsText } from './quantities';
import { nearestSample } from './sampling';
import type { Display } from './state';
import { number, shown } from './units';

export interface PlotContext {
  readonly motions: readonly Motion[];
  readonly display: Display;
  palette(): Palette;
  seek(t: number): void;
  zoom(begin: number, end: number): void;
}

const kHeight = 158;
const kNarrowest = 220;
const kPaper = { width: 500, height: 190 };
/** A limit is in the picture once the values come as near as this share of it. */
const kNearLimit = 0.45;
/** Steps beyond which their lines hide what they are to divide. */
const kMostSteps = 40;
const kSync = uPlot.sync('time');

function tickText(value: number): string {
  const size = Math.abs(value);
  const text = size >= 1e5 || (size > 0 && size < 1e-4) ? value.toExponential().replace('e+', 'e') : String(Number(value.toPrecision(6)));
  return text.replaceAll('-', '−');
}

export class Plot {
  readonly figure: HTMLElement;
  private readonly caption = el('figcaption');
  private readonly host = el('div', { class: 'plot-host' });
  private readonly tip = el('div', { class: 'plot-tip', hidden: '' });
  private readonly chart: uPlot;
  private readonly lines: number;
  private factor = 1;
  private low = 0;
  private high = 1;

  constructor(private readonly quantity: Quantity, private readonly context: PlotContext) {
    this.lines = quantity.per_joint ? 6 : 1;
    this.figure = el('figure', { class: 'plot', 'data-plot': quantity.key }, this.caption, this.host);
    this.chart = new uPlot(this.options(), [[0, 1]] as unknown as uPlot.AlignedData, this.host);
    this.chart.over.append(this.tip);
    new ResizeObserver(() => this.resize()).observe(this.host);
  }

  private options(): uPlot.Options {
    const { context } = this;
    const axis = {
      stroke: () => context.palette().muted,
      font: '11px system-ui, sans-serif',
      grid: { stroke: () => context.palette().grid, width: 1 },
      ticks: { show: false },
    };
    return {
      width: kNarrowest, height: kHeight, legend: { show: false }, padding: [10, 10, 0, 0],
      scales: { x: { time: false, auto: false }, y: { range: () => [this.low, this.high] } },
      axes: [
        { ...axis, size: 24, gap: 4, values: (_, ticks) => ticks.map((t) => `${Number(t.toFixed(6))} s`) },
        { ...axis, size: 58, gap: 6, values: (_, ticks) => ticks.map(tickText) },
      ],
      series: [{}, ...context.motions.flatMap((_, motion) => this.seriesOf(motion))],
      // The line under the pointer is one for all plots; what is pressed is the plot's own.
      cursor: { sync: { key: kSync.key, filters: { pub: (type) => type === 'mousemove' || type === 'mouseleave' } },
                y: false, points: { show: false },
                drag: { x: true, y: false, setScale: false, dist: 6 } },
      hooks: {
        draw: [() => this.drawOver()],
        setSelect: [(u) => this.selected(u)],
        setCursor: [() => this.hover()],
        ready: [(u) => this.clicks(u)],
      },
    };
  }

  private seriesOf(motion: number): uPlot.Series[] {
    return Array.from({ length: this.lines }, (_, line): uPlot.Series => ({
      stroke: () => this.color(line),
      width: motion === 0 ? 1.6 : 1.2,
      alpha: motion === 0 ? 1 : 0.75,
      points: { show: false },
      ...(motion === 0 ? {} : { dash: [5, 4] }),
    }));
  }

  private color(line: number): string {
    const palette = this.context.palette();
    return this.quantity.per_joint ? (palette.joints[line] as string) : palette.line;
  }

  private visible(line: number, motion: number): boolean {
    if (motion > 0 && !this.context.display.ghost.get()) return false;
    return !this.quantity.per_joint || !this.context.display.hidden.get().has(line);
  }

  /** Draws anew what the reader's choices, the span of time or the size have changed. */
  update(): void {
    const { display, motions } = this.context;
    const unit = shown(this.quantity.unit, display.units.get());
    this.factor = unit.factor;
    const limits = limitsText(this.bounds(), this.factor);
    this.caption.replaceChildren(this.quantity.title, unit.label ? el('span', { class: 'unit' }, unit.label) : '',
                                 el('span', { class: 'limits' }, limits));
    const [begin, end] = display.span.get();
    const columns = Math.max(Math.floor(this.chart.width - 68), 50);
    const tables = motions.map((motion, m) => this.table(motion, m, begin, end, columns));
    const data = tables.length > 1 ? uPlot.join(tables) : tables[0];
    this.fitHeight(tables.flatMap((table) => table.slice(1) as Column[]));
    this.chart.batch(() => {
      if (data) this.chart.setData(data, false);
      this.chart.setScale('x', { min: begin, max: end });
    });
    this.describe(unit.label);
  }

  private table(motion: Motion, m: number, begin: number, end: number, columns: number): uPlot.AlignedData {
    const source = this.quantity.source(motion);
    const at = borders(source.time_s, begin, end, columns);
    const times = timesOf(source.time_s, at);
    const values = Array.from({ length: this.lines }, (_, line): Column =>
      this.visible(line, m) ? valuesOf(source, line, at, this.factor) : times.map(() => null));
    return [times, ...values] as uPlot.AlignedData;
  }

  private bounds(): Quantity['bounds'] {
    return this.quantity.bounds.filter((b) => b.joint === null || this.visible(b.joint, 0));
  }

  private fitHeight(columns: readonly Column[]): void {
    let low = this.quantity.from ?? Infinity;
    let high = this.quantity.from ?? -Infinity;
    for (const column of columns) {
      for (const value of column) {
        if (value === null) continue;
        if (value < low) low = value;
        if (value > high) high = value;
      }
    }
    if (low > high) [low, high] = [-1, 1];
    for (const bound of this.bounds()) {
      const value = bound.value * this.factor;
      if (value > 0 && high >= kNearLimit * value) high = Math.max(high, value);
      if (value < 0 && low <= kNearLimit * value) low = Math.min(low, value);
    }
    const room = 0.07 * (high - low) || 1;
    [this.low, this.high] = [low - (this.quantity.from === low ? 0 : room), high + room];
  }

  /** Where the time `t` is, from the left of the plot [px]; null: out of the picture. */
  placeOf(t: number): number | null {
    const x = this.chart.valToPos(t, 'x');
    const { offsetLeft, clientWidth } = this.chart.over;
    return x >= -0.5 && x <= clientWidth + 0.5 ? offsetLeft + x : null;
  }

  private resize(): void {
    // Not shown, as on paper.
    if (this.host.clientWidth === 0) return;
    this.setSize(Math.max(this.host.clientWidth, kNarrowest), kHeight);
  }

  private setSize(width: number, height: number): void {
    if (width === this.chart.width && height === this.chart.height) return;
    this.chart.setSize({ width, height });
    this.update();
  }

  private clicks(u: uPlot): void {
    let from = 0;
    u.over.addEventListener('pointerdown', (event) => { from = event.clientX; });
    // Not "click": the chart keeps those after a drag to itself.
    u.over.addEventListener('pointerup', (event) => {
      if (event.button !== 0 || Math.abs(event.clientX - from) > 5) return;
      this.context.seek(u.posToVal(event.clientX - u.over.getBoundingClientRect().left, 'x'));
    });
    u.over.addEventListener('dblclick', () => this.context.zoom(-Infinity, Infinity));
    u.over.addEventListener('mouseleave', () => { this.tip.hidden = true; });
  }

  private selected(u: uPlot): void {
    const { left, width } = u.select;
    if (width < 6) return;
    const [begin, end] = [u.posToVal(left, 'x'), u.posToVal(left + width, 'x')];
    u.setSelect({ left: 0, top: 0, width: 0, height: 0 }, false);
    this.context.zoom(begin, end);
  }

  // The values where the pointer is, of the plot that it is in.
  private hover(): void {
    const left = this.chart?.cursor.left ?? -1;
    const motion = this.context.motions[0];
    if (!motion || left < 0 || !this.chart.over.matches(':hover')) {
      this.tip.hidden = true;
      return;
    }
    const source = this.quantity.source(motion);
    const i = nearestSample(source.time_s, this.chart.posToVal(left, 'x'));
    const rows: Node[] = [el('div', { class: 'tip-time' }, `${(source.time_s[i] as number).toFixed(3)} s`)];
    for (let line = 0; line < this.lines; line++) {
      if (!this.visible(line, 0)) continue;
      const value = number((source.values[i * source.width + line] as number) * this.factor);
      const swatch = el('span', { class: 'swatch' }, this.quantity.per_joint ? String(line + 1) : '');
      swatch.style.background = this.color(line);
      rows.push(el('div', {}, swatch, value));
    }
    this.tip.replaceChildren(...rows);
    this.tip.hidden = false;
    this.tip.classList.toggle('to-left', left > this.chart.over.clientWidth / 2);
    this.tip.style.left = `${left}px`;
  }

  private drawOver(): void {
    const { ctx } = this.chart;
    ctx.save();
    ctx.beginPath();
    ctx.rect(this.chart.bbox.left, this.chart.bbox.top, this.chart.bbox.width, this.chart.bbox.height);
    ctx.clip();
    this.drawSteps(ctx);
    this.drawBounds(ctx);
    this.drawViolations(ctx);
    if (this.quantity.per_joint) this.drawNumbers(ctx);
    ctx.restore();
  }

  private drawSteps(ctx: CanvasRenderingContext2D): void {
    const { top, height } = this.chart.bbox;
    ctx.fillStyle = this.context.palette().muted;
    ctx.globalAlpha = 0.3;
    const [begin, end] = this.context.display.span.get();
    const steps = (this.context.motions[0]?.steps ?? []).filter((s) => s.begin_s >= begin && s.begin_s <= end);
    for (const step of steps.length <= kMostSteps ? steps : []) {
      ctx.fillRect(this.chart.valToPos(step.begin_s, 'x', true), top, uPlot.pxRatio, height);
    }
    ctx.globalAlpha = 1;
  }

  private drawBounds(ctx: CanvasRenderingContext2D): void {
    const { left, width } = this.chart.bbox;
    const px = uPlot.pxRatio;
    ctx.strokeStyle = this.context.palette().limit;
    ctx.lineWidth = px;
    ctx.setLineDash([6 * px, 4 * px]);
    for (const value of new Set(this.bounds().map((bound) => bound.value * this.factor))) {
      if (value < this.low || value > this.high) continue;
      const y = Math.round(this.chart.valToPos(value, 'y', true)) + 0.5;
      ctx.beginPath();
      ctx.moveTo(left, y);
      ctx.lineTo(left + width, y);
      ctx.stroke();
    }
    ctx.setLineDash([]);
  }

  private drawViolations(ctx: CanvasRenderingContext2D): void {
    const px = uPlot.pxRatio;
    const { top, height } = this.chart.bbox;
    ctx.fillStyle = this.context.palette().limit;
    for (const check of this.context.motions[0]?.verdict.checks ?? []) {
      if (check.state !== 'violation' || check.time_s === null || !this.quantity.matches(check)) continue;
      const x = this.chart.valToPos(check.time_s, 'x', true);
      ctx.globalAlpha = 0.5;
      ctx.fillRect(x - 0.5 * px, top, px, height);
      ctx.globalAlpha = 1;
      ctx.beginPath();
      ctx.moveTo(x - 6 * px, top);
      ctx.lineTo(x + 6 * px, top);
      ctx.lineTo(x, top + 9 * px);
      ctx.fill();
    }
  }

  // Each line bears its joint's number, so that colour isn't all that tells it apart.
  private drawNumbers(ctx: CanvasRenderingContext2D): void {
    const motion = this.context.motions[0];
    if (!motion) return;
    const px = uPlot.pxRatio;
    const source = this.quantity.source(motion);
    const [begin, end] = this.context.display.span.get();
    ctx.font = `700 ${9 * px}px system-ui, sans-serif`;
    ctx.textAlign = 'center';
    ctx.textBaseline = 'middle';
    for (let line = 0; line < this.lines; line++) {
      if (!this.visible(line, 0)) continue;
      const i = nearestSample(source.time_s, begin + (end - begin) * (line + 0.5) / this.lines);
      const value = (source.values[i * source.width + line] as number) * this.factor;
      if (!Number.isFinite(value)) continue;
      const x = this.chart.valToPos(source.time_s[i] as number, 'x', true);
      const y = this.chart.valToPos(value, 'y', true);
      ctx.beginPath();
      ctx.arc(x, y, 6.5 * px, 0, 2 * Math.PI);
      ctx.fillStyle = this.color(line);
      ctx.fill();
      ctx.strokeStyle = this.context.palette().surface;
      ctx.lineWidth = 1.5 * px;
      ctx.stroke();
      ctx.fillStyle = this.context.palette().surface;
      ctx.fillText(String(line + 1), x, y + 0.5 * px);
    }
  }

  private describe(unit: string): void {
    const text = `${this.quantity.title}${unit ? ` in ${unit}` : ''} over time, from ${number(this.low)} to ${number(this.high)}`;
    this.host.setAttribute('role', 'img');
    this.host.setAttribute('aria-label', text);
  }

  /** The plot as a picture, of a size for paper. */
  image(): string {
    const { width, height } = this.chart;
    this.setSize(kPaper.width, kPaper.height);
    const picture = this.chart.ctx.canvas.toDataURL('image/png');
    this.setSize(width, height);
    return picture;
  }
}
