// Breakpoints beside the lines, and the line at which the program has stopped.
import {RangeSet, StateEffect, StateField, type EditorState, type Extension} from "@codemirror/state";
import {Decoration, EditorView, GutterMarker, gutter, keymap} from "@codemirror/view";

const toggle = StateEffect.define<number>(); // the offset of a line's beginning
export const showStop = StateEffect.define<number | null>(); // a line, from 1

class Mark extends GutterMarker {
  override toDOM(): Node {
    const dot = document.createElement("span");
    dot.className = "breakpoint";
    dot.textContent = "●";
    dot.title = "breakpoint";
    return dot;
  }
}

const mark = new Mark();

const breakpoints = StateField.define<RangeSet<GutterMarker>>({
  create: () => RangeSet.empty,
  update(set, transaction) {
    let marks = set.map(transaction.changes);
    for (const effect of transaction.effects) {
      if (!effect.is(toggle)) continue;
      const at = effect.value;
      let isThere = false;
      marks.between(at, at, (from) => void (isThere ||= from === at));
      marks = marks.update(isThere ? {filter: (from) => from !== at} : {add: [mark.range(at)]});
    }
    return marks;
  },
});

const stopLine = StateField.define({
  create: () => Decoration.none,
  update(lines, transaction) {
    let shown = lines.map(transaction.changes);
    for (const effect of transaction.effects) {
      if (!effect.is(showStop)) continue;
      const {doc} = transaction.state;
      const isLine = effect.value !== null && effect.value <= doc.lines;
      const line = Decoration.line({class: "stop"});
      shown = isLine ? Decoration.set(line.range(doc.line(effect.value ?? 1).from)) : Decoration.none;
    }
    return shown;
  },
  provide: (field) => EditorView.decorations.from(field),
});

function toggleAt(view: EditorView, offset: number): boolean {
  view.dispatch({effects: toggle.of(view.state.doc.lineAt(offset).from)});
  return true;
}

// The lines with a breakpoint, from 1.
export function breakpointLines(state: EditorState): number[] {
  const lines: number[] = [];
  state.field(breakpoints).between(0, state.doc.length, (from) => void lines.push(state.doc.lineAt(from).number));
  return lines;
}

export function breakpointGutter(changed: () => void): Extension {
  return [
    breakpoints,
    stopLine,
    gutter({
      class: "breakpoints",
      markers: (view) => view.state.field(breakpoints),
      initialSpacer: () => mark,
      domEventHandlers: {mousedown: (view, line) => toggleAt(view, line.from)},
    }),
    keymap.of([{key: "F9", run: (view) => toggleAt(view, view.state.selection.main.head)}]),
    EditorView.updateListener.of((update) => {
      if (update.startState.field(breakpoints) !== update.state.field(breakpoints)) changed();
    }),
  ];
}
