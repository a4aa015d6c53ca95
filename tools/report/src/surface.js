// How each shape, named by its VTK number, is drawn: places of its nodes, by threes, twos or ones.
// Quadratic faces are cut along their mid-side nodes.
const kTriangle = { triangles: [0, 1, 2], edges: [0, 1, 1, 2, 2, 0] };
const kQuad = { triangles: [0, 1, 2, 0, 2, 3], edges: [0, 1, 1, 2, 2, 3, 3, 0] };
const kTriangle6 = {
  triangles: [0, 3, 5, 3, 1, 4, 5, 4, 2, 3, 4, 5],
  edges: [0, 3, 3, 1, 1, 4, 4, 2, 2, 5, 5, 0],
};
const kQuad8 = {
  triangles: [0, 4, 7, 4, 1, 5, 5, 2, 6, 6, 3, 7, 4, 5, 7, 5, 6, 7],
  edges: [0, 4, 4, 1, 1, 5, 5, 2, 2, 6, 6, 3, 3, 7, 7, 0],
};
const kShapes = {
  1: { nodes: 1, points: [0] },
  3: { nodes: 2, lines: [0, 1] },
  21: { nodes: 3, lines: [0, 2, 2, 1] },
  5: { nodes: 3, ...kTriangle },
  22: { nodes: 6, ...kTriangle6 },
  9: { nodes: 4, ...kQuad },
  23: { nodes: 8, ...kQuad8 },
};

/// Cuts shapes into triangles, lines and points. `owners` are the cells of these; `edges` are pairs
/// of nodes, each once.
export function cutShapes({ types, nodes, cells }) {
  const result = {
    triangles: { corners: [], owners: [] },
    lines: { corners: [], owners: [] },
    points: { corners: [], owners: [] },
  };
  const edges = [];
  for (let i = 0, first = 0; i < types.length; ++i) {
    const shape = kShapes[types[i]];
    for (const [name, places, size] of [
      ["triangles", shape.triangles, 3],
      ["lines", shape.lines, 2],
      ["points", shape.points, 1],
    ]) {
      if (!places) continue;
      for (const place of places) result[name].corners.push(nodes[first + place]);
      for (let k = 0; k < places.length; k += size) result[name].owners.push(cells[i]);
    }
    if (shape.edges) for (const place of shape.edges) edges.push(nodes[first + place]);
    first += shape.nodes;
  }
  for (const part of Object.values(result)) {
    part.corners = Uint32Array.from(part.corners);
    part.owners = Uint32Array.from(part.owners);
  }
  return { ...result, edges: withoutRepeats(edges) };
}

function withoutRepeats(pairs) {
  const kBase = 2 ** 26;
  const keys = new Float64Array(pairs.length / 2);
  for (let i = 0; i < keys.length; ++i) {
    const a = pairs[2 * i], b = pairs[2 * i + 1];
    keys[i] = Math.min(a, b) * kBase + Math.max(a, b);
  }
  keys.sort();
  const kept = keys.filter((key, i) => i === 0 || key !== keys[i - 1]);
  const edges = new Uint32Array(2 * kept.length);
  kept.forEach((key, i) => {
    edges[2 * i] = Math.floor(key / kBase);
    edges[2 * i + 1] = key % kBase;
  });
  return edges;
}
