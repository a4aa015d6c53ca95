// What is drawn of a field: a component, or what is computed from the components of a vector or
// tensor. The components of a block stand one after another, each `count` numbers.

const kRules = {
  magnitude: { size: 3, of: (v) => Math.hypot(v[0], v[1], v[2]) },
  mises: { size: 6, of: mises },
  principal1: { size: 6, of: (v) => principal(v)[0] },
  principal2: { size: 6, of: (v) => principal(v)[1] },
  principal3: { size: 6, of: (v) => principal(v)[2] },
};

/// The numbers of `value`, { place, rule }, from the components of a block.
export function valuesOf(components, count, { place, rule }) {
  const begin = place * count;
  if (!rule) return components.subarray(begin, begin + count);
  const { size, of } = kRules[rule];
  const result = new Float32Array(count);
  const one = new Float64Array(size);
  for (let i = 0; i < count; ++i) {
    for (let k = 0; k < size; ++k) one[k] = components[begin + k * count + i];
    result[i] = of(one);
  }
  return result;
}

/// Three components as x, y, z of one node after another; missing ones are 0.
export function vectorsOf(components, count, place) {
  const vectors = new Float32Array(3 * count);
  for (let k = 0; k < 3; ++k) {
    const begin = (place + k) * count;
    for (let i = 0; i < count; ++i) {
      const value = components[begin + i];
      vectors[3 * i + k] = Number.isFinite(value) ? value : 0;
    }
  }
  return vectors;
}

function mises([xx, yy, zz, xy, yz, zx]) {
  const normal = (xx - yy) ** 2 + (yy - zz) ** 2 + (zz - xx) ** 2;
  return Math.sqrt(normal / 2 + 3 * (xy ** 2 + yz ** 2 + zx ** 2));
}

// Eigenvalues of a symmetric matrix by the trigonometric formula, the greatest first.
function principal([xx, yy, zz, xy, yz, zx]) {
  const mean = (xx + yy + zz) / 3;
  const [a, b, c] = [xx - mean, yy - mean, zz - mean];
  const shear = xy ** 2 + yz ** 2 + zx ** 2;
  const radius = Math.sqrt((a ** 2 + b ** 2 + c ** 2 + 2 * shear) / 6);
  if (!(radius > 0)) return [mean, mean, mean];
  const det = a * (b * c - yz ** 2) - xy * (xy * c - yz * zx) + zx * (xy * yz - b * zx);
  const angle = Math.acos(Math.max(-1, Math.min(1, det / (2 * radius ** 3)))) / 3;
  const at = (turn) => mean + 2 * radius * Math.cos(angle + (2 * Math.PI * turn) / 3);
  return [at(0), at(2), at(1)];
}
