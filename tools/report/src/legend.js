import { gradient } from "./colours.js";
import { make, numberText } from "./dom.js";

const kTicks = 6;

/// The colour scale beside the model.
export class Legend {
  #title = make("strong");
  #bar = make("div", { class: "bar" });
  #ticks = make("div", { class: "ticks" });
  #extremes = make("div", { class: "extremes" });

  constructor() {
    const scale = make("div", { class: "scale" }, this.#bar, this.#ticks);
    this.element = make("div", { class: "legend" }, this.#title, scale, this.#extremes);
    this.showBands(false);
  }

  showBands(isOn) { this.#bar.style.background = gradient(isOn); }

  /// `shown` is the range of the colours, `own` that of the values at this step, or null; `placeOf`
  /// tells where an id is. With gaps, some values are none.
  show(title, shown, own, placeOf, hasGaps) {
    this.#title.textContent = title;
    const count = !shown ? 0 : shown.low < shown.high ? kTicks : 1;
    const ticks = Array.from({ length: count }, (_, i) => i / (kTicks - 1));
    const valueAt = (t) => numberText(shown.low + t * (shown.high - shown.low));
    this.#ticks.replaceChildren(...ticks.reverse().map((t) => make("span", {}, valueAt(t))));
    const lines = own ? extremes(own, placeOf) : ["no values"];
    if (hasGaps) lines.push("grey: no value");
    this.#extremes.replaceChildren(...lines.map((line) => make("span", {}, line)));
  }
}

function extremes({ low, lowId, high, highId }, placeOf) {
  return [
    `max ${numberText(high)} at ${placeOf(highId)}`,
    `min ${numberText(low)} at ${placeOf(lowId)}`,
  ];
}
