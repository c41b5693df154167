#include "inspect/macro_labels.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/format.h"
#include "inspect/messages.h"
#include "source/line_text.h"
#include "source/source_lines.h"

namespace kiln {
namespace {

constexpr std::string_view duplicate = "duplicate label '";

bool isName(std::string_view label) {
  if (label.starts_with('.') || label.starts_with('>')) label.remove_prefix(1);
  return !label.empty() && std::all_of(label.begin(), label.end(), isIdentifierCharacter);
}

}  // namespace

void MacroLabels::collect(const MacroUse& use) {
  if (use.calls < 2 || !findings_.wants(Check::MacroLabel)) return;
  for (const Macro::Line& line : use.macro->body) {
    const std::string_view label = BodyLine(line.text).label;
    if (!isName(label)) continue;
    const bool isParameter = use.mayReplaceIn(label);
    labels_.try_emplace(line.text.data(), Label{label, &use, isParameter});
    hasLocals_ = hasLocals_ || isParameter || !isIdentifierStart(label.front());
  }
}

MacroLabels::Label* MacroLabels::labelOf(const SourceNotes::Made* made) {
  const auto found = made == nullptr ? labels_.end() : labels_.find(made->pattern.data());
  return found == labels_.end() ? nullptr : &found->second;
}

void MacroLabels::explainErrors() {
  if (labels_.empty()) return;
  const std::string located = concat({program_.assembler.diagnostics.mainSourcePath, ":"});
  const MessageList& errors = program_.assembler.diagnostics.errors;
  LineReader lines(program_.assembler.lines.pieces());
  for (size_t i = program_.notes.errorLines.size(); i < errors.size(); ++i) {
    std::string_view text = errors[i];
    const size_t number = takeLineNumber(text, located);
    if (number == 0 || !text.starts_with(duplicate)) continue;
    const SourceNotes::Made* const made = program_.map->madeLine(lines.at(number - 1));
    Label* const label = labelOf(made);
    if (label == nullptr) continue;
    const std::string_view name = BodyLine(made->text).label;
    if (text.substr(duplicate.size()) != concat({name, "'"})) continue;
    report(*label, name, true);
    findings_.explain(errors[i]);
  }
}

void MacroLabels::visitLocal(const Statement& statement) {
  const SymbolTable& symbols = program_.iteration().symbols;
  const Symbol* const symbol = symbols.find(statement.symbol.text(), statement.symbol.hash());
  if (symbol == nullptr) return;
  const SourceNotes::Made* const made = program_.map->madeLine(statement.label);
  Label* const label = labelOf(made);
  const char* const line = label == nullptr ? statement.text.data() : made->pattern.data();
  firsts_.resize(symbols.symbols().size());
  const char*& first = firsts_[symbol->index];
  const bool isAgain = label != nullptr && first == line;
  if (first == nullptr) first = line;
  if (isAgain) report(*label, statement.label, false);
}

// A label that is the same for all calls is reported once, at the second call.
void MacroLabels::report(Label& label, std::string_view again, bool isError) {
  if (!label.isParameter && std::exchange(label.isReported, true)) return;
  const std::string_view cure = label.isParameter ? "give each call a label of its own" : "make the label a parameter";
  Findings::Report report{
      .at = again,
      .text = concat({label.isParameter ? "this" : "each", " call of the macro '", label.use->name(), "' defines '",
                      again, "' once more", isError ? "" : ", and the last one counts", ": ", cure}),
      .notes = {{trim(withoutComment(label.use->firstCall)), "the macro is called here first"}}};
  isError ? findings_.addError(std::move(report), Check::MacroLabel)
          : findings_.add(Check::MacroLabel, std::move(report));
  if (!label.isParameter) findings_.explainText(label.text);
}

}  // namespace kiln
