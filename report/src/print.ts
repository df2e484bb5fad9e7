// On paper: light, the scene and the plots as pictures, every check unfolded.

import type { ArmScene } from './arm_scene';
import { byId, el } from './dom';
import type { Plots } from './plots';
import type { Themes } from './theme';

function picture(source: string, text: string): HTMLImageElement {
  return el('img', { class: 'printed', src: source, alt: text });
}

export function printing(themes: Themes, plots: Plots | null, scene: ArmScene | null): void {
  let folded: { details: HTMLDetailsElement; place: Comment; open: boolean }[] = [];
  let under_way = false;
  const before = (): void => {
    if (under_way) return;
    under_way = true;
    themes.print(true);
    if (scene) byId('scene').append(picture(scene.stage.image(), 'The arm at the moment that is shown'));
    for (const plot of plots?.plots ?? []) plot.figure.append(picture(plot.image(), plot.figure.innerText));
    // The long tables come last.
    folded = [...document.querySelectorAll<HTMLDetailsElement>('#verdict details')].map((details) => {
      const place = document.createComment('');
      const open = details.open;
      details.replaceWith(place);
      details.open = true;
      byId('notes').after(details);
      return { details, place, open };
    });
  };
  const after = (): void => {
    if (!under_way) return;
    under_way = false;
    document.querySelectorAll('img.printed').forEach((image) => image.remove());
    for (const { details, place, open } of folded) {
      place.replaceWith(details);
      details.open = open;
    }
    themes.print(false);
  };
  window.addEventListener('beforeprint', before);
  window.addEventListener('afterprint', after);
  window.matchMedia('print').addEventListener('change', (query) => (query.matches ? before() : after()));
}
