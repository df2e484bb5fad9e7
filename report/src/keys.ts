// The page without a mouse.

import { byId } from './dom';
import type { Playback } from './playback';
import type { View } from './stage';

export interface Actions {
  readonly playback: Playback;
  view(view: View): void;
  orbit(azimuth: number, elevation: number, zoom: number): void;
  toggleGhost(): void;
  toggleTheme(): void;
  zoomPlots(factor: number): void;
}

const kTurnRad = 0.12;
const kJumpS = 0.1;

// A slider and a choice have arrow keys of their own; so does the picture once it has the focus.
function keepsArrows(target: EventTarget | null): boolean {
  return target instanceof HTMLSelectElement || (target instanceof HTMLElement && target.classList.contains('scrolled'));
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
  const { playback } = actions;
  const jump = (direction: number): void => { playback.playing.set(false); playback.seek(playback.time + direction * kJumpS); };
  switch (event.key) {
    case ' ': playback.toggle(); return true;
    case 'ArrowLeft': if (event.shiftKey) jump(-1); else playback.step(-1); return true;
    case 'ArrowRight': if (event.shiftKey) jump(1); else playback.step(1); return true;
    case 'Home': playback.seek(playback.begin); return true;
    case 'End': playback.seek(playback.end); return true;
    case '+': case '=': playback.changeSpeed(1); return true;
    case '-': playback.changeSpeed(-1); return true;
    case '1': actions.view('free'); return true;
    case '2': actions.view('front'); return true;
    case '3': actions.view('side'); return true;
    case '4': actions.view('top'); return true;
    case 'g': case 'G': actions.toggleGhost(); return true;
    case 'd': case 'D': actions.toggleTheme(); return true;
    case '[': actions.zoomPlots(2); return true;
    case ']': actions.zoomPlots(0.5); return true;
    case '0': actions.zoomPlots(Infinity); return true;
    case '?': help(); return true;
    default: return false;
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
    const pressed = event.target instanceof Element && event.target.closest('button, summary, a, select');
    if (event.key === ' ' && pressed) return;
    const done = (onPicture(event.target) && !event.shiftKey && orbitKey(event.key, actions)) || act(event, actions);
    if (done) event.preventDefault();
  });
}
