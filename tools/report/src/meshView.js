import { Vector3 } from "three";

import { checkbox, labelled, make, numberText, setOptions } from "./dom.js";
import { Legend } from "./legend.js";
import { Model, rangeOf } from "./model.js";
import { move, pickNode, pickTriangle } from "./pick.js";
import { Scene } from "./scene.js";
import { Deformation } from "./deformation.js";
import { valuesOf } from "./values.js";

const kViews = {
  "3D": [[1, -1.4, 0.8], [0, 0, 1]],
  X: [[1, 0, 0], [0, 0, 1]],
  Y: [[0, -1, 0], [0, 0, 1]],
  Z: [[0, 0, 1], [0, 1, 0]],
};
const kPlayMilliseconds = 400;

// The axis that a plane model is at right angles to.
function flatAxis({ half, radius }) {
  return ["X", "Y", "Z"][half.findIndex((extent) => extent < 1e-6 * radius)];
}

/// The part of the page that shows the model.
export class MeshView {
  #report;
  #model;
  #scene;
  #field;
  #blocks = [];
  #values;
  #pressed = null;
  #selected = null;
  #player = null;
  #legend = new Legend();
  #canvas = make("canvas", {
    tabindex: 0,
    "aria-label": "The model. Arrow keys turn it, with Shift they move it, plus and minus zoom.",
  });
  #meshes = make("select", { change: () => this.#chooseMesh() });
  #fields = make("select", { change: () => this.#chooseField() });
  #parts = make("select", { change: () => this.#chooseStep() });
  #steps = make("select", { change: () => this.#chooseStep() });
  #stepper = make("input", { type: "range", min: 0, "aria-label": "Step",
    input: () => this.#chooseStep(this.#stepper.valueAsNumber) });
  #play = make("button", { type: "button", click: () => this.#togglePlay() }, "Play steps");
  #allSteps = false;
  #node = make("input", { type: "text", inputmode: "numeric", size: 8, change: () => this.#findNode() });
  #picked = make("output", { "aria-live": "polite" });
  #note = make("p", { class: "note" });
  #deformation;

  constructor(section, report) {
    this.#report = report;
    this.#scene = new Scene(this.#canvas);
    this.#deformation = new Deformation(this.#scene);
    section.append(this.#note, make("div", { class: "mesh" }, this.#stage(), this.#controls()));
    section.hidden = false;
    this.#canvas.addEventListener("pointerdown", (event) => { this.#pressed = event; });
    this.#canvas.addEventListener("pointerup", (event) => this.#pick(event));
    setOptions(this.#meshes, report.meshes.map(({ name }) => name));
    this.#chooseMesh();
  }

  #stage() {
    const views = Object.keys(kViews).map((name) =>
      make("button", { type: "button", click: () => this.#look(name) }, name));
    const bar = make("div", { class: "views", role: "group", "aria-label": "Views" }, ...views);
    return make("div", { class: "stage" }, this.#legend.element, this.#canvas, bar, this.#picked);
  }

  #controls() {
    const rows = [
      labelled("Field", this.#fields),
      labelled("Value", this.#parts),
      labelled("Step", this.#steps, this.#stepper, this.#play),
      checkbox("one scale for all steps", (isOn) => {
        this.#allSteps = isOn;
        this.#colour();
      }),
      checkbox("bands of one colour", (isOn) => {
        this.#legend.showBands(isOn);
        this.#scene.showBands(isOn);
      }),
      checkbox("element edges", (isOn) => this.#scene.showEdges(isOn), true),
      this.#deformation.element,
      labelled("Find node", this.#node),
    ];
    if (this.#report.meshes.length > 1) rows.unshift(labelled("Mesh", this.#meshes));
    return make("form", { class: "controls", submit: (event) => event.preventDefault() }, ...rows);
  }

  async #chooseMesh() {
    this.#model = await Model.load(this.#report.meshes[this.#meshes.selectedIndex]);
    this.#note.textContent = this.#model.note;
    this.#scene.setMesh(this.#model.positions, this.#model.shapes);
    this.#deformation.setModel(this.#model);
    this.#look(flatAxis(this.#model.box) ?? "3D");
    const { fields } = this.#model;
    setOptions(this.#fields, fields.map(({ name }) => name), firstChoice(fields));
    await this.#chooseField();
    document.body.dataset.ready = Math.round(performance.now());
  }

  async #chooseField() {
    this.#field = this.#model.fields[this.#fields.selectedIndex];
    this.#blocks = this.#field?.blocks ?? [];
    const values = this.#field?.values ?? [];
    const derived = values.findIndex(({ rule }) => rule);
    setOptions(this.#parts, values.map(({ name }) => name), Math.max(derived, 0));
    const names = this.#blocks.map(({ step }) =>
      step == null ? "all" : this.#report.steps[step]);
    setOptions(this.#steps, names, names.length - 1);
    this.#stepper.max = Math.max(names.length - 1, 0);
    this.#stepper.disabled = this.#play.disabled = names.length < 2;
    await this.#chooseStep();
  }

  async #chooseStep(place = this.#steps.selectedIndex) {
    this.#steps.selectedIndex = place;
    this.#stepper.value = place;
    const block = this.#blocks[place];
    if (!block) return this.#showNothing();
    const components = await this.#model.components(block);
    if (block !== this.#blocks[this.#steps.selectedIndex]) return;
    const value = this.#field.values[this.#parts.selectedIndex];
    this.#values = valuesOf(components, this.#model.countOf(this.#field), value);
    await this.#deformation.setStep(block.step);
    this.#colour();
    this.#tell();
  }

  #showNothing() {
    this.#values = null;
    const none = new Float32Array(this.#model.nodeIds.length).fill(NaN);
    this.#scene.setValues(none, false, 0, 1);
    this.#legend.show("no values", null, null);
  }

  #colour() {
    if (!this.#values) return;
    const part = this.#parts.selectedIndex;
    const own = rangeOf([this.#blocks[this.#steps.selectedIndex]], part);
    const shown = this.#allSteps ? rangeOf(this.#blocks, part) : own;
    const { name, unit, values, isOnCells } = this.#field;
    const title = `${name} ${values[part].name}${unit ? ` (${unit})` : ""}`;
    this.#legend.show(title, shown, own, (id) => this.#model.placeText(id, isOnCells),
      this.#values.some(Number.isNaN));
    this.#scene.setValues(this.#values, isOnCells, shown?.low ?? 0, shown?.high ?? 1);
  }

  #look(name) {
    const [eye, up] = kViews[name].map((vector) => new Vector3(...vector));
    this.#scene.orbit.fit(this.#model.box, eye, up);
  }

  #togglePlay() {
    clearInterval(this.#player);
    this.#player = this.#player ? null : setInterval(() => this.#playOn(), kPlayMilliseconds);
    this.#play.textContent = this.#player ? "Stop" : "Play steps";
  }

  #playOn() { this.#chooseStep((this.#steps.selectedIndex + 1) % this.#blocks.length); }

  // A click is a press and a release at one place.
  #pick(event) {
    const from = this.#pressed;
    this.#pressed = null;
    if (!from || Math.hypot(event.clientX - from.clientX, event.clientY - from.clientY) > 3) return;
    const box = this.#canvas.getBoundingClientRect();
    const x = (2 * (event.clientX - box.left)) / box.width - 1;
    const y = 1 - (2 * (event.clientY - box.top)) / box.height;
    const ray = this.#scene.rayAt(x, y);
    const { positions, shapes } = this.#model;
    const moved = move(positions, this.#deformation.vectors, this.#deformation.scale);
    const { camera } = this.#scene.orbit;
    const reach = (8 * (camera.top - camera.bottom)) / box.height;
    this.#select(pickTriangle(ray, moved, shapes.triangles) ??
      { node: pickNode(ray, moved, reach), owner: null });
  }

  #findNode() {
    const node = this.#model.nodeIds.indexOf(Number(this.#node.value));
    this.#select({ node: node < 0 ? null : node, owner: null });
    if (node < 0) this.#picked.textContent = `Node ${this.#node.value} is not among those shown.`;
  }

  #select(selected) {
    this.#selected = selected.node === null ? null : selected;
    this.#tell();
  }

  // Says what is selected and the value there, and marks it.
  #tell() {
    this.#picked.textContent = this.#selected ? this.#describe(this.#selected) : "";
    if (!this.#selected) return this.#scene.mark(null);
    const at = 3 * this.#selected.node;
    const slice = (vectors) => vectors.slice(at, at + 3);
    this.#scene.mark({
      position: slice(this.#model.positions),
      displacement: slice(this.#deformation.vectors),
    });
  }

  #describe({ node, owner }) {
    const names = [`node ${this.#model.nodeName(node)}`];
    if (owner !== null) names.push(`element ${this.#model.cellName(owner)}`);
    const place = this.#field?.isOnCells ? owner : node;
    if (!this.#values || place === null) return names.join(", ");
    const value = this.#field.values[this.#parts.selectedIndex].name;
    return `${names.join(", ")}: ${this.#field.name} ${value} = ${numberText(this.#values[place])}`;
  }
}

// What most people look at first.
function firstChoice(fields) {
  const stress = fields.findIndex(({ values }) => values.some(({ rule }) => rule === "mises"));
  const moved = fields.findIndex(({ motion }) => motion !== "none");
  return Math.max(stress >= 0 ? stress : moved, 0);
}
