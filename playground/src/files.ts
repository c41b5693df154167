// The files of the program: one editor, and a tab for each file.
import type {EditorState} from "@codemirror/state";
import type {Backend} from "./backend.js";
import {projectPath, uriOf} from "./backend.js";
import {breakpointLines, showStop} from "./breakpoints.js";
import {Editor, type Edit} from "./editor.js";
import type {Program} from "./link.js";
import type {Finding} from "./protocol.js";

interface File {
  state: EditorState; // out of date while it is shown
  version: number;
  isSent: boolean; // the assembler has this text
}

// Layouts and symbol files are no sources: the server reads them as from a disk.
function isSource(path: string): boolean {
  return !/\.(lnk|sym)$/i.test(path);
}

export class Files {
  private readonly files = new Map<string, File>();
  private readonly findings = new Map<string, Finding[]>();
  private readonly editor: Editor;
  private commandLine = "";
  private shown = "";

  constructor(
    private readonly backend: Backend,
    private readonly tabs: HTMLElement,
    place: HTMLElement,
    private readonly changed: () => void,
    breakpointsChanged: () => void,
  ) {
    this.editor = new Editor(place, {
      ask: (method, position) => this.ask(method, position),
      edited: (edits) => this.edited(edits),
      breakpointsChanged,
    });
    tabs.addEventListener("keydown", (event) => this.moveWithKeys(event));
  }

  // Replaces all files.
  open(program: Program): void {
    for (const path of [...this.files.keys()]) this.forget(path);
    this.findings.clear();
    this.commandLine = program.commandLine;
    for (const [path, text] of Object.entries(program.files)) this.addFile(path, text);
    if (this.backend.isRunning()) this.openProject();
    this.shown = "";
    this.show(Object.keys(program.files)[0] ?? "");
    this.changed();
  }

  program(): Program {
    const files: Record<string, string> = {};
    for (const path of this.files.keys()) files[path] = this.stateOf(path)?.doc.toString() ?? "";
    return {commandLine: this.commandLine, files};
  }

  setCommandLine(line: string): void {
    this.commandLine = line;
    this.openProject();
    this.changed();
  }

  // For a worker that has just started.
  openAll(): void {
    this.openProject();
    for (const [path, file] of this.files) this.tell(path, file);
  }

  // Gives the assembler the texts that have changed.
  sendTexts(): void {
    for (const [path, file] of this.files) {
      if (!file.isSent) this.backend.setFile(path, this.stateOf(path)?.doc.toString() ?? "");
      file.isSent = true;
    }
  }

  add(path: string): void {
    if (!this.files.has(path)) {
      this.addFile(path, "");
      this.changed();
    }
    this.show(path);
    this.focus();
  }

  removeShown(): void {
    if (this.files.size < 2) return;
    this.forget(this.shown);
    this.shown = "";
    this.show([...this.files.keys()][0] ?? "");
    this.changed();
  }

  get shownPath(): string {
    return this.shown;
  }

  paths(): string[] {
    return [...this.files.keys()];
  }

  show(path: string): void {
    const file = this.files.get(path);
    if (file === undefined || path === this.shown) return this.drawTabs();
    const before = this.files.get(this.shown);
    if (before !== undefined) before.state = this.editor.view.state;
    this.shown = path;
    this.editor.view.setState(file.state);
    this.editor.showFindings(this.findings.get(path) ?? []);
    this.drawTabs();
  }

  // `line` counts from 1.
  goTo(path: string, line: number, character = 0): void {
    if (!this.files.has(path)) return;
    this.show(path);
    this.editor.goTo(line, character);
  }

  focus(): void {
    this.editor.view.focus();
  }

  setFindings(path: string, findings: Finding[]): void {
    if (findings.length === 0) this.findings.delete(path);
    else this.findings.set(path, findings);
    if (path === this.shown) this.editor.showFindings(findings);
  }

  allFindings(): [string, Finding][] {
    return [...this.findings].flatMap(([path, list]) => list.map((finding): [string, Finding] => [path, finding]));
  }

  breakpoints(): [string, number[]][] {
    return this.paths().map((path) => {
      const state = this.stateOf(path);
      return [path, state === undefined ? [] : breakpointLines(state)];
    });
  }

  // Of a path and a line from 1: where the program has stopped.
  markStop(place: [string, number] | null): void {
    for (const [path, file] of this.files) {
      const effects = showStop.of(place?.[0] === path ? place[1] : null);
      if (path === this.shown) this.editor.view.dispatch({effects});
      else file.state = file.state.update({effects}).state;
    }
  }

  private stateOf(path: string): EditorState | undefined {
    return path === this.shown ? this.editor.view.state : this.files.get(path)?.state;
  }

  private addFile(path: string, text: string): void {
    const file = {state: this.editor.stateOf(text), version: 1, isSent: false};
    this.files.set(path, file);
    this.tell(path, file);
  }

  private tell(path: string, file: File): void {
    file.isSent = false;
    if (!isSource(path)) return this.sendToDisk(path);
    const text = this.stateOf(path)?.doc.toString() ?? "";
    const textDocument = {uri: uriOf(path), languageId: "kiln", version: file.version, text};
    this.backend.notify("textDocument/didOpen", {textDocument});
  }

  private sendToDisk(path: string): void {
    this.backend.setFile(path, this.stateOf(path)?.doc.toString() ?? "");
    this.backend.notify("workspace/didChangeWatchedFiles", {changes: [{uri: uriOf(path), type: 2}]});
  }

  private openProject(): void {
    const textDocument = {uri: uriOf(projectPath), languageId: "kiln-project", version: 1, text: this.commandLine};
    this.backend.notify("textDocument/didOpen", {textDocument});
  }

  private forget(path: string): void {
    this.files.delete(path);
    this.findings.delete(path);
    if (isSource(path)) this.backend.notify("textDocument/didClose", {textDocument: {uri: uriOf(path)}});
    this.backend.setFile(path, null);
  }

  private ask(method: string, position: {line: number; character: number}): Promise<unknown> {
    return this.backend.request(method, {textDocument: {uri: uriOf(this.shown)}, position});
  }

  private edited(edits: Edit[]): void {
    const file = this.files.get(this.shown);
    if (file === undefined) return;
    file.isSent = false;
    const textDocument = {uri: uriOf(this.shown), version: ++file.version};
    if (isSource(this.shown)) this.backend.notify("textDocument/didChange", {textDocument, contentChanges: edits});
    else this.sendToDisk(this.shown);
    this.changed();
  }

  private drawTabs(): void {
    const tabs = this.paths().map((path) => {
      const tab = document.createElement("button");
      tab.type = "button";
      tab.role = "tab";
      tab.textContent = path;
      tab.ariaSelected = String(path === this.shown);
      tab.tabIndex = path === this.shown ? 0 : -1;
      tab.addEventListener("click", () => this.show(path));
      return tab;
    });
    const hadFocus = this.tabs.contains(document.activeElement);
    this.tabs.replaceChildren(...tabs);
    if (hadFocus) this.tabs.querySelector<HTMLElement>("[aria-selected=true]")?.focus();
  }

  private moveWithKeys(event: KeyboardEvent): void {
    const step = {ArrowLeft: -1, ArrowRight: 1}[event.key];
    if (step === undefined) return;
    const paths = this.paths();
    event.preventDefault();
    this.show(paths[(paths.indexOf(this.shown) + step + paths.length) % paths.length] ?? "");
  }
}
