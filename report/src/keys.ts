// The page without a mouse.

import { byId } from './dom';
import type { View } from './stage';

export interface Actions {
  view(view: View): void;
  orbit(azimuth: number, elevation: number, zoom: number): void;
  toggleTheme(): void;
  /** What keys do on this page alone. */
  own(event: KeyboardEvent): boolean;
}

const kTurnRad = 0.12;

// A slider and a choice have arrow keys of their own; so does the picture once it has the focus.
function keepsArrows(target: EventTarget | null): boolean {
  return target instanceof HTMLSelectElement || (target instanceof HTMLInputElement && target.classList.contains('slider')) || (target instanceof HTMLElement && target.classList.contains('scrolled'));
}

function onPicture(target: EventTarget | null): boolean {
  return target instanceof HTMLElement && target.id === 'scene';
}

function orbitKey(key: string, actions: Actions): boolean {
  const turns: Readonly<Record<string, [number, number, number]>> = {
    ArrowLeft: [-kTurnRad, 0, 1], ArrowRight: [kTurnRad, 0, 1], ArrowUp: [0, kTurnRad, 1], ArrowDown: [0, -kTurnRad, 1],
    PageUp: [0, 0, 0.85], PageDown: [0, 0, 1 / 0.85],
  };
  const turn = turns[key];
  if (turn) actions.orbit(...turn);
  return turn !== undefined;
}

function help(): void {
  const dialog = byId<HTMLDialogElement>('help');
  if (dialog.open) dialog.close();
  else dialog.showModal();
}

function act(event: KeyboardEvent, actions: Actions): boolean {
  switch (event.key) {
    case '1': actions.view('free'); return true;
    case '2': actions.view('front'); return true;
    case '3': actions.view('side'); return true;
    case '4': actions.view('top'); return true;
    case 'd': case 'D': actions.toggleTheme(); return true;
    case '?': help(); return true;
    default: return actions.own(event);
  }
}

export function keys(actions: Actions): void {
  byId('help-button').addEventListener('click', help);
  document.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    if (byId<HTMLDialogElement>('help').open && event.key !== '?') return;
    const arrows = event.key.startsWith('Arrow') || event.key === 'Home' || event.key === 'End';
    if (arrows && keepsArrows(event.target)) return;
    // A button, a link or a disclosure in focus is pressed by the space bar.
    const pressed = event.target instanceof Element && event.target.closest('button, summary, a, select, input[type=checkbox]');
    if (event.key === ' ' && pressed) return;
    const done = (onPicture(event.target) && !event.shiftKey && orbitKey(event.key, actions)) || act(event, actions);
    if (done) event.preventDefault();
  });
}
