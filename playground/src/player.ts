// The machine's screen, sound and buttons. The machine itself is in a worker.
import {Keyboard} from "./keyboard.js";
import type {FromRunning, Loadable, ProcessorState, ToRunning} from "./protocol.js";
import {Sound} from "./sound.js";

const frameTime = 1000 / 50; // milliseconds
const mostLate = 100; // milliseconds; what is later than this is not made up for
const longestStep = 5_000; // milliseconds

export interface PlayerEvents {
  // The program to be run; null when there is none, and the reason has been shown.
  program(): Loadable | null;
  breakpoints(): number[];
  stopped(ended: "breakpoint" | "failure" | "step", processor: ProcessorState): void;
  wentOn(): void;
  say(text: string): void;
}

function element<T extends HTMLElement>(id: string): T {
  return document.getElementById(id) as T;
}

function hex(value: number, digits: number): string {
  return value.toString(16).toUpperCase().padStart(digits, "0");
}

export class Player {
  private worker: Worker | null = null;
  private readonly canvas = element<HTMLCanvasElement>("screen");
  private readonly picture = this.canvas.getContext("2d");
  private readonly keyboard = new Keyboard((code) => this.post({kind: "key", code}));
  private readonly sound = new Sound();
  private loaded: Loadable | null = null;
  private isRunning = false;
  private isBusy = false; // the worker has a frame to run
  private next = 0; // when the next frame is due
  private frames = 0; // since the program was loaded
  private timer: number | undefined;

  constructor(private readonly events: PlayerEvents) {
    const actions: Record<string, () => void> = {
      run: () => this.run(),
      pause: () => this.pauseOrGoOn(),
      step: () => this.advance({kind: "step", input: this.keyboard.input}),
      frame: () => this.advance({kind: "frame", input: this.keyboard.input}),
    };
    for (const [id, action] of Object.entries(actions)) element(id).addEventListener("click", action);
    this.keyboard.listen(this.canvas);
    document.querySelectorAll<HTMLElement>("[data-key]").forEach((button) => {
      this.keyboard.connect(button, button.dataset.key ?? "");
    });
    document.addEventListener("visibilitychange", () => this.sound.silence());
  }

  // Loads the program of the editor and runs it from its beginning.
  run(): void {
    if (!this.load()) return;
    this.goOn();
    this.canvas.focus();
  }

  breakpointsChanged(): void {
    this.post({kind: "breakpoints", addresses: this.events.breakpoints()});
  }

  private stop(): void {
    this.isRunning = false;
    this.sound.silence();
    this.showButtons();
  }

  // The next step is one of the program that the editor has then.
  unload(): void {
    this.stop();
    this.loaded = null;
  }

  private load(): boolean {
    const program = this.events.program();
    if (program === null) return false;
    this.stop();
    this.worker ??= this.startWorker();
    this.loaded = program;
    this.frames = 0;
    this.isBusy = true;
    this.post({kind: "load", program});
    this.breakpointsChanged();
    return true;
  }

  private startWorker(): Worker {
    const worker = new Worker("running.js", {type: "module"});
    worker.addEventListener("message", (event: MessageEvent<FromRunning>) => this.take(event.data));
    return worker;
  }

  private goOn(): void {
    this.events.wentOn();
    if ((element<HTMLInputElement>("sound")).checked) this.sound.start();
    this.isRunning = true;
    this.next = performance.now();
    this.showButtons();
    requestAnimationFrame(() => this.tick());
  }

  private pauseOrGoOn(): void {
    if (!this.isRunning) return this.loaded === null ? this.run() : this.goOn();
    this.stop();
    this.events.say("Paused.");
  }

  // An instruction or a frame, of a program that waits.
  private advance(message: ToRunning): void {
    this.stop();
    if (this.loaded === null && !this.load()) return;
    this.events.wentOn();
    this.isBusy = true;
    this.post(message);
  }

  private tick(): void {
    if (!this.isRunning) return;
    const now = performance.now();
    if (!this.isBusy && now >= this.next) {
      this.next = Math.max(this.next + frameTime, now - mostLate);
      this.isBusy = true;
      this.post({kind: "frame", input: this.keyboard.input});
    }
    requestAnimationFrame(() => this.tick());
  }

  private post(message: ToRunning): void {
    if (this.worker === null) return;
    if (message.kind === "frame" || message.kind === "step" || message.kind === "load") {
      window.clearTimeout(this.timer);
      this.timer = window.setTimeout(() => this.giveUp(), longestStep);
    }
    this.worker.postMessage(message);
  }

  private giveUp(): void {
    this.worker?.terminate();
    this.worker = this.loaded = null;
    this.stop();
    this.events.say("The machine took too long and was stopped.");
  }

  private take(message: FromRunning): void {
    if (message.kind !== "ran") return;
    window.clearTimeout(this.timer);
    this.isBusy = false;
    const {ended, picture, processor} = message;
    if (ended !== "load") this.picture?.putImageData(new ImageData(picture, this.canvas.width, this.canvas.height), 0, 0);
    if (ended === "frame") ++this.frames;
    this.canvas.dataset.frames = String(this.frames);
    if (this.isRunning && element<HTMLInputElement>("sound").checked) this.sound.play(message.sound);
    else this.sound.silence();
    if (!this.isRunning || ended !== "frame") this.showProcessor(processor);
    if (ended === "frame") return;
    if (ended === "load" && processor.error === "") return;
    this.stop();
    this.events.stopped(ended === "load" ? "failure" : ended, processor);
  }

  private showProcessor(state: ProcessorState): void {
    const flags = [..."NV-BDIZC"].map((flag, i) => ((state.p & (0x80 >> i)) !== 0 ? flag : flag.toLowerCase()));
    const pc = state.hasReturned ? "back in the system" : `PC $${hex(state.pc, 4)}`;
    element("processor").textContent =
      `${pc}  A $${hex(state.a, 2)}  X $${hex(state.x, 2)}  Y $${hex(state.y, 2)}  S $${hex(state.s, 2)}  ${flags.join("")}`;
  }

  private showButtons(): void {
    element("pause").textContent = this.isRunning ? "Pause" : "Continue";
    element("processor").hidden = this.isRunning;
  }
}
