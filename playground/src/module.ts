// kiln.wasm, and texts and bytes in its memory.

interface Exports {
  HEAPU8: Uint8Array;
  _malloc(size: number): number;
  _free(address: number): void;
  _receiveMessage(text: number, size: number): void;
  _settleServer(reply: number): void;
  _addFile(path: number, pathSize: number, bytes: number, size: number): void;
  _removeFile(path: number, pathSize: number): void;
  _assembleProgram(line: number, size: number, reply: number): void;
  _programFile(reply: number): void;
  _cycleListing(reply: number): void;
  _mapPicture(reply: number): void;
  _mapText(reply: number): void;
  _loadProgram(bytes: number, size: number, windows: number, windowCount: number): void;
  _setInput(stick: number, trigger: boolean, consoleKeys: number): void;
  _pressKey(code: number): void;
  _setBreakpoints(addresses: number, count: number): void;
  _runFrame(): number;
  _stepInstruction(): number;
  _picture(reply: number): void;
  _soundRegisters(reply: number): void;
  _processorState(reply: number): void;
}

export class Kiln {
  private readonly reply: number;

  private constructor(readonly exports: Exports) {
    this.reply = exports._malloc(8);
  }

  static async load(): Promise<Kiln> {
    const url = new URL("kiln.mjs", self.location.href).href;
    const module = (await import(url)) as {default: () => Promise<Exports>};
    return new Kiln(await module.default());
  }

  // Calls `use` with the place of a copy of the bytes.
  give(bytes: Uint8Array, use: (address: number, size: number) => void): void {
    const address = this.exports._malloc(Math.max(bytes.length, 1));
    if (address === 0) throw new Error("out of memory");
    this.exports.HEAPU8.set(bytes, address);
    use(address, bytes.length);
    this.exports._free(address);
  }

  giveWords(words: number[], use: (address: number) => void): void {
    this.give(new Uint8Array(new Uint16Array(words).buffer), use);
  }

  giveText(text: string, use: (address: number, size: number) => void): void {
    this.give(new TextEncoder().encode(text), use);
  }

  // A copy of what the call replies.
  take(call: (reply: number) => void): Uint8Array<ArrayBuffer> {
    const words = () => new Uint32Array(this.exports.HEAPU8.buffer, this.reply, 2);
    words().fill(0);
    call(this.reply);
    const [address = 0, size = 0] = words();
    return new Uint8Array(this.exports.HEAPU8.subarray(address, address + size));
  }

  takeText(call: (reply: number) => void): string {
    return new TextDecoder().decode(this.take(call));
  }
}
