// What the pages of motions and of reach studies have in common.

import type { ArmScene } from './arm_scene';
import { scaleGradient } from './colors';
import { byId, el } from './dom';
import type { Plots } from './plots';

export interface Page {
  readonly scene: ArmScene | null;
  /** What the picture shows, for those who can't see it. */
  readonly about: string;
  readonly plots: Plots | null;
  readonly notes: readonly string[];
  /** Called before each frame of the screen. */
  frame(now_ms: number): void;
  /** Keys of this page alone. @return whether it is one */
  key(event: KeyboardEvent): boolean;
  /** What tests ask. */
  readonly hook: Readonly<Record<string, unknown>>;
}

/** The scene, or why there is none in its place. */
export function tryScene<T extends ArmScene>(make: (host: HTMLElement) => T): T | null {
  const host = byId('scene');
  try {
    return make(host);
  } catch (error) {
    host.append(el('p', { class: 'no-scene' },
                   `The arm can't be drawn here, the rest of the page goes on: ${error instanceof Error ? error.message : String(error)}`));
    return null;
  }
}

export function hookOf(scene: ArmScene | null): Record<string, unknown> {
  return { toolOfArm: () => scene?.toolOfArm(), projection: () => scene?.projection() };
}

/** What the colours in the picture are: from 0 to the highest. */
export function legend(title: string, highest: string): void {
  byId('legend').hidden = false;
  byId('gradient').style.background = scaleGradient();
  byId('legend-title').textContent = title;
  byId('legend-high').textContent = highest;
}
