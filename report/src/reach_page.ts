// The page of a reach study.

import type { Report } from './data';
import { byId, el } from './dom';
import { hookOf, legend, tryScene } from './page';
import type { Page } from './page';
import { cellText, placeText, reachCell } from './reach_cell';
import { reachControls } from './reach_controls';
import type { Reach } from './reach_data';
import { indexOf } from './reach_data';
import { reachHistogram } from './reach_histogram';
import { valueText } from './reach_quantities';
import { ReachScene } from './reach_scene';
import { ReachState } from './reach_state';
import { reachSummary } from './reach_summary';
import type { Display } from './state';

function cellLegend(state: ReachState, display: Display): void {
  const show = (): void => {
    const { quantity, highest } = state.field.get();
    legend(quantity.title, valueText(quantity, highest, display.units.get()));
  };
  show();
  state.field.on(show);
  display.units.on(show);
}

// What the cell under the pointer has, beside the pointer.
function bindScene(scene: ReachScene, state: ReachState, display: Display): void {
  const tip = el('div', { class: 'cell-tip', hidden: '' });
  byId('scene').append(tip);
  const { stage } = scene;
  const canvas = stage.renderer.domElement;
  const hide = (): void => { tip.hidden = true; };
  canvas.addEventListener('pointerleave', hide);
  state.looks.on(hide);
  canvas.addEventListener('pointermove', (event) => {
    const cell = event.buttons === 0 && event.pointerType === 'mouse' ? scene.pickCell(event) : null;
    tip.hidden = cell === null;
    canvas.style.cursor = cell === null ? '' : 'pointer';
    if (cell === null) return;
    const units = display.units.get();
    const { quantity } = state.field.get();
    tip.replaceChildren(el('strong', {}, `${quantity.title} ${cellText(state.reach, quantity, cell, units)}`),
                        el('span', {}, placeText(state, indexOf(state.reach.grid, cell), units)));
    const box = canvas.getBoundingClientRect();
    tip.style.left = `${event.clientX - box.left}px`;
    tip.style.top = `${event.clientY - box.top}px`;
    tip.classList.toggle('to-left', event.clientX - box.left > box.width / 2);
  });
  stage.onClick((event) => {
    if (event.button !== 0) return;
    const cell = scene.pickCell(event);
    if (cell !== null) state.cell.set(cell);
  });
}

function key(event: KeyboardEvent, state: ReachState): boolean {
  const axis = 'xyz'.indexOf(event.key.toLowerCase());
  if (event.key.length === 1 && axis >= 0) {
    state.toggleSlice(axis);
    return true;
  }
  switch (event.key) {
    case 's': case 'S': state.surface.set(!state.surface.get()); return true;
    case 'c': case 'C': state.cut_open.set(!state.cut_open.get()); return true;
    case 'b': case 'B': state.best(); return true;
    default: return false;
  }
}

export function showReach(report: Report, reach: Reach, display: Display): Page {
  const state = new ReachState(reach);
  reachSummary(state, display);
  reachControls(state, display);
  reachHistogram(state, display);
  reachCell(report.arm, state, display);
  cellLegend(state, display);
  byId('ghost').hidden = true;
  const scene = tryScene((host) => new ReachScene(host, report.arm, state));
  if (scene) bindScene(scene, state, display);
  return {
    scene, plots: null, notes: [],
    about: 'The cells of the box, and the arm as it best reaches one of them',
    frame: () => scene?.update(),
    key: (event) => key(event, state),
    hook: { ...hookOf(scene), cell: () => state.cell.get(), values: () => state.field.get().values },
  };
}
