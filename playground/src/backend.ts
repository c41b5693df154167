// The worker that assembles, and the language server in it. A run that takes too long is ended with its worker; the
// next change starts a new one, which is told all files again.
import type {Assembled, Finding, FromEditing, ServerMessage, ToEditing, View} from "./protocol.js";

const longestRun = 10_000; // milliseconds

export interface BackendEvents {
  findings(path: string, findings: Finding[]): void;
  assembled(result: Assembled): void;
  // All files are to be opened again.
  restarted(): void;
  tookTooLong(): void;
}

export const projectPath = ".kiln"; // has the command line, as a project has it

export function uriOf(path: string): string {
  return "file:///" + path.split("/").map(encodeURIComponent).join("/");
}

function pathOf(uri: string): string {
  return decodeURIComponent(uri.replace(/^file:\/\/\//, ""));
}

export class Backend {
  private worker: Worker | null = null;
  private isReady = false;
  private nextId = 1;
  private readonly answers = new Map<number, (result: unknown) => void>();
  private timer: number | undefined;
  private waiting = 0; // for results

  constructor(private readonly events: BackendEvents) {}

  isRunning(): boolean {
    return this.worker !== null;
  }

  start(): void {
    this.worker = new Worker("editing.js", {type: "module"});
    this.worker.addEventListener("message", (event: MessageEvent<FromEditing>) => this.take(event.data));
    this.isReady = false;
    void this.request("initialize", {
      capabilities: {
        textDocument: {hover: {contentFormat: ["plaintext"]}, completion: {completionItem: {snippetSupport: false}}},
      },
    });
    this.notify("initialized", {});
    this.events.restarted();
  }

  notify(method: string, params: object): void {
    this.post({kind: "server", message: {jsonrpc: "2.0", method, params}});
  }

  // The answer's result; null when there is none, or no worker to answer.
  request(method: string, params: object): Promise<unknown> {
    if (this.worker === null) return Promise.resolve(null);
    const id = this.nextId++;
    return new Promise((resolve) => {
      this.answers.set(id, resolve);
      this.expect();
      this.post({kind: "server", message: {jsonrpc: "2.0", id, method, params}});
    });
  }

  setFile(path: string, text: string | null): void {
    this.post({kind: "file", path, text});
  }

  assemble(commandLine: string, view: View): number {
    this.expect();
    this.post({kind: "assemble", id: this.nextId, commandLine, view});
    return this.nextId++;
  }

  private post(message: ToEditing): void {
    this.worker?.postMessage(message);
  }

  private expect(): void {
    ++this.waiting;
    if (this.isReady && this.timer === undefined) this.timer = window.setTimeout(() => this.giveUp(), longestRun);
  }

  private take(message: FromEditing): void {
    window.clearTimeout(this.timer);
    this.timer = undefined;
    if (message.kind === "ready") this.isReady = true;
    if (message.kind === "server") message.messages.forEach((each) => this.takeServer(each));
    if (message.kind === "assembled") {
      --this.waiting;
      this.events.assembled(message);
    }
    if (this.waiting > 0) this.timer = window.setTimeout(() => this.giveUp(), longestRun);
  }

  private takeServer(message: ServerMessage): void {
    if (message.method === "textDocument/publishDiagnostics") {
      const {uri, diagnostics} = message.params as {uri: string; diagnostics: Finding[]};
      this.events.findings(pathOf(uri), diagnostics);
    }
    if (message.id === undefined || message.method !== undefined) return;
    --this.waiting;
    this.answers.get(message.id)?.(message.result ?? null);
    this.answers.delete(message.id);
  }

  private giveUp(): void {
    this.worker?.terminate();
    this.worker = null;
    this.timer = undefined;
    this.waiting = 0;
    this.answers.forEach((answer) => answer(null));
    this.answers.clear();
    this.events.tookTooLong();
  }
}
