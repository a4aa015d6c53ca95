// Even steps for the eye from dark to bright, also in grey and for the colour-blind.
const kStops = [
  [68, 1, 84], [72, 40, 120], [62, 73, 137], [49, 104, 142], [38, 130, 142],
  [31, 158, 137], [53, 183, 121], [110, 206, 88], [181, 222, 43], [253, 231, 37],
];

export const kMissing = [150, 150, 150];
export const kBands = 10;

/// Red, green and blue at t of 0 to 1.
export function colourAt(t) {
  const place = Math.min(Math.max(t, 0), 1) * (kStops.length - 1);
  const i = Math.min(Math.floor(place), kStops.length - 2);
  return kStops[i].map((low, k) => Math.round(low + (kStops[i + 1][k] - low) * (place - i)));
}

/// The scale as `size` colours with four bytes each.
export function colourTable(size) {
  const table = new Uint8Array(4 * size);
  for (let i = 0; i < size; ++i) table.set([...colourAt(i / (size - 1)), 255], 4 * i);
  return table;
}

/// The scale from bottom to top for a style sheet.
export function gradient(hasBands) {
  const rgb = (t) => `rgb(${colourAt(t).join(" ")})`;
  const stops = [];
  const count = hasBands ? kBands : kStops.length - 1;
  for (let i = 0; i < count; ++i) {
    const [low, high] = [i / count, (i + 1) / count];
    const inner = hasBands ? rgb((i + 0.5) / count) : null;
    stops.push(`${inner ?? rgb(low)} ${low * 100}%`, `${inner ?? rgb(high)} ${high * 100}%`);
  }
  return `linear-gradient(to top, ${stops.join(", ")})`;
}
