// The colours of the language.
import {HighlightStyle, LanguageSupport, StreamLanguage, syntaxHighlighting} from "@codemirror/language";
import type {StreamParser} from "@codemirror/language";
import {tags} from "@lezer/highlight";

interface Line {
  isAtStart: boolean; // a label or a mnemonic may come
}

const parser: StreamParser<Line> = {
  name: "kiln",
  startState: () => ({isAtStart: true}),
  token(stream, state) {
    if (stream.sol()) state.isAtStart = true;
    if (stream.eatSpace()) return null;
    if (stream.match(/^;.*/)) return "comment";
    if (stream.match(/^"(?:[^"\\]|\\.)*"?/) || stream.match(/^'(?:[^'\\]|\\.)'?/)) return "string";
    if (state.isAtStart && stream.match(/^[.@]?[\w.@]+:/)) return "labelName";
    if (stream.match(/^\.[a-z_]\w*/i)) {
      const isDirective = state.isAtStart;
      state.isAtStart = false;
      return isDirective ? "keyword" : "variableName";
    }
    if (state.isAtStart && stream.match(/^[a-z_@][\w.]*(?=\s*=)/i)) return "labelName";
    if (state.isAtStart && stream.match(/^[a-z_]\w*/i)) {
      state.isAtStart = false;
      return "operatorKeyword";
    }
    state.isAtStart = false;
    if (stream.match(/^(\$[0-9a-f]+|%[01]+|\d+)/i)) return "number";
    if (stream.match(/^[a-z_@][\w.@]*/i)) return "variableName";
    stream.next();
    return null;
  },
  languageData: {commentTokens: {line: ";"}},
};

const colours = HighlightStyle.define([
  {tag: tags.comment, color: "var(--comment)"},
  {tag: tags.string, color: "var(--string)"},
  {tag: tags.number, color: "var(--number)"},
  {tag: tags.keyword, color: "var(--directive)"},
  {tag: tags.operatorKeyword, color: "var(--mnemonic)"},
  {tag: tags.labelName, color: "var(--label)"},
]);

export function kilnLanguage(): LanguageSupport {
  return new LanguageSupport(StreamLanguage.define(parser), [syntaxHighlighting(colours)]);
}
