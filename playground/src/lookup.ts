// What the language server knows about a place: hover texts and completions.
import {autocompletion, type Completion, type CompletionContext, type CompletionResult} from "@codemirror/autocomplete";
import type {Extension, Text} from "@codemirror/state";
import {hoverTooltip, type Tooltip} from "@codemirror/view";
import type {Position, Range} from "./protocol.js";

export type Ask = (method: string, position: Position) => Promise<unknown>;

interface Item {
  label: string;
  detail?: string;
  kind?: number;
  sortText?: string;
  insertText?: string;
  textEdit?: {range: Range; newText: string};
  documentation?: string | {value: string};
}

export function positionAt(text: Text, offset: number): Position {
  const line = text.lineAt(offset);
  return {line: line.number - 1, character: offset - line.from};
}

// The nearest offset that there is: an answer may be about an older text.
export function offsetAt(text: Text, position: Position): number {
  if (position.line >= text.lines) return text.length;
  const line = text.line(position.line + 1);
  return Math.min(line.from + position.character, line.to);
}

function tooltipOf(text: string, from: number, to: number): Tooltip {
  const create = () => {
    const dom = document.createElement("div");
    dom.className = "hover";
    dom.textContent = text;
    return {dom};
  };
  return {pos: from, end: to, above: true, create};
}

function hover(ask: Ask): Extension {
  return hoverTooltip(async (view, at) => {
    const document = view.state.doc;
    const answer = (await ask("textDocument/hover", positionAt(document, at))) as {
      contents: {value: string};
      range?: Range;
    } | null;
    if (answer === null || view.state.doc !== document) return null;
    const from = answer.range ? offsetAt(document, answer.range.start) : at;
    const to = answer.range ? offsetAt(document, answer.range.end) : at;
    return tooltipOf(answer.contents.value, from, to);
  });
}

function optionOf(item: Item): Completion {
  const option: Completion = {label: item.label, apply: item.textEdit?.newText ?? item.insertText ?? item.label};
  if (item.detail !== undefined) option.detail = item.detail;
  if (item.documentation !== undefined) {
    option.info = typeof item.documentation === "string" ? item.documentation : item.documentation.value;
  }
  return option;
}

async function complete(ask: Ask, context: CompletionContext): Promise<CompletionResult | null> {
  const word = context.matchBefore(/[\w.@]+/);
  if (word === null && !context.explicit) return null;
  const answer = (await ask("textDocument/completion", positionAt(context.state.doc, context.pos))) as
    | Item[]
    | {items: Item[]}
    | null;
  const items = answer === null || context.aborted ? [] : Array.isArray(answer) ? answer : answer.items;
  const first = items[0];
  if (first === undefined) return null;
  const from = first.textEdit ? offsetAt(context.state.doc, first.textEdit.range.start) : (word?.from ?? context.pos);
  const sorted = items.toSorted((a, b) => (a.sortText ?? a.label).localeCompare(b.sortText ?? b.label));
  return {from, options: sorted.map(optionOf), validFor: /^[\w.@]*$/};
}

export function lookup(ask: Ask): Extension {
  return [hover(ask), autocompletion({override: [(context) => complete(ask, context)], icons: false})];
}
