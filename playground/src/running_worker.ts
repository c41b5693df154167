// Has the machine, and runs it a frame at a time.
import {Kiln} from "./module.js";
import type {FromRunning, Input, Loadable, ProcessorState, ToRunning} from "./protocol.js";

const kiln = Kiln.load();
const ends = ["frame", "breakpoint", "failure"] as const;

type Ran = Extract<FromRunning, {kind: "ran"}>;

function report(of: Kiln, ended: Ran["ended"]): void {
  const picture = of.take((reply) => of.exports._picture(reply));
  const processor = of.takeText((reply) => of.exports._processorState(reply));
  const message: Ran = {
    kind: "ran",
    ended,
    picture: new Uint8ClampedArray(picture.buffer),
    sound: of.take((reply) => of.exports._soundRegisters(reply)),
    processor: JSON.parse(processor) as ProcessorState,
  };
  self.postMessage(message, {transfer: [picture.buffer]});
}

function load(to: Kiln, {file, windows}: Loadable): void {
  to.give(file, (bytes, size) => {
    to.giveWords(windows, (address) => to.exports._loadProgram(bytes, size, address, windows.length / 4));
  });
  report(to, "load");
}

function setInput(to: Kiln, input: Input): void {
  to.exports._setInput(input.stick, input.trigger, input.consoleKeys);
}

function setBreakpoints(to: Kiln, addresses: number[]): void {
  to.giveWords(addresses, (address) => to.exports._setBreakpoints(address, addresses.length));
}

async function handle(message: ToRunning): Promise<void> {
  const to = await kiln;
  switch (message.kind) {
    case "load":
      return load(to, message.program);
    case "breakpoints":
      return setBreakpoints(to, message.addresses);
    case "key":
      return to.exports._pressKey(message.code);
    case "frame":
      setInput(to, message.input);
      return report(to, ends[to.exports._runFrame()] ?? "failure");
    case "step":
      setInput(to, message.input);
      return report(to, to.exports._stepInstruction() ? "step" : "failure");
  }
}

self.addEventListener("message", (event: MessageEvent<ToRunning>) => void handle(event.data));
void kiln.then(() => self.postMessage({kind: "ready"} satisfies FromRunning));
