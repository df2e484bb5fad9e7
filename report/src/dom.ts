// Elements of the page. Whatever comes from a file gets in as text, by textContent or an attribute
// that takes text; there is no way through here for markup.

export function byId<T extends HTMLElement = HTMLElement>(id: string): T {
  const element = document.getElementById(id);
  if (!element) throw new Error(`The page has no element #${id}`);
  return element as T;
}

type Child = Node | string | null;

export function el<K extends keyof HTMLElementTagNameMap>(
  tag: K,
  attributes: Readonly<Record<string, string>> = {},
  ...children: Child[]
): HTMLElementTagNameMap[K] {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name === 'class') element.className = value;
    else element.setAttribute(name, value);
  }
  element.append(...children.filter((child): child is Node | string => child !== null));
  return element;
}

const kSvg = 'http://www.w3.org/2000/svg';

/** An icon of the page's own, of one path in a 16 x 16 box. */
export function icon(path: string): SVGSVGElement {
  const svg = document.createElementNS(kSvg, 'svg');
  svg.setAttribute('viewBox', '0 0 16 16');
  svg.setAttribute('aria-hidden', 'true');
  svg.classList.add('icon');
  const shape = document.createElementNS(kSvg, 'path');
  shape.setAttribute('d', path);
  svg.append(shape);
  return svg;
}

export const kIcons = {
  ok: 'M6.3 12.6 2 8.3l1.5-1.5 2.8 2.8 6.2-6.2L14 4.9z',
  violation: 'M8 6.4 11.9 2.5 13.5 4.1 9.6 8l3.9 3.9-1.6 1.6L8 9.6l-3.9 3.9-1.6-1.6L6.4 8 2.5 4.1 4.1 2.5z',
  note: 'M7 2h2v8H7zM7 12h2v2H7z',
  measured: 'M3 7h10v2H3z',
  play: 'M4 2.5v11l9-5.5z',
  pause: 'M4 2.5h3v11H4zM9 2.5h3v11H9z',
  previous: 'M10.5 2.5v11L3.5 8zM2 2.5h1.5v11H2z',
  next: 'M5.5 2.5v11l7-5.5zM12.5 2.5H14v11h-1.5z',
  first: 'M14 2.5v11L8 8zM8 2.5v11L2 8zM0.8 2.5H2v11H.8z',
  last: 'M2 2.5v11L8 8zM8 2.5v11l6-5.5zM14 2.5h1.2v11H14z',
} as const;
