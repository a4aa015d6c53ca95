/// The first triangle that a ray hits: { owner, node }, the cell and the nearest of its nodes, or
/// null. `moved` are the positions of the nodes as drawn.
export function pickTriangle({ origin, direction }, moved, { corners, owners }) {
  let nearest = Infinity;
  let found = null;
  for (let i = 0; i < corners.length; i += 3) {
    const distance = hit(origin, direction, moved, corners, i);
    if (distance < nearest) {
      nearest = distance;
      found = i;
    }
  }
  if (found === null) return null;
  const place = origin.clone().addScaledVector(direction, nearest);
  const nodes = corners.subarray(found, found + 3);
  return { owner: owners[found / 3], node: nearestNode(place, moved, nodes) };
}

/// The node that is nearest to a ray, if it is not farther from it than `reach`; else null.
export function pickNode({ origin, direction }, moved, reach) {
  let least = reach ** 2;
  let found = null;
  for (let node = 0; node < moved.length / 3; ++node) {
    const x = moved[3 * node] - origin.x;
    const y = moved[3 * node + 1] - origin.y;
    const z = moved[3 * node + 2] - origin.z;
    const along = x * direction.x + y * direction.y + z * direction.z;
    const square = x * x + y * y + z * z - along * along;
    if (square < least) {
      least = square;
      found = node;
    }
  }
  return found;
}

/// Positions of nodes as they are drawn.
export function move(positions, displacements, scale) {
  return positions.map((value, i) => value + scale * displacements[i]);
}

// Distance along the ray to triangle i, or infinity (after Moeller and Trumbore).
function hit(o, d, p, corners, i) {
  const [a, b, c] = [3 * corners[i], 3 * corners[i + 1], 3 * corners[i + 2]];
  const e1x = p[b] - p[a], e1y = p[b + 1] - p[a + 1], e1z = p[b + 2] - p[a + 2];
  const e2x = p[c] - p[a], e2y = p[c + 1] - p[a + 1], e2z = p[c + 2] - p[a + 2];
  const nx = d.y * e2z - d.z * e2y, ny = d.z * e2x - d.x * e2z, nz = d.x * e2y - d.y * e2x;
  const det = e1x * nx + e1y * ny + e1z * nz;
  if (det === 0) return Infinity;
  const tx = o.x - p[a], ty = o.y - p[a + 1], tz = o.z - p[a + 2];
  const u = (tx * nx + ty * ny + tz * nz) / det;
  const qx = ty * e1z - tz * e1y, qy = tz * e1x - tx * e1z, qz = tx * e1y - ty * e1x;
  const v = (d.x * qx + d.y * qy + d.z * qz) / det;
  const distance = (e2x * qx + e2y * qy + e2z * qz) / det;
  return u >= 0 && v >= 0 && u + v <= 1 && distance >= 0 ? distance : Infinity;
}

function nearestNode(place, p, nodes) {
  const distance = (n) =>
    Math.hypot(p[3 * n] - place.x, p[3 * n + 1] - place.y, p[3 * n + 2] - place.z);
  return nodes.reduce((best, node) => (distance(node) < distance(best) ? node : best));
}
