// The editor. It is in a shadow tree, where its style sheets are objects: the page allows no style elements.
import {closeBrackets, completionKeymap} from "@codemirror/autocomplete";
import {defaultKeymap, history, historyKeymap, toggleComment} from "@codemirror/commands";
import {bracketMatching} from "@codemirror/language";
import {lintGutter, lintKeymap, setDiagnostics, type Diagnostic} from "@codemirror/lint";
import {highlightSelectionMatches, searchKeymap} from "@codemirror/search";
import {EditorState, type ChangeSet, type Extension, type Text} from "@codemirror/state";
import {
  EditorView,
  drawSelection,
  highlightActiveLine,
  highlightActiveLineGutter,
  highlightSpecialChars,
  keymap,
  lineNumbers,
} from "@codemirror/view";
import {breakpointGutter} from "./breakpoints.js";
import {kilnLanguage} from "./language.js";
import {lookup, offsetAt, positionAt, type Ask} from "./lookup.js";
import type {Finding, Range} from "./protocol.js";

export interface Edit {
  range: Range;
  text: string;
}

export interface EditorEvents {
  ask: Ask;
  edited(edits: Edit[]): void;
  breakpointsChanged(): void;
}

const mostFindings = 1000; // shown in one file

// The last change first, so that each range is one of the text before the first.
function editsOf(before: Text, changes: ChangeSet): Edit[] {
  const edits: Edit[] = [];
  changes.iterChanges((from, to, _fromNew, _toNew, inserted) => {
    const range = {start: positionAt(before, from), end: positionAt(before, to)};
    edits.unshift({range, text: inserted.toString()});
  });
  return edits;
}

const looks = EditorView.theme({
  "&": {height: "100%", color: "var(--text)", backgroundColor: "var(--field)", fontSize: "var(--code-size)"},
  ".cm-scroller": {fontFamily: "ui-monospace, Menlo, Consolas, 'DejaVu Sans Mono', monospace", lineHeight: "1.45"},
  ".cm-content": {caretColor: "var(--text)"},
  ".cm-cursor": {borderLeftColor: "var(--text)"},
  "&.cm-focused": {outline: "2px solid var(--accent)", outlineOffset: "-2px"},
  ".cm-gutters": {backgroundColor: "var(--field)", color: "var(--faint)", borderRight: "1px solid var(--line)"},
  ".cm-activeLine, .cm-activeLineGutter": {backgroundColor: "var(--current)"},
  ".cm-selectionBackground, &.cm-focused > .cm-scroller > .cm-selectionLayer .cm-selectionBackground": {
    backgroundColor: "var(--selection)",
  },
  ".cm-tooltip, .cm-panels": {backgroundColor: "var(--panel)", color: "var(--text)", border: "1px solid var(--line)"},
  ".cm-tooltip-autocomplete ul li[aria-selected]": {backgroundColor: "var(--accent)", color: "var(--on-accent)"},
  ".cm-panels input, .cm-panels button": {backgroundColor: "var(--field)", color: "var(--text)", backgroundImage: "none"},
  ".hover, .cm-diagnosticText": {whiteSpace: "pre-wrap", maxWidth: "36rem"},
  ".hover": {padding: "0.4rem 0.6rem", fontFamily: "inherit"},
  ".breakpoint": {color: "var(--error)"},
  ".breakpoints": {width: "1.2em", cursor: "pointer"},
  ".stop": {backgroundColor: "var(--stop)"},
});

function behaviour(events: EditorEvents): Extension {
  return [
    lineNumbers(),
    breakpointGutter(events.breakpointsChanged),
    lintGutter(),
    history(),
    drawSelection(),
    highlightSpecialChars(),
    highlightActiveLine(),
    highlightActiveLineGutter(),
    highlightSelectionMatches(),
    bracketMatching(),
    closeBrackets(),
    kilnLanguage(),
    lookup(events.ask),
    looks,
    // Tab moves on to the next control, for those who work without a mouse.
    keymap.of([
      {key: "Mod-/", run: toggleComment},
      ...defaultKeymap,
      ...historyKeymap,
      ...searchKeymap,
      ...completionKeymap,
      ...lintKeymap,
    ]),
    EditorView.contentAttributes.of({"aria-label": "Source"}),
    EditorState.tabSize.of(8),
    EditorView.updateListener.of((update) => {
      if (update.docChanged) events.edited(editsOf(update.startState.doc, update.changes));
    }),
  ];
}

export class Editor {
  readonly view: EditorView;
  private readonly extensions: Extension;

  constructor(place: HTMLElement, events: EditorEvents) {
    this.extensions = behaviour(events);
    const root = place.attachShadow({mode: "open"});
    this.view = new EditorView({parent: root, root, state: this.stateOf("")});
  }

  stateOf(text: string): EditorState {
    return EditorState.create({doc: text, extensions: this.extensions});
  }

  showFindings(findings: Finding[]): void {
    const {doc} = this.view.state;
    const diagnostics = findings.slice(0, mostFindings).map((finding): Diagnostic => {
      const from = offsetAt(doc, finding.range.start);
      const severity = finding.severity === 1 ? "error" : "warning";
      const source = finding.code ?? "";
      return {from, to: Math.max(from, offsetAt(doc, finding.range.end)), severity, source, message: finding.message};
    });
    this.view.dispatch(setDiagnostics(this.view.state, diagnostics));
  }

  // `line` counts from 1.
  goTo(line: number, character = 0): void {
    const at = this.view.state.doc.line(Math.min(Math.max(line, 1), this.view.state.doc.lines));
    const place = Math.min(at.from + character, at.to);
    this.view.dispatch({selection: {anchor: place}, effects: EditorView.scrollIntoView(place, {y: "center"})});
  }
}

// A text that can only be read, in the same looks.
export class Reader {
  private readonly view: EditorView;

  constructor(place: HTMLElement, label: string) {
    const root = place.attachShadow({mode: "open"});
    const extensions = [
      EditorState.readOnly.of(true),
      keymap.of([...defaultKeymap, ...searchKeymap]),
      EditorView.contentAttributes.of({"aria-label": label}),
      looks,
    ];
    this.view = new EditorView({parent: root, root, state: EditorState.create({extensions})});
  }

  show(text: string): void {
    this.view.dispatch({changes: {from: 0, to: this.view.state.doc.length, insert: text}});
  }
}
