// How often each value is there among the cells that are reached, over the scale of the colours.

import { scaleColor } from './colors';
import { byId, el } from './dom';
import { histogramOf, valueText } from './reach_quantities';
import type { ReachState } from './reach_state';
import type { Display } from './state';
import { plain, shown } from './units';

function rgb(share: number): string {
  return `rgb(${scaleColor(share).map((c) => Math.round(255 * c)).join(' ')})`;
}

export function reachHistogram(state: ReachState, display: Display): void {
  const caption = el('h2');
  const about = el('p', { class: 'hint' });
  const bars = el('div', { class: 'bars', role: 'img' });
  const top = el('p', { class: 'bar-top', 'aria-hidden': 'true' });
  const axis = el('div', { class: 'bar-axis', 'aria-hidden': 'true' });
  byId('histogram').append(caption, about, top, bars, axis);
  const show = (): void => {
    const field = state.field.get();
    const { quantity, highest } = field;
    const { title, unit, about: says } = quantity;
    const units = display.units.get();
    const { counts, width } = histogramOf(state.reach, field);
    const most = Math.max(1, ...counts);
    const label = shown(unit, units).label;
    caption.replaceChildren(title, label ? el('span', { class: 'unit' }, label) : '');
    about.textContent = says;
    bars.replaceChildren(...counts.map((count, bin) => {
      const range = `${valueText(quantity, bin * width, units)} to ${valueText(quantity, (bin + 1) * width, units)}`;
      const bar = el('span', { title: `${range}: ${count.toLocaleString('en')} cells` }, el('i'));
      const inner = bar.firstElementChild as HTMLElement;
      // A cell is seen among thousands.
      inner.style.height = count === 0 ? '0' : `max(2px, ${(100 * count) / most}%)`;
      inner.style.background = rgb((bin + 0.5) / counts.length);
      bar.classList.toggle('left-out', state.surface.get() && (bin + 1) * width < state.least);
      return bar;
    }));
    bars.setAttribute('aria-label', `Histogram of ${title.toLowerCase()}, up to ${valueText(quantity, highest, units)}; ` +
                                    `at most ${most.toLocaleString('en')} cells in a bar`);
    axis.replaceChildren(...(highest > 0 ? [0, 0.25, 0.5, 0.75, 1] : [0]).map((share) => 
      el('span', {}, plain(share * highest * shown(unit, units).factor, 3))));
    top.textContent = `up to ${most.toLocaleString('en')} cells`;
  };
  show();
  for (const value of [state.field, state.threshold, state.surface, display.units]) value.on(show);
}
