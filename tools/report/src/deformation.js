import { labelled, make, numberText, setOptions, checkbox } from "./dom.js";
import { blockAt, niceScale } from "./model.js";
import { vectorsOf } from "./values.js";

const kSlider = 100;
const kSecondsASwing = 2;

/// The controls of the deformed shape, and what is drawn of it. The slider goes from none to twice
/// the scale that shows the greatest displacement well.
export class Deformation {
  scale = 0;
  nice = 1;
  vectors = new Float32Array();
  #scene;
  #model;
  #fields = [];
  #shown = null;
  #step;
  #isSwinging = false;
  #select = make("select", { change: () => this.setStep(this.#step) });
  #slider = make("input", { type: "range", min: 0, max: 2 * kSlider, value: kSlider,
    "aria-label": "Scale of the deformation", input: () => this.#slide() });
  #number = make("input", { type: "number", min: 0, step: "any", "aria-label": "Exact scale",
    change: () => this.#setScale(this.#number.valueAsNumber || 0) });

  constructor(scene) {
    this.#scene = scene;
    this.element = make("fieldset", {}, make("legend", {}, "Deformed shape"),
      labelled("By", this.#select),
      labelled("Scale", this.#slider, this.#number),
      checkbox("swing", (isOn) => this.#swing(isOn)));
  }

  setModel(model) {
    this.#model = model;
    this.#shown = null;
    this.vectors = new Float32Array(model.positions.length);
    this.#fields = model.fields.filter(({ motion }) => motion !== "none");
    setOptions(this.#select, ["the step's displacement", ...this.#fields.map(({ name }) => name),
      "nothing"]);
    this.element.hidden = this.#fields.length === 0;
  }

  /// Takes the displacements of a step; the scale stays as long as they are of one field.
  async setStep(step) {
    this.#step = step;
    const field = this.#fieldAt(step);
    const block = field && blockAt(field, step);
    const count = this.#model.nodeIds.length;
    const vectors = block
      ? vectorsOf(await this.#model.components(block), count, 0)
      : new Float32Array(3 * count);
    if (step !== this.#step) return;
    this.vectors = vectors;
    this.#scene.setDisplacements(vectors);
    if (field && field !== this.#shown) this.#setNiceScale(field);
    this.#shown = field ?? this.#shown;
  }

  #fieldAt(step) {
    const chosen = this.#select.selectedIndex;
    if (chosen > 0) return this.#fields[chosen - 1];
    return this.#fields.find((field) => blockAt(field, step));
  }

  #setNiceScale(field) {
    this.nice = niceScale(field, this.#model.box);
    this.#setScale(this.nice);
  }

  #slide() { this.#setScale((this.#slider.valueAsNumber / kSlider) * this.nice); }

  #setScale(scale) {
    this.scale = scale;
    this.#number.value = numberText(scale);
    this.#slider.value = this.nice > 0 ? (scale / this.nice) * kSlider : 0;
    this.#scene.setScale(scale);
  }

  #swing(isOn) {
    this.#isSwinging = isOn;
    const swing = (milliseconds) => {
      if (!this.#isSwinging) return this.#scene.setScale(this.scale);
      const turn = milliseconds / 1000 / kSecondsASwing;
      this.#scene.setScale(this.scale * Math.sin(2 * Math.PI * turn));
      requestAnimationFrame(swing);
    };
    if (isOn) requestAnimationFrame(swing);
  }
}
