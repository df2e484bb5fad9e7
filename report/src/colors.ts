// Colours that people with any colour vision can tell apart; each line in a plot also bears its
// joint's number, and marks differ in shape.

/** Joints 1 to 6 on the arm itself: seen on dark housings, in both themes. */
export const kJointColors: readonly string[] = ['#2f93dd', '#e8702a', '#1fb089', '#d583b4', '#e5ab1c', '#8fd0f5'];

/** Joints 1 to 6 as lines: at least 3 to 1 against the page. */
const kLines: Readonly<Record<Theme, readonly string[]>> = {
  light: ['#0072b2', '#c8500a', '#00805e', '#b04a8b', '#947f00', '#4a5568'],
  dark: ['#4aa8e8', '#f28a4b', '#2fc79d', '#e39ac6', '#f0bf3d', '#c3cad6'],
};

export type Theme = 'light' | 'dark';

export interface Palette {
  readonly joints: readonly string[];
  readonly line: string;
  readonly text: string;
  readonly muted: string;
  readonly grid: string;
  readonly surface: string;
  readonly limit: string;
  readonly scene: string;
  readonly scene_grid: string;
  readonly scene_grid_main: string;
}

export const kPalettes: Readonly<Record<Theme, Palette>> = {
  light: { joints: kLines.light, line: '#1f3a5f', text: '#1c2430', muted: '#5b6675', grid: '#e6e9ee', surface: '#ffffff',
           limit: '#b42318', scene: '#eef1f5', scene_grid: '#d3d9e1', scene_grid_main: '#b4bdc9' },
  dark: { joints: kLines.dark, line: '#9cc4f2', text: '#edf1f6', muted: '#a3aebb', grid: '#2b333d', surface: '#171c22',
          limit: '#ff8f80', scene: '#12161b', scene_grid: '#29313a', scene_grid_main: '#414c58' },
};

// Dark blue over grey to yellow: even in lightness, so that it reads the same without colours.
const kScale: readonly (readonly [number, number, number])[] = [
  [0.20, 0.40, 0.86], [0.33, 0.49, 0.78], [0.50, 0.57, 0.64], [0.64, 0.62, 0.48], [0.84, 0.75, 0.32], [0.98, 0.85, 0.16],
];

/** The colour of a share, 0 to 1, of the highest value; each channel 0 to 1. */
export function scaleColor(share: number): [number, number, number] {
  const x = Math.min(Math.max(Number.isFinite(share) ? share : 0, 0), 1) * (kScale.length - 1);
  const i = Math.min(Math.floor(x), kScale.length - 2);
  const a = kScale[i] as readonly [number, number, number];
  const b = kScale[i + 1] as readonly [number, number, number];
  const mix = (k: 0 | 1 | 2): number => a[k] + (x - i) * (b[k] - a[k]);
  return [mix(0), mix(1), mix(2)];
}

export function scaleGradient(): string {
  const stops = kScale.map(([r, g, b]) => `rgb(${[r, g, b].map((c) => Math.round(255 * c)).join(' ')})`);
  return `linear-gradient(to right, ${stops.join(', ')})`;
}
