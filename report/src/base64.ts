// Arrays of numbers, written as base64 of their little-endian bytes.

function bytesOf(text: string): Uint8Array<ArrayBuffer> {
  const binary = atob(text);
  const bytes = new Uint8Array(binary.length);
  for (let i = 0; i < binary.length; i++) bytes[i] = binary.charCodeAt(i);
  return bytes;
}

// The bytes as whole numbers of `size` bytes. Every processor that a browser runs on today is
// little-endian, so the bytes are taken as they are.
function bufferOf(text: string, size: number, what: string): ArrayBuffer {
  const bytes = bytesOf(text);
  if (bytes.length % size !== 0) {
    throw new Error(`${what}: ${bytes.length} bytes are no whole number of ${size}-byte values`);
  }
  return bytes.buffer;
}

export function float32(text: string, what: string): Float32Array {
  return new Float32Array(bufferOf(text, 4, what));
}

export function float64(text: string, what: string): Float64Array {
  return new Float64Array(bufferOf(text, 8, what));
}

export function uint32(text: string, what: string): Uint32Array {
  return new Uint32Array(bufferOf(text, 4, what));
}

/** Whole numbers of 1, 2 or 4 bytes each. */
export function whole(text: string, bytes: number, what: string): Uint8Array | Uint16Array | Uint32Array {
  const buffer = bufferOf(text, bytes, what);
  return bytes === 1 ? new Uint8Array(buffer) : bytes === 2 ? new Uint16Array(buffer) : new Uint32Array(buffer);
}
