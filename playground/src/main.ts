// The page.
import {Backend} from "./backend.js";
import {Reader} from "./editor.js";
import {Files} from "./files.js";
import {fragmentOf, programOf, type Program} from "./link.js";
import {Panes} from "./panes.js";
import {Player} from "./player.js";
import type {Assembled, ProcessorState, Summary, View} from "./protocol.js";

interface Example extends Program {
  title: string;
}

const pause = 150; // milliseconds from the last key to the next run
const mostListed = 500; // findings

function element<T extends HTMLElement>(id: string): T {
  return document.getElementById(id) as T;
}

const commandLine = element<HTMLInputElement>("command");
const gallery = element<HTMLSelectElement>("gallery");
const download = element<HTMLButtonElement>("download");

let examples: Example[] = [];
let last: Assembled | null = null;
let view: View = "none";
let timer: number | undefined;
let asked = 0; // the run whose result is waited for
let isStale = false; // something has changed since it began

function say(text: string): void {
  element("status").textContent = text;
}

const backend = new Backend({
  findings: (path, findings) => {
    files.setFindings(path, findings);
    listFindings();
  },
  assembled: showResult,
  restarted: () => files.openAll(),
  tookTooLong: () => {
    asked = 0;
    say("The assembler took too long and was stopped. It starts again with the next change.");
  },
});

const files = new Files(backend, element("files"), element("editor"), programChanged, () => player.breakpointsChanged());
const listing = new Reader(element("listing-text"), "Listing");
const panes = new Panes(element("panes"), (id) => {
  view = id === "listing" ? "listing" : id === "map" ? "map" : "none";
  if (view !== "none" && last?.view !== view) assembleSoon(0);
});

const player = new Player({
  program: () => {
    panes.show("machine");
    const file = last?.file ?? new Uint8Array();
    if (file[0] === 0xff && file[1] === 0xff) return {file, windows: last?.summary.windows ?? []};
    say(file.length === 0 ? "There is no program to run: see the findings." : "Only XEX files run here.");
    return null;
  },
  breakpoints: breakpointAddresses,
  stopped: showStopped,
  wentOn: () => files.markStop(null),
  say,
});

function programChanged(): void {
  if (!backend.isRunning()) backend.start();
  isStale = true;
  assembleSoon(pause);
}

function assembleSoon(delay: number): void {
  window.clearTimeout(timer);
  timer = window.setTimeout(assemble, delay);
}

function assemble(): void {
  if (asked !== 0 || !backend.isRunning()) return;
  isStale = false;
  files.sendTexts();
  asked = backend.assemble(commandLine.value, view);
}

function showResult(result: Assembled): void {
  if (result.id !== asked) return;
  asked = 0;
  last = result;
  if (result.summary.size > 0) performance.mark("first assembly");
  showSummary(result.summary);
  listFindings();
  if (result.view === "listing") listing.show(result.text);
  if (result.view === "map") showMap(result);
  player.breakpointsChanged();
  if (isStale || (view !== "none" && view !== result.view)) assembleSoon(0);
}

function showSummary(summary: Summary): void {
  const name = summary.name ?? "";
  download.disabled = summary.size === 0;
  download.textContent = summary.size === 0 ? "Download" : `Download ${name.split("/").at(-1) ?? ""}`;
  element("size").textContent = summary.size === 0 ? "no program" : `${summary.size.toLocaleString("en")} bytes`;
  element("size").dataset.run = String(last?.id);
}

function showMap(result: Assembled): void {
  const image = element<HTMLImageElement>("map-picture");
  image.hidden = result.picture === "";
  URL.revokeObjectURL(image.src);
  image.src = URL.createObjectURL(new Blob([result.picture], {type: "image/svg+xml"}));
  element("map-text").textContent = result.text || "There is no program.";
}

function listFindings(): void {
  const all = files.allFindings();
  const errors = all.filter(([, finding]) => finding.severity === 1).length;
  const counts = [counted(errors, "error"), counted(all.length - errors, "warning")].filter((text) => text !== "");
  const summary = counts.join(", ") || "no findings";
  if (element("counts").textContent !== summary) element("counts").textContent = summary;
  element("finding-list").replaceChildren(
    ...all.slice(0, mostListed).map(([path, finding]) => {
      const item = document.createElement("li");
      const button = document.createElement("button");
      const place = files.paths().includes(path) ? `${path}:${finding.range.start.line + 1}` : "command line";
      button.type = "button";
      button.className = finding.severity === 1 ? "error" : "warning";
      button.textContent = `${place}: ${finding.severity === 1 ? "error" : "warning"}: ${finding.message}`;
      button.addEventListener("click", () => goToFinding(path, finding.range.start));
      item.append(button);
      return item;
    }),
  );
}

function counted(count: number, what: string): string {
  return count === 0 ? "" : `${count} ${what}${count === 1 ? "" : "s"}`;
}

function goToFinding(path: string, place: {line: number; character: number}): void {
  if (!files.paths().includes(path)) return commandLine.focus();
  files.goTo(path, place.line + 1, place.character);
  files.focus();
}

// By file, the lines and addresses of the last program, by turns.
function instructions(): [string, number[]][] {
  return Object.entries(last?.summary.instructions ?? {});
}

// A breakpoint in a line without an instruction is at the next one that has some.
function breakpointAddresses(): number[] {
  const places = new Map(instructions());
  const addresses: number[] = [];
  for (const [path, lines] of files.breakpoints()) {
    const list = places.get(path) ?? [];
    for (const line of lines) {
      let best = -1;
      for (let i = 0; i < list.length; i += 2) {
        const at = list[i] ?? 0;
        if (at >= line && (best < 0 || at < (list[best] ?? 0))) best = i;
      }
      if (best >= 0) addresses.push(list[best + 1] ?? 0);
    }
  }
  return addresses;
}

function placeOf(address: number): [string, number] | null {
  for (const [path, list] of instructions()) {
    for (let i = 0; i < list.length; i += 2) {
      if (list[i + 1] === address) return [path, list[i] ?? 0];
    }
  }
  return null;
}

function showStopped(ended: "breakpoint" | "failure" | "step", processor: ProcessorState): void {
  const place = placeOf(processor.pc);
  if (place !== null) files.goTo(...place);
  files.markStop(place);
  const where = place === null ? "" : ` at ${place[0]}:${place[1]}`;
  if (ended === "failure") say(`The program stopped${where}: ${processor.error}.`);
  else say(`${ended === "breakpoint" ? "Breakpoint" : "Next"}${where || " outside the source"}.`);
}

function open(program: Program): void {
  player.unload();
  last = null;
  commandLine.value = program.commandLine;
  files.open(program);
}

async function openLink(): Promise<boolean> {
  try {
    const program = await programOf(location.hash);
    if (program !== null) open(program);
    if (program !== null) gallery.value = "";
    return program !== null;
  } catch {
    say("The link is damaged.");
    return false;
  }
}

async function copyLink(): Promise<void> {
  const fragment = await fragmentOf(files.program());
  history.replaceState(null, "", fragment);
  try {
    await navigator.clipboard.writeText(location.href);
    say("The link is in the clipboard.");
  } catch {
    say("The link is in the address bar.");
  }
}

function save(): void {
  if (last === null) return;
  const link = document.createElement("a");
  link.href = URL.createObjectURL(new Blob([last.file], {type: "application/octet-stream"}));
  link.download = last.summary.name?.split("/").at(-1) ?? "program.xex";
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 1000);
}

function addFile(): void {
  const path = window.prompt("Name of the new file, such as names.inc or program.lnk")?.trim() ?? "";
  if (path !== "" && path !== ".kiln") files.add(path.replace(/^\/+/, ""));
}

function removeFile(): void {
  if (files.paths().length < 2) return say("This is the only file.");
  if (window.confirm(`Remove ${files.shownPath}?`)) files.removeShown();
}

async function start(): Promise<void> {
  const hasLink = await openLink();
  examples = (await (await fetch("examples.json")).json()) as Example[];
  for (const [i, example] of examples.entries()) gallery.add(new Option(example.title, String(i)));
  if (hasLink || examples[0] === undefined) return;
  gallery.value = "0";
  open(examples[0]);
}

gallery.addEventListener("change", () => {
  const example = examples[Number(gallery.value)];
  if (gallery.value === "" || example === undefined) return;
  history.replaceState(null, "", location.pathname);
  open(example);
});
commandLine.addEventListener("input", () => files.setCommandLine(commandLine.value));
download.addEventListener("click", save);
element("link").addEventListener("click", () => void copyLink());
element("add").addEventListener("click", addFile);
element("remove").addEventListener("click", removeFile);
element("screen").addEventListener("keydown", (event) => event.key === "Escape" && files.focus());
window.addEventListener("hashchange", () => void openLink());
backend.start();
void start();
