import { readArray } from "./data.js";
import { cutShapes } from "./surface.js";

const kKept = 24;

/// A mesh of the report with its arrays, which are decoded when they are asked for.
export class Model {
  #mesh;
  #recent = new Map();

  static async load(mesh) {
    const model = new Model();
    model.#mesh = mesh;
    const names = ["positions", "nodeIds", "cellIds", "types", "nodes", "cells"];
    const arrays = await Promise.all(names.map((name) => readArray(mesh[name])));
    const shapes = {};
    [model.positions, model.nodeIds, model.cellIds, shapes.types, shapes.nodes, shapes.cells] =
      arrays;
    model.shapes = cutShapes(shapes);
    model.box = boxOf(model.positions);
    return model;
  }

  get name() { return this.#mesh.name; }
  get note() { return this.#mesh.note; }
  get fields() { return this.#mesh.fields; }

  nodeName(node) { return idText(this.nodeIds[node]); }
  cellName(cell) { return idText(this.cellIds[cell]); }

  /// Where an extreme is, which may be inside of what is shown.
  placeText(id, isOnCells) {
    const ids = isOnCells ? this.cellIds : this.nodeIds;
    const isSeen = id.startsWith("#") || ids.includes(Number(id));
    return `${isOnCells ? "element" : "node"} ${id}${isSeen ? "" : " (inside)"}`;
  }

  /// How many values a component of the field has.
  countOf(field) { return field.isOnCells ? this.cellIds.length : this.nodeIds.length; }

  /// The numbers of a block of a field; the last ones are remembered.
  components(block) {
    const { id } = block.array;
    const known = this.#recent.get(id) ?? readArray(block.array);
    this.#recent.delete(id);
    this.#recent.set(id, known);
    if (this.#recent.size > kKept) this.#recent.delete(this.#recent.keys().next().value);
    return known;
  }
}

// What has no id of its own is named by its index, as the tool does.
function idText(id) { return id < 0 ? `#${-1 - id}` : String(id); }

function boxOf(positions) {
  const low = [Infinity, Infinity, Infinity];
  const high = [-Infinity, -Infinity, -Infinity];
  positions.forEach((value, i) => {
    low[i % 3] = Math.min(low[i % 3], value);
    high[i % 3] = Math.max(high[i % 3], value);
  });
  const centre = low.map((value, k) => (value + high[k]) / 2);
  const half = low.map((value, k) => (high[k] - value) / 2);
  return { centre, half, radius: Math.hypot(...half) || 1 };
}

/// The block of a field at a step; one without a step holds at all of them.
export function blockAt(field, step) {
  return field.blocks.find((block) => block.step === step || block.step == null);
}

/// Lowest and highest of a value over some blocks: { low, lowId, high, highId }; null when there is
/// no number.
export function rangeOf(blocks, value) {
  let range = null;
  for (const { ranges } of blocks) {
    if (!ranges[value]) continue;
    const [low, lowId, high, highId] = ranges[value];
    range ??= { low: Infinity, high: -Infinity };
    if (Number(low) < range.low) Object.assign(range, { low: Number(low), lowId });
    if (Number(high) > range.high) Object.assign(range, { high: Number(high), highId });
  }
  return range;
}

/// The scale at which the greatest displacement is a tenth of the model, as 1, 2 or 5 times a power
/// of ten. Displacements are not shown smaller than they are, unless they lead out of the view.
export function niceScale(field, { radius }) {
  const index = field.values.findIndex(({ rule }) => rule === "magnitude");
  const greatest = rangeOf(field.blocks, index)?.high ?? 0;
  if (!(greatest > 0)) return 1;
  const wanted = (0.2 * radius) / greatest;
  const power = 10 ** Math.floor(Math.log10(wanted));
  const digit = [5, 2, 1].find((one) => one * power <= wanted) ?? 1;
  return field.motion === "shape" ? digit * power : Math.max(greatest > radius ? 0 : 1, digit * power);
}
