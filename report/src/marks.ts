// Marks in the scene that keep their size on the screen, each kind with a shape of its own.

import { CanvasTexture, Group, Sprite, SpriteMaterial, SRGBColorSpace, Vector3 } from 'three';

export type MarkKind = 'corner' | 'violation' | 'note' | 'failure' | 'tool' | 'ghost-tool';

const kPixels: Readonly<Record<MarkKind, number>> = {
  corner: 11, violation: 20, note: 17, failure: 30, tool: 13, 'ghost-tool': 11,
};

/** The colour of the dot at the tool's tip. */
export const kToolColor = '#00b8a5';

type Draw = (c: CanvasRenderingContext2D) => void;

function diamond(c: CanvasRenderingContext2D, r: number): void {
  c.beginPath();
  c.moveTo(32, 32 - r);
  c.lineTo(32 + r, 32);
  c.lineTo(32, 32 + r);
  c.lineTo(32 - r, 32);
  c.closePath();
}

function disc(c: CanvasRenderingContext2D, r: number): void {
  c.beginPath();
  c.arc(32, 32, r, 0, 2 * Math.PI);
}

function fill(c: CanvasRenderingContext2D, inside: string, rim: string, width: number): void {
  c.fillStyle = inside;
  c.fill();
  c.strokeStyle = rim;
  c.lineWidth = width;
  c.stroke();
}

function cross(c: CanvasRenderingContext2D, r: number, color: string, width: number): void {
  c.beginPath();
  c.moveTo(32 - r, 32 - r);
  c.lineTo(32 + r, 32 + r);
  c.moveTo(32 + r, 32 - r);
  c.lineTo(32 - r, 32 + r);
  c.lineCap = 'round';
  c.strokeStyle = color;
  c.lineWidth = width;
  c.stroke();
}

const kDraw: Readonly<Record<MarkKind, Draw>> = {
  corner: (c) => { diamond(c, 24); fill(c, '#ffffff', '#3b444f', 9); },
  violation: (c) => { disc(c, 27); fill(c, '#c62f20', '#ffffff', 5); cross(c, 9, '#ffffff', 8); },
  note: (c) => { diamond(c, 27); fill(c, '#d98b00', '#ffffff', 5); },
  failure: (c) => { disc(c, 26); c.strokeStyle = '#ffffff'; c.lineWidth = 11; c.stroke();
                    c.strokeStyle = '#c62f20'; c.lineWidth = 7; c.stroke(); cross(c, 10, '#ffffff', 12);
                    cross(c, 10, '#c62f20', 8); },
  tool: (c) => { disc(c, 24); fill(c, kToolColor, '#0b2b2a', 8); },
  'ghost-tool': (c) => { disc(c, 22); c.strokeStyle = '#6b7683'; c.lineWidth = 10; c.stroke(); },
};

const textures = new Map<string, CanvasTexture>();

function textureOf(name: string, draw: Draw): CanvasTexture {
  const known = textures.get(name);
  if (known) return known;
  const canvas = document.createElement('canvas');
  canvas.width = canvas.height = 64;
  const context = canvas.getContext('2d');
  if (context) draw(context);
  const texture = new CanvasTexture(canvas);
  texture.colorSpace = SRGBColorSpace;
  textures.set(name, texture);
  return texture;
}

export class Marks {
  readonly group = new Group();
  private scale = 1;

  add(kind: MarkKind, at: Vector3, time_s: number | null = null): Sprite {
    return this.put(textureOf(kind, kDraw[kind]), kPixels[kind], at, time_s);
  }

  /** A letter, as at the ends of the base's axes. */
  letter(text: string, at: Vector3, color: string): Sprite {
    const draw: Draw = (c) => {
      c.font = '600 44px system-ui, sans-serif';
      c.textAlign = 'center';
      c.textBaseline = 'middle';
      c.fillStyle = color;
      c.fillText(text, 32, 34);
    };
    return this.put(textureOf(`${text} ${color}`, draw), 18, at, null);
  }

  private put(map: CanvasTexture, pixels: number, at: Vector3, time_s: number | null): Sprite {
    const sprite = new Sprite(new SpriteMaterial({ map, sizeAttenuation: false, depthTest: false,
                                                   transparent: true, toneMapped: false }));
    sprite.position.copy(at);
    sprite.renderOrder = 10 + pixels / 100;
    sprite.userData = { pixels, time_s };
    sprite.scale.setScalar(pixels * this.scale);
    this.group.add(sprite);
    return sprite;
  }

  /** Keeps sizes in pixels where the picture is `height` pixels high. */
  fit(height: number, fov_rad: number): void {
    this.scale = (2 * Math.tan(fov_rad / 2)) / height;
    for (const sprite of this.group.children) {
      sprite.scale.setScalar((sprite.userData['pixels'] as number) * this.scale);
    }
  }
}
