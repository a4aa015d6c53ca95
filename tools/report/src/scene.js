import {
  BufferAttribute, BufferGeometry, DataTexture, DoubleSide, LinearFilter, LineSegments, Mesh, Points,
  Scene as Stage, ShaderMaterial, Vector3, Vector4, WebGLRenderer,
} from "three";

import { colourTable, kBands, kMissing } from "./colours.js";
import { Orbit } from "./orbit.js";
import {
  kColouredFragment, kColouredVertex, kNoValue, kPlainFragment, kPlainVertex,
} from "./shaders.js";

const kParts = [
  { name: "triangles", Type: Mesh, size: 3 },
  { name: "lines", Type: LineSegments, size: 2 },
  { name: "points", Type: Points, size: 1 },
];

/// The model as it is drawn. Draws again when something has changed, and only then.
export class Scene {
  #renderer;
  #stage = new Stage();
  #scale = { value: 0 };
  #coloured;
  #edges;
  #mark;
  #parts = [];
  #isDue = false;
  #showsEdges = true;
  #edgeLength = 0;

  constructor(canvas) {
    this.#renderer = new WebGLRenderer({ canvas, antialias: true, alpha: true });
    this.#renderer.outputColorSpace = "srgb-linear";
    this.#coloured = makeColoured(this.#scale);
    const edges = makePlain(this.#scale, 1, new Vector4(0, 0, 0, 0.5));
    this.#edges = new LineSegments(new BufferGeometry(), edges);
    const mark = makePlain(this.#scale, 9, new Vector4(0.9, 0.1, 0.1, 1));
    mark.depthTest = false;
    this.#mark = new Points(new BufferGeometry(), mark);
    this.orbit = new Orbit(canvas, () => this.draw());
    new ResizeObserver(() => this.#resize()).observe(canvas);
  }

  /// `shapes` is what cutShapes gives, `positions` are x, y and z of its nodes.
  setMesh(positions, shapes) {
    for (const { object } of this.#parts) object.geometry.dispose();
    this.#stage.clear();
    this.#parts = kParts.filter(({ name }) => shapes[name].corners.length > 0)
      .map(({ name, Type, size }) => this.#addPart(Type, size, shapes[name], positions));
    setVectors(this.#edges.geometry, "position", positions);
    this.#edges.geometry.setIndex(new BufferAttribute(shapes.edges, 1));
    this.#edgeLength = meanLength(positions, shapes.edges);
    this.mark(null);
    for (const object of [this.#edges, this.#mark]) {
      object.frustumCulled = false;
      this.#stage.add(object);
    }
    this.setDisplacements(new Float32Array(positions.length));
  }

  #addPart(Type, size, { corners, owners }, positions) {
    const geometry = new BufferGeometry();
    setVectors(geometry, "position", pickVectors(positions, corners));
    geometry.setAttribute("value", new BufferAttribute(new Float32Array(corners.length), 1));
    const material = this.#coloured.clone();
    Object.assign(material.uniforms, this.#coloured.uniforms, { isLit: { value: size === 3 } });
    const object = new Type(geometry, material);
    object.frustumCulled = false;
    this.#stage.add(object);
    return { object, size, corners, owners };
  }

  /// Colours by values of the nodes or of the cells; `low` gets the first colour, `high` the last.
  setValues(values, isOnCells, low, high) {
    const width = high > low ? high - low : 1;
    const shares = values.map((value) => Math.min(Math.max((value - low) / width, -1e6), 1e6));
    for (const { object, size, corners, owners } of this.#parts) {
      const attribute = object.geometry.getAttribute("value");
      const shown = attribute.array;
      for (let i = 0; i < corners.length; ++i) {
        shown[i] = shares[isOnCells ? owners[Math.floor(i / size)] : corners[i]];
      }
      greyOutMissing(shown, size);
      attribute.needsUpdate = true;
    }
    this.draw();
  }

  /// What the shape is deformed by, times the scale.
  setDisplacements(vectors) {
    for (const { object, corners } of this.#parts) {
      setVectors(object.geometry, "displacement", pickVectors(vectors, corners));
    }
    setVectors(this.#edges.geometry, "displacement", vectors);
    this.draw();
  }

  setScale(scale) {
    this.#scale.value = scale;
    this.draw();
  }

  showEdges(isOn) {
    this.#showsEdges = isOn;
    this.draw();
  }

  showBands(isOn) {
    this.#coloured.uniforms.bands.value = isOn ? kBands : 0;
    this.draw();
  }

  /// Marks a node by its position and displacement; null marks none.
  mark(node) {
    this.#mark.visible = node !== null;
    setVectors(this.#mark.geometry, "position", node?.position ?? new Float32Array(3));
    setVectors(this.#mark.geometry, "displacement", node?.displacement ?? new Float32Array(3));
    this.draw();
  }

  draw() {
    if (this.#isDue) return;
    this.#isDue = true;
    requestAnimationFrame(() => {
      this.#isDue = false;
      this.#fadeEdges();
      this.#renderer.render(this.#stage, this.orbit.camera);
    });
  }

  // Edges that stand closer than a few pixels would hide the colours.
  #fadeEdges() {
    const { camera } = this.orbit;
    const pixel = (camera.top - camera.bottom) / this.#renderer.domElement.clientHeight;
    const strength = Math.min((this.#edgeLength / pixel - 2) / 8, 1);
    this.#edges.visible = this.#showsEdges && strength > 0;
    this.#edges.material.uniforms.colour.value.w = 0.55 * strength;
  }

  /// The ray through a place of the canvas, from -1 to 1 to the right and up.
  rayAt(x, y) {
    const { camera } = this.orbit;
    const origin = new Vector3(x, y, -1).unproject(camera);
    return { origin, direction: camera.getWorldDirection(new Vector3()) };
  }

  #resize() {
    const { domElement } = this.#renderer;
    this.#renderer.setPixelRatio(window.devicePixelRatio);
    this.#renderer.setSize(domElement.clientWidth, domElement.clientHeight, false);
    this.orbit.update();
  }
}

function makeColoured(scale) {
  const colours = new DataTexture(colourTable(256), 256, 1);
  colours.magFilter = colours.minFilter = LinearFilter;
  colours.needsUpdate = true;
  return new ShaderMaterial({
    vertexShader: kColouredVertex,
    fragmentShader: kColouredFragment,
    uniforms: {
      scale,
      colours: { value: colours },
      missing: { value: new Vector3(...kMissing.map((c) => c / 255)) },
      bands: { value: 0 },
    },
    side: DoubleSide,
    polygonOffset: true,
    polygonOffsetFactor: 1,
    polygonOffsetUnits: 1,
  });
}

function makePlain(scale, size, colour) {
  return new ShaderMaterial({
    vertexShader: kPlainVertex,
    fragmentShader: kPlainFragment,
    uniforms: { scale, size: { value: size }, colour: { value: colour } },
    transparent: true,
  });
}

function setVectors(geometry, name, vectors) {
  geometry.setAttribute(name, new BufferAttribute(vectors, 3));
}

function pickVectors(vectors, nodes) {
  const picked = new Float32Array(3 * nodes.length);
  for (let i = 0; i < nodes.length; ++i) {
    for (let k = 0; k < 3; ++k) picked[3 * i + k] = vectors[3 * nodes[i] + k];
  }
  return picked;
}

function meanLength(positions, edges) {
  let sum = 0;
  for (let i = 0; i < edges.length; i += 2) {
    const [a, b] = [3 * edges[i], 3 * edges[i + 1]];
    sum += Math.hypot(...[0, 1, 2].map((k) => positions[a + k] - positions[b + k]));
  }
  return edges.length > 0 ? (2 * sum) / edges.length : 0;
}

// A triangle or line is grey as soon as one of its values is none.
function greyOutMissing(values, size) {
  for (let i = 0; i < values.length; i += size) {
    let sum = 0;
    for (let k = 0; k < size; ++k) sum += values[i + k];
    if (Number.isNaN(sum)) values.fill(kNoValue, i, i + size);
  }
}
