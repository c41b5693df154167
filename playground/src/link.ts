// Links that carry a program: in the fragment, which a browser never sends.

export interface Program {
  commandLine: string;
  files: Record<string, string>;
}

const mark = "#program=";
const mostBytes = 4 << 20; // of a program; a short link could unpack to anything

async function through(bytes: Uint8Array<ArrayBuffer>, step: GenericTransformStream): Promise<Uint8Array<ArrayBuffer>> {
  const reader = (new Blob([bytes]).stream().pipeThrough(step) as ReadableStream<Uint8Array<ArrayBuffer>>).getReader();
  const parts: Uint8Array<ArrayBuffer>[] = [];
  let size = 0;
  for (let part = await reader.read(); !part.done; part = await reader.read()) {
    size += part.value.length;
    if (size > mostBytes) throw new Error("The program in the link is too long.");
    parts.push(part.value);
  }
  return new Uint8Array(await new Blob(parts).arrayBuffer());
}

function isProgram(value: unknown): value is Program {
  const program = value as Program | null;
  return (
    typeof program?.commandLine === "string" &&
    typeof program.files === "object" &&
    program.files !== null &&
    Object.values(program.files).every((text) => typeof text === "string") &&
    Object.keys(program.files).length > 0
  );
}

export async function fragmentOf(program: Program): Promise<string> {
  const text = new TextEncoder().encode(JSON.stringify(program));
  const packed = await through(text, new CompressionStream("deflate-raw"));
  let characters = "";
  for (const byte of packed) characters += String.fromCharCode(byte);
  return mark + btoa(characters).replaceAll("+", "-").replaceAll("/", "_").replaceAll("=", "");
}

// Null when the fragment carries no program; throws when it is damaged.
export async function programOf(fragment: string): Promise<Program | null> {
  if (!fragment.startsWith(mark)) return null;
  const characters = atob(fragment.slice(mark.length).replaceAll("-", "+").replaceAll("_", "/"));
  const packed = Uint8Array.from(characters, (character) => character.charCodeAt(0));
  const text = await through(packed, new DecompressionStream("deflate-raw"));
  const program: unknown = JSON.parse(new TextDecoder().decode(text));
  if (!isProgram(program)) throw new Error("The link has no program in it.");
  return program;
}
