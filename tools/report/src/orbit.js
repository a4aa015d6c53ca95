import { OrthographicCamera, Quaternion, Vector3 } from "three";

const kKeys = {
  ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1],
};

/// A parallel view of a ball around the model. A drag turns it, with Shift or the right button it
/// moves, the wheel zooms; arrow keys, + and - do the same.
export class Orbit {
  #canvas;
  #onChange;
  #centre = new Vector3();
  #radius = 1;
  #extent = [1, 1];
  #zoom = 1;

  constructor(canvas, onChange) {
    this.camera = new OrthographicCamera();
    this.#canvas = canvas;
    this.#onChange = onChange;
    canvas.addEventListener("pointerdown", (event) => canvas.setPointerCapture(event.pointerId));
    canvas.addEventListener("pointermove", (event) => this.#drag(event));
    canvas.addEventListener("wheel", (event) => this.#wheel(event), { passive: false });
    canvas.addEventListener("keydown", (event) => this.#key(event));
    canvas.addEventListener("contextmenu", (event) => event.preventDefault());
  }

  /// Shows all of a box, from a direction given by a vector to the eye and one that points up.
  fit({ centre, radius, half }, eye, up) {
    this.#centre.set(...centre);
    this.#radius = radius;
    this.#zoom = 1;
    const { camera } = this;
    camera.up.copy(up);
    camera.position.copy(eye);
    camera.lookAt(0, 0, 0);
    this.#extent = [extentAlong(1, 0), extentAlong(0, 1)];
    this.update();

    function extentAlong(x, y) {
      const axis = new Vector3(x, y, 0).applyQuaternion(camera.quaternion);
      const reach = axis.toArray().reduce((sum, part, k) => sum + Math.abs(part) * half[k], 0);
      return Math.max(reach, 0.05 * radius);
    }
  }

  /// To be called after a change of the canvas's size.
  update() {
    const { camera } = this;
    const aspect = this.#canvas.clientWidth / Math.max(this.#canvas.clientHeight, 1);
    const half = (1.2 * Math.max(this.#extent[1], this.#extent[0] / aspect)) / this.#zoom;
    Object.assign(camera, { left: -half * aspect, right: half * aspect, top: half, bottom: -half });
    const distance = 20 * this.#radius;
    camera.near = 0.01 * distance;
    camera.far = 2 * distance;
    camera.position.set(0, 0, distance).applyQuaternion(camera.quaternion).add(this.#centre);
    camera.updateProjectionMatrix();
    camera.updateMatrixWorld();
    this.#onChange();
  }

  #turn(dx, dy) {
    const turn = (x, y, angle) => new Quaternion().setFromAxisAngle(new Vector3(x, y, 0), angle);
    this.camera.quaternion.multiply(turn(0, 1, -dx)).multiply(turn(1, 0, -dy)).normalize();
    this.update();
  }

  #move(dx, dy) {
    const size = (this.camera.top - this.camera.bottom) / this.#canvas.clientHeight;
    const shift = new Vector3(-dx * size, dy * size, 0).applyQuaternion(this.camera.quaternion);
    this.#centre.add(shift);
    this.update();
  }

  #magnify(factor) {
    this.#zoom = Math.min(Math.max(this.#zoom * factor, 0.1), 1000);
    this.update();
  }

  #drag(event) {
    if (event.buttons === 0) return;
    const isMove = event.shiftKey || event.buttons !== 1;
    if (isMove) this.#move(event.movementX, event.movementY);
    else this.#turn(0.008 * event.movementX, 0.008 * event.movementY);
  }

  #wheel(event) {
    event.preventDefault();
    this.#magnify(Math.exp(-0.0015 * event.deltaY));
  }

  #key(event) {
    const [dx, dy] = kKeys[event.key] ?? [];
    if (event.key === "+" || event.key === "=") this.#magnify(1.2);
    else if (event.key === "-") this.#magnify(1 / 1.2);
    else if (dx === undefined) return;
    else if (event.shiftKey) this.#move(20 * dx, 20 * dy);
    else this.#turn(0.1 * dx, 0.1 * dy);
    event.preventDefault();
  }
}
