#include "inspect/macro_lines.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/format.h"
#include "inspect/macro_uses.h"
#include "inspect/name_text.h"

namespace kiln {
namespace {

constexpr std::string_view newLine = "\n        ";

// From the end of one text to the begin of a later one of the same line.
std::string_view gap(std::string_view from, std::string_view to) {
  const char* const begin = from.data() + from.size();
  return {begin, static_cast<size_t>(to.data() - begin)};
}

// The line before a text in it, without blanks at its end.
std::string_view textUpTo(std::string_view line, std::string_view text) {
  return trimRight(line.substr(0, static_cast<size_t>(text.data() - line.data())));
}

// Line ends in place of the colons around the statement.
std::vector<std::pair<std::string_view, std::string>> cuts(const Statement& statement) {
  std::vector<std::pair<std::string_view, std::string>> edits;
  if (!statement.isFirst) {
    const std::string_view upToColon = textUpTo(statement.code, statement.text);
    edits.emplace_back(gap(trimRight(upToColon.substr(0, upToColon.size() - 1)), statement.text), newLine);
  }
  if (!statement.isLast) {
    const std::string_view after = gap(statement.text, statement.code.substr(statement.code.size()));
    edits.emplace_back(gap(statement.text, trimLeft(trimLeft(after).substr(1))), newLine);
  }
  return edits;
}

}  // namespace

void MacroLines::visitVanished(const Statement& statement) {
  if (statement.word.empty()) return;
  const Macro* const macro = program_.notes.macros.find(statement.word);
  const bool isInclude = equalIgnoringCase(statement.word, ".include");
  if (macro == nullptr && !isInclude) return;
  const SourceNotes::Made* const made = program_.map->madeLine(statement.text);
  if (made != nullptr && made->pattern.data() != nullptr) {
    reportInMacro(statement, *made, macro);
  } else if (macro != nullptr) {
    reportShared(statement);
  }
}

// Reported once for all calls, unless the word comes from an argument.
void MacroLines::reportInMacro(const Statement& statement, const SourceNotes::Made& made, const Macro* macro) {
  Findings::Report report{.at = statement.word};
  if (macro == nullptr) {
    report.text = "an .include in a macro makes nothing: include the file outside of it";
  } else {
    report.text = concat({"a call in a macro makes nothing: write the lines of '", statement.word, "' here"});
    report.notes.emplace_back(macro->head, "they begin below this line");
  }
  findings_.add(Check::MacroInMacro, std::move(report));
  if (!findings_.wants(Check::MacroInMacro)) return;
  const bool isOfBody = findWhole(made.pattern, statement.word).data() != nullptr;
  findings_.explainText(isOfBody ? made.pattern : statement.text);
}

// A call with other statements in its line, or with a label that is too long.
void MacroLines::reportShared(const Statement& statement) {
  Findings::Report report{.at = statement.word};
  if (statement.isFirst && statement.isLast) {
    report.text = "this call is not expanded: the label before it ends after the 20th character of the line";
    report.fix.emplace_back(gap(textUpTo(statement.line, statement.word), statement.word), newLine);
  } else {
    report.text = "this call is not expanded: it needs a line of its own";
    report.fix = cuts(statement);
  }
  findings_.add(Check::MacroLine, std::move(report));
  if (!findings_.wants(Check::MacroLine)) return;
  findings_.explainText(statement.text);
}

}  // namespace kiln
