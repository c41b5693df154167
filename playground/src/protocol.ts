// What the page and its workers send each other.

export type View = "none" | "listing" | "map";

export type ToEditing =
  | {kind: "server"; message: object}
  | {kind: "file"; path: string; text: string | null} // null: there is no such file any more
  | {kind: "assemble"; id: number; commandLine: string; view: View};

export interface Summary {
  error: string; // why there is no program; empty when the findings say it
  size: number; // of the program file; 0 without one
  name?: string; // of the program file
  instructions?: Record<string, number[]>; // by file: line and address, by turns
  windows?: number[]; // that show banks, by four: first and last address, register of the low and of the high byte or 0
}

export interface Assembled {
  kind: "assembled";
  id: number;
  summary: Summary;
  file: Uint8Array<ArrayBuffer>;
  view: View;
  text: string; // of the view
  picture: string; // of the map, SVG
}

export type FromEditing =
  | {kind: "ready"}
  | {kind: "server"; messages: ServerMessage[]}
  | Assembled;

export interface ServerMessage {
  id?: number;
  method?: string;
  params?: unknown;
  result?: unknown;
}

export interface Position {
  line: number; // from 0
  character: number; // in UTF-16, as the editor counts
}

export interface Range {
  start: Position;
  end: Position;
}

export interface Finding {
  range: Range;
  severity: number; // 1: error
  message: string;
  code?: string;
}

// A program file, and the windows of the machine that it is for; without any, of a 130XE.
export interface Loadable {
  file: Uint8Array;
  windows: number[];
}

export interface Input {
  stick: number; // 15 in the middle; up clears bit 0, down 1, left 2 and right 3
  trigger: boolean;
  consoleKeys: number; // START clears bit 0, SELECT 1, OPTION 2
}

export type ToRunning =
  | {kind: "load"; program: Loadable}
  | {kind: "breakpoints"; addresses: number[]}
  | {kind: "key"; code: number}
  | {kind: "frame"; input: Input}
  | {kind: "step"; input: Input};

export interface ProcessorState {
  a: number;
  x: number;
  y: number;
  s: number;
  p: number;
  pc: number;
  hasReturned: boolean;
  error: string;
}

export type FromRunning =
  | {kind: "ready"}
  | {
      kind: "ran";
      ended: "frame" | "breakpoint" | "failure" | "step" | "load";
      picture: Uint8ClampedArray<ArrayBuffer>;
      sound: Uint8Array;
      processor: ProcessorState;
    };
