const kTypes = { f32: Float32Array, i32: Int32Array, u32: Uint32Array, u8: Uint8Array };

/// All that the page holds but its arrays.
export function readReport() {
  return JSON.parse(document.getElementById("report").textContent);
}

/// Decodes an array of the page, given as { id, type, count }.
export async function readArray({ id, type, count }) {
  const packed = fromBase64(document.getElementById(`array-${id}`).textContent);
  const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream("deflate"));
  const bytes = new Uint8Array(await new Response(stream).arrayBuffer());
  const Type = kTypes[type];
  return new Type(joinPlanes(bytes, count, Type.BYTES_PER_ELEMENT).buffer);
}

function fromBase64(text) {
  if (Uint8Array.fromBase64) return Uint8Array.fromBase64(text);
  return Uint8Array.from(atob(text), (c) => c.charCodeAt(0));
}

// The first bytes of all numbers stand before all second ones, which packs better.
function joinPlanes(bytes, count, size) {
  if (size === 1) return bytes;
  const joined = new Uint8Array(count * size);
  for (let plane = 0; plane < size; ++plane) {
    for (let i = 0, from = plane * count; i < count; ++i) joined[i * size + plane] = bytes[from + i];
  }
  return joined;
}
