// Positions are moved by the displacement; faces are lit by their own plane, so that no normals are
// kept. A value beyond kNoValue is missing.
export const kNoValue = 1e9;

export const kMoved = `
  attribute vec3 displacement;
  uniform float scale;
  vec4 moved() { return modelViewMatrix * vec4(position + scale * displacement, 1.0); }
`;

export const kColouredVertex = `${kMoved}
  attribute float value;
  varying float vValue;
  varying vec3 vEye;
  void main() {
    vec4 eye = moved();
    vEye = eye.xyz;
    vValue = value;
    gl_PointSize = 4.0;
    gl_Position = projectionMatrix * eye;
  }
`;

export const kColouredFragment = `
  uniform sampler2D colours;
  uniform vec3 missing;
  uniform float bands;
  uniform bool isLit;
  varying float vValue;
  varying vec3 vEye;
  void main() {
    float t = clamp(vValue, 0.0, 1.0);
    if (bands > 0.0) t = (min(floor(t * bands), bands - 1.0) + 0.5) / bands;
    vec3 colour = vValue > 1e8 ? missing : texture2D(colours, vec2(t, 0.5)).rgb;
    if (isLit) {
      vec3 normal = normalize(cross(dFdx(vEye), dFdy(vEye)));
      colour *= 0.55 + 0.45 * abs(normal.z);
    }
    gl_FragColor = vec4(colour, 1.0);
  }
`;

export const kPlainVertex = `${kMoved}
  uniform float size;
  void main() {
    gl_PointSize = size;
    gl_Position = projectionMatrix * moved();
  }
`;

export const kPlainFragment = `
  uniform vec4 colour;
  void main() { gl_FragColor = colour; }
`;
