// Light and dark: as the machine has it, until the reader chooses; light on paper.

import type { Theme } from './colors';
import { Value } from './state';

export interface Themes {
  readonly theme: Value<Theme>;
  toggle(): void;
  /** Light as long as the page is being printed. */
  print(printing: boolean): void;
}

export function themes(): Themes {
  const dark = window.matchMedia('(prefers-color-scheme: dark)');
  let chosen: Theme | null = null;
  let printing = false;
  const now = (): Theme => (printing ? 'light' : chosen ?? (dark.matches ? 'dark' : 'light'));
  const theme = new Value<Theme>(now());
  const apply = (): void => {
    document.documentElement.dataset['theme'] = now();
    theme.set(now());
  };
  dark.addEventListener('change', apply);
  apply();
  return {
    theme,
    toggle: () => { chosen = now() === 'dark' ? 'light' : 'dark'; apply(); },
    print: (value) => { printing = value; apply(); },
  };
}
