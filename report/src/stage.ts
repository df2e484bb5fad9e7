// The scene's camera, light and renderer. Draws when something has changed, not all the time.

import { Box3, Color, DirectionalLight, HemisphereLight, MOUSE, PCFShadowMap, PerspectiveCamera, Raycaster, Scene,
         Sphere, TOUCH, Vector2, Vector3, WebGLRenderer } from 'three';
import type { Object3D, Ray } from 'three';
import { OrbitControls } from 'three/examples/jsm/controls/OrbitControls.js';

export type View = 'free' | 'front' | 'side' | 'top';

// Where the camera looks from; "front" looks at the arm's face, against its x axis.
const kViews: Readonly<Record<View, Vector3>> = {
  free: new Vector3(1, -1.15, 0.62),
  front: new Vector3(1, 0, 0.0001),
  side: new Vector3(0, -1, 0.0001),
  top: new Vector3(-0.0001, 0, 1),
};

const kFovDeg = 32;
/** Frames further apart than this [ms], some in a row, are drawn coarser until things stand still; a
 * pause is no slow frame. */
const kSlowFrameMs = 40;
const kSlowFrames = 2;
const kStillMs = 250;
const kPauseMs = 1000;
const kCoarseRatio = 0.55;
const kPaper = { width: 1300, height: 720 };

export class Stage {
  readonly scene = new Scene();
  readonly camera = new PerspectiveCamera(kFovDeg, 1, 0.01, 100);
  readonly renderer: WebGLRenderer;
  private readonly controls: OrbitControls;
  private readonly sun = new DirectionalLight(0xffffff, 2.3);
  private readonly sphere = new Sphere(new Vector3(), 1);
  private wanted = true;
  private slow = 0;
  private coarse = false;
  private drawn_ms = 0;
  private readonly ratio = Math.min(window.devicePixelRatio, 2);
  onResize: (height: number, fov_rad: number) => void = () => undefined;
  onCoarse: (coarse: boolean) => void = () => undefined;

  constructor(private readonly host: HTMLElement) {
    this.renderer = new WebGLRenderer({ antialias: true, powerPreference: 'high-performance' });
    this.renderer.setPixelRatio(this.ratio);
    this.renderer.shadowMap.enabled = true;
    this.renderer.shadowMap.type = PCFShadowMap;
    host.prepend(this.renderer.domElement);
    this.camera.up.set(0, 0, 1);
    this.controls = new OrbitControls(this.camera, this.renderer.domElement);
    this.controls.mouseButtons = { LEFT: MOUSE.ROTATE, MIDDLE: MOUSE.PAN, RIGHT: MOUSE.PAN };
    this.controls.touches = { ONE: TOUCH.ROTATE, TWO: TOUCH.DOLLY_PAN };
    this.controls.addEventListener('change', () => this.request());
    this.scene.add(new HemisphereLight(0xffffff, 0x8c949e, 1.5), this.sun, this.sun.target);
    new ResizeObserver(() => this.resize()).observe(host);
    this.resize();
  }

  request(): void {
    this.wanted = true;
  }

  background(color: string): void {
    this.scene.background = new Color(color);
    this.request();
  }

  /** Everything that a view has to show. */
  frame(box: Box3): void {
    box.getBoundingSphere(this.sphere);
    const { center, radius } = this.sphere;
    this.camera.near = 0.02 * radius;
    this.camera.far = 30 * radius;
    this.controls.minDistance = 0.15 * radius;
    this.controls.maxDistance = 12 * radius;
    this.sun.position.copy(center).add(new Vector3(0.9, -0.7, 2.2).multiplyScalar(radius));
    this.sun.target.position.copy(center);
    const shadow = this.sun.shadow;
    Object.assign(shadow.camera, { left: -1.6 * radius, right: 1.6 * radius, top: 1.6 * radius,
                                   bottom: -1.6 * radius, near: 0.1 * radius, far: 6 * radius });
    shadow.mapSize.set(1024, 1024);
    shadow.bias = -0.0005;
    shadow.normalBias = 0.004 * radius;
    shadow.radius = 3;
    shadow.camera.updateProjectionMatrix();
    this.sun.castShadow = true;
  }

  view(view: View): void {
    const half = (kFovDeg * Math.PI) / 360;
    const narrow = Math.min(1, this.camera.aspect);
    const distance = (0.88 * this.sphere.radius) / Math.sin(Math.atan(Math.tan(half) * narrow));
    this.controls.target.copy(this.sphere.center);
    this.camera.position.copy(this.sphere.center).addScaledVector(kViews[view].clone().normalize(), distance);
    this.controls.update();
    this.camera.updateProjectionMatrix();
    this.request();
  }

  /** Turns and moves without a mouse: [rad], and a factor of the distance. */
  orbit(azimuth: number, elevation: number, zoom: number): void {
    const offset = this.camera.position.clone().sub(this.controls.target);
    offset.applyAxisAngle(new Vector3(0, 0, 1), azimuth);
    const level = offset.clone().setZ(0);
    if (level.lengthSq() > 1e-12) {
      const tilted = offset.clone().applyAxisAngle(new Vector3(-level.y, level.x, 0).normalize(), -elevation);
      if (tilted.x * level.x + tilted.y * level.y > 0) offset.copy(tilted);
    }
    this.camera.position.copy(this.controls.target).addScaledVector(offset, zoom);
    this.controls.update();
    this.request();
  }

  get height(): number {
    return this.host.clientHeight;
  }

  /** Calls `act` when the pointer is pressed and let go in one place. */
  onClick(act: (event: PointerEvent) => void): void {
    const canvas = this.renderer.domElement;
    let pressed = [0, 0];
    canvas.addEventListener('pointerdown', (event) => { pressed = [event.clientX, event.clientY]; });
    canvas.addEventListener('pointerup', (event) => {
      if (Math.hypot(event.clientX - (pressed[0] ?? 0), event.clientY - (pressed[1] ?? 0)) <= 4) act(event);
    });
  }

  /** What of `objects` is under the pointer. */
  pick(event: PointerEvent, objects: Object3D[]): Object3D | null {
    return this.raycaster(event).intersectObjects(objects, false)[0]?.object ?? null;
  }

  /** From the eye through the pointer. */
  ray(event: PointerEvent): Ray {
    return this.raycaster(event).ray;
  }

  private raycaster(event: PointerEvent): Raycaster {
    const box = this.renderer.domElement.getBoundingClientRect();
    const at = new Vector2((2 * (event.clientX - box.left)) / box.width - 1,
                           1 - (2 * (event.clientY - box.top)) / box.height);
    const ray = new Raycaster();
    ray.setFromCamera(at, this.camera);
    return ray;
  }

  /** Called before each frame of the screen; draws where something has changed. */
  draw(now_ms: number): void {
    if (!this.wanted) {
      if (this.coarse && now_ms - this.drawn_ms > kStillMs) this.setCoarse(false);
      return;
    }
    this.wanted = false;
    const interval = now_ms - this.drawn_ms;
    this.drawn_ms = now_ms;
    this.slow = interval > kSlowFrameMs && interval < kPauseMs ? this.slow + 1 : 0;
    if (!this.coarse && this.slow >= kSlowFrames) this.setCoarse(true);
    this.renderer.render(this.scene, this.camera);
  }

  // A machine that can't keep up while things move has fewer pixels to draw, thin lines and no shadow.
  private setCoarse(coarse: boolean): void {
    this.coarse = coarse;
    this.slow = 0;
    this.sun.castShadow = !coarse;
    this.host.dataset['quality'] = coarse ? 'coarse' : 'fine';
    this.onCoarse(coarse);
    this.renderer.setPixelRatio(coarse ? kCoarseRatio : this.ratio);
    this.request();
  }

  /** The picture, of a size for paper. */
  image(): string {
    if (this.coarse) this.setCoarse(false);
    this.setSize(kPaper.width, kPaper.height);
    this.renderer.render(this.scene, this.camera);
    const picture = this.renderer.domElement.toDataURL('image/png');
    this.resize();
    return picture;
  }

  private resize(): void {
    this.setSize(Math.max(this.host.clientWidth, 1), Math.max(this.host.clientHeight, 1));
  }

  private setSize(width: number, height: number): void {
    this.renderer.setSize(width, height);
    this.camera.aspect = width / height;
    this.camera.updateProjectionMatrix();
    this.onResize(height, (kFovDeg * Math.PI) / 180);
    this.request();
  }
}
