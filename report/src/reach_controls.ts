// What is shown of the cells: the quantity, slices and their places, the surface and its threshold.

import { byId, el } from './dom';
import { kAxisColors } from './frames';
import { centreOf } from './reach_data';
import { quantitiesOf, valueText } from './reach_quantities';
import type { ReachState } from './reach_state';
import type { Display, Value } from './state';
import { fixed, shown } from './units';

const kSteps = 200;

/** Keeps `fill` done when one of `values` changes. */
function follow(fill: () => void, ...values: { on(listener: () => void): void }[]): void {
  fill();
  for (const value of values) value.on(fill);
}

function checkbox(label: string, title: string, act: () => void): { field: HTMLElement; box: HTMLInputElement } {
  const box = el('input', { type: 'checkbox', title });
  box.addEventListener('change', act);
  return { field: el('label', { class: 'check-field', title }, box, label), box };
}

function slider(label: string, most: number, act: (value: number) => void): HTMLInputElement {
  const input = el('input', { type: 'range', class: 'slider', min: '0', max: String(most), value: '0', 'aria-label': label });
  input.addEventListener('input', () => act(Number(input.value)));
  return input;
}

function quantityField(state: ReachState): HTMLElement {
  const quantities = quantitiesOf(state.reach);
  const select = el('select', { id: 'quantity' }, ...quantities.map(({ key, title }) => el('option', { value: key }, title)));
  select.addEventListener('change', () => {
    const chosen = quantities.find(({ key }) => key === select.value);
    if (chosen) state.setQuantity(chosen);
  });
  const best = el('button', { type: 'button', id: 'best', title: 'To the best cell (b)' }, 'Best cell');
  best.disabled = state.reach.summary.best_cell === null;
  best.addEventListener('click', () => state.best());
  return el('div', { class: 'control-head' }, el('label', { class: 'named-field' }, 'Colours', select), best);
}

function sliceRow(axis: 0 | 1 | 2, state: ReachState, display: Display): HTMLElement {
  const name = 'xyz'[axis] as string;
  const { grid } = state.reach;
  const { field, box } = checkbox(`Slice ${name}`, `Show or hide the slice across ${name} (${name})`, () => state.toggleSlice(axis));
  field.style.setProperty('--mark', kAxisColors[axis] as string);
  const input = slider(`Place along ${name}`, grid.count[axis] - 1, (value) => state.setIndex(axis, value));
  const place = el('output', { class: 'number' });
  follow(() => {
    box.checked = state.slices.get()[axis] as boolean;
    const at = centreOf(grid, state.index)[axis];
    const unit = shown('m', display.units.get());
    input.value = String(state.index[axis]);
    input.disabled = grid.count[axis] === 1;
    place.textContent = `${fixed(at * unit.factor, unit.factor === 1 ? 3 : 0)} ${unit.label}`;
    input.setAttribute('aria-valuetext', place.textContent);
  }, state.slices, state.cell, display.units);
  return el('div', { class: 'control-row' }, field, input, place);
}

function toggle(value: Value<boolean>): () => void {
  return () => value.set(!value.get());
}

function surfaceRow(state: ReachState, display: Display): HTMLElement {
  const { field, box } = checkbox('Surface', 'Show or hide the cells from the threshold on, as cubes (s)', toggle(state.surface));
  const input = slider('Threshold of the surface', kSteps, (value) => {
    state.threshold.set(value / kSteps);
    state.surface.set(true);
  });
  const place = el('output', { class: 'number' });
  follow(() => {
    box.checked = state.surface.get();
    input.value = String(Math.round(kSteps * state.threshold.get()));
    place.textContent = `≥ ${valueText(state.field.get().quantity, state.least, display.units.get())}`;
    input.setAttribute('aria-valuetext', place.textContent);
  }, state.surface, state.threshold, state.field, display.units);
  return el('div', { class: 'control-row' }, field, input, place);
}

function cutRow(state: ReachState): HTMLElement {
  const { field, box } = checkbox('Cut the surface open at the slices', 'What is in front of all slices is left out (c)',
                                  toggle(state.cut_open));
  follow(() => {
    box.checked = state.cut_open.get();
    box.disabled = !state.surface.get();
  }, state.cut_open, state.surface);
  return el('div', { class: 'control-row' }, field);
}

export function reachControls(state: ReachState, display: Display): void {
  byId('cells').append(quantityField(state), ...([0, 1, 2] as const).map((axis) => sliceRow(axis, state, display)),
                       surfaceRow(state, display), cutRow(state));
}
