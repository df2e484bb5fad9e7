// The clock of the page: which moment is shown, and whether it runs.

import { nearestSample, sampleAt } from './sampling';
import { Signal, Value } from './state';

export const kSpeeds: readonly number[] = [0.05, 0.1, 0.25, 0.5, 1, 2, 5, 10];
const kNormal = kSpeeds.indexOf(1);

export class Playback {
  readonly playing = new Value<boolean>(false);
  readonly speed = new Value<number>(kNormal);
  readonly moved = new Signal();
  readonly begin: number;
  readonly end: number;
  private now: number;
  private last_frame_ms = 0;

  /** @param time_s the samples of the motion that is stepped through, @param end when all are over */
  constructor(private readonly time_s: Float64Array, end: number) {
    this.begin = time_s[0] ?? 0;
    this.end = Math.max(end, this.begin);
    this.now = this.begin;
  }

  get time(): number {
    return this.now;
  }

  get sample(): number {
    return nearestSample(this.time_s, this.now);
  }

  seek(t: number): void {
    const to = Math.min(Math.max(t, this.begin), this.end);
    if (to === this.now) return;
    this.now = to;
    this.moved.emit();
  }

  /** One sample on or back, on the samples themselves. */
  step(direction: 1 | -1): void {
    this.playing.set(false);
    const last = this.time_s.length - 1;
    const at = sampleAt(this.time_s, this.now);
    const between = this.now > (this.time_s[at] as number);
    const to = direction > 0 ? at + 1 : between ? at : at - 1;
    if (to >= 0 && to <= last) this.seek(this.time_s[to] as number);
  }

  toggle(): void {
    if (!this.playing.get() && this.now >= this.end) this.seek(this.begin);
    this.playing.set(!this.playing.get() && this.end > this.begin);
  }

  changeSpeed(by: number): void {
    this.speed.set(Math.min(Math.max(this.speed.get() + by, 0), kSpeeds.length - 1));
  }

  /** Called before each frame of the screen. */
  frame(now_ms: number): void {
    // A tab in the background has no frames: what it missed is not made up for.
    const elapsed_s = Math.min((now_ms - this.last_frame_ms) / 1000, 0.25);
    this.last_frame_ms = now_ms;
    if (!this.playing.get()) return;
    this.seek(this.now + elapsed_s * (kSpeeds[this.speed.get()] as number));
    if (this.now >= this.end) this.playing.set(false);
  }
}
