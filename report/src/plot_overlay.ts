// What is drawn over a plot's lines: where steps begin, limits, violations, and the joints' numbers.

import uPlot from 'uplot';
import type { PlotContext } from './plot';
import type { Quantity } from './quantities';
import { nearestSample } from './sampling';

/** What of a plot its overlay asks for. */
export interface OverlaidPlot {
  readonly context: PlotContext;
  readonly quantity: Quantity;
  readonly lines: number;
  /** Of the units shown, and of the picture in these. */
  readonly factor: number;
  readonly low: number;
  readonly high: number;
  bounds(): Quantity['bounds'];
  visible(line: number, motion: number): boolean;
  color(line: number): string;
}

/** Steps beyond which their lines hide what they are to divide. */
const kMostSteps = 40;

export class PlotOverlay {
  constructor(private readonly plot: OverlaidPlot, private readonly chart: uPlot) {}

  draw(): void {
    const { ctx } = this.chart;
    ctx.save();
    ctx.beginPath();
    ctx.rect(this.chart.bbox.left, this.chart.bbox.top, this.chart.bbox.width, this.chart.bbox.height);
    ctx.clip();
    this.drawSteps(ctx);
    this.drawBounds(ctx);
    this.drawViolations(ctx);
    if (this.plot.quantity.per_joint) this.drawNumbers(ctx);
    ctx.restore();
  }

  private drawSteps(ctx: CanvasRenderingContext2D): void {
    const { top, height } = this.chart.bbox;
    ctx.fillStyle = this.plot.context.palette().muted;
    ctx.globalAlpha = 0.3;
    const [begin, end] = this.plot.context.display.span.get();
    const steps = (this.plot.context.motions[0]?.steps ?? []).filter((s) => s.begin_s >= begin && s.begin_s <= end);
    for (const step of steps.length <= kMostSteps ? steps : []) {
      ctx.fillRect(this.chart.valToPos(step.begin_s, 'x', true), top, uPlot.pxRatio, height);
    }
    ctx.globalAlpha = 1;
  }

  private drawBounds(ctx: CanvasRenderingContext2D): void {
    const { left, width } = this.chart.bbox;
    const px = uPlot.pxRatio;
    ctx.strokeStyle = this.plot.context.palette().limit;
    ctx.lineWidth = px;
    ctx.setLineDash([6 * px, 4 * px]);
    for (const value of new Set(this.plot.bounds().map((bound) => bound.value * this.plot.factor))) {
      if (value < this.plot.low || value > this.plot.high) continue;
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
    ctx.fillStyle = this.plot.context.palette().limit;
    for (const check of this.plot.context.motions[0]?.verdict.checks ?? []) {
      if (check.state !== 'violation' || check.time_s === null || !this.plot.quantity.matches(check)) continue;
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
    const motion = this.plot.context.motions[0];
    if (!motion) return;
    const px = uPlot.pxRatio;
    const source = this.plot.quantity.source(motion);
    const [begin, end] = this.plot.context.display.span.get();
    ctx.font = `700 ${9 * px}px system-ui, sans-serif`;
    ctx.textAlign = 'center';
    ctx.textBaseline = 'middle';
    for (let line = 0; line < this.plot.lines; line++) {
      if (!this.plot.visible(line, 0)) continue;
      const i = nearestSample(source.time_s, begin + (end - begin) * (line + 0.5) / this.plot.lines);
      const value = (source.values[i * source.width + line] as number) * this.plot.factor;
      if (!Number.isFinite(value)) continue;
      const x = this.chart.valToPos(source.time_s[i] as number, 'x', true);
      const y = this.chart.valToPos(value, 'y', true);
      ctx.beginPath();
      ctx.arc(x, y, 6.5 * px, 0, 2 * Math.PI);
      ctx.fillStyle = this.plot.color(line);
      ctx.fill();
      ctx.strokeStyle = this.plot.context.palette().surface;
      ctx.lineWidth = 1.5 * px;
      ctx.stroke();
      ctx.fillStyle = this.plot.context.palette().surface;
      ctx.fillText(String(line + 1), x, y + 0.5 * px);
    }
  }
}
