// What the reader has chosen, and who wants to know when it changes.

import type { UnitSystem } from './units';

export type Listener = () => void;

export class Signal {
  private readonly listeners: Listener[] = [];
  on(listener: Listener): void {
    this.listeners.push(listener);
  }
  emit(): void {
    for (const listener of this.listeners) listener();
  }
}

/** A value that tells when it is another. */
export class Value<T> {
  private readonly signal = new Signal();
  constructor(private current: T) {}
  get(): T {
    return this.current;
  }
  set(value: T): void {
    if (value === this.current) return;
    this.current = value;
    this.signal.emit();
  }
  on(listener: Listener): void {
    this.signal.on(listener);
  }
}

export class Display {
  readonly units = new Value<UnitSystem>('workshop');
  readonly ghost = new Value<boolean>(true);
  readonly hidden = new Value<ReadonlySet<number>>(new Set());
  /** The span of time that the plots show [s]. */
  readonly span = new Value<readonly [number, number]>([0, 1]);
  /** Which solutions of an explanation are drawn, by their place in the list. */
  readonly solutions = new Value<ReadonlySet<number>>(new Set());

  toggleJoint(joint: number): void {
    const hidden = new Set(this.hidden.get());
    if (!hidden.delete(joint)) hidden.add(joint);
    this.hidden.set(hidden);
  }
}
