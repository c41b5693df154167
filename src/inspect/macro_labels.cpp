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
    if (!isName(label) || use.mayReplaceIn(label)) continue;
    labels_.try_emplace(line.text.data(), Label{label, &use});
    if (!isIdentifierStart(label.front())) locals_.insert(label);
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
    if (label == nullptr || text.substr(duplicate.size()) != concat({label->text, "'"})) continue;
    report(*label, BodyLine(made->text).label, true);
    findings_.explain(std::string(errors[i]));
  }
}

void MacroLabels::visitLocal(const Statement& statement) {
  if (!locals_.contains(statement.label)) return;
  const SourceNotes::Made* const made = program_.map->madeLine(statement.label);
  Label* const label = labelOf(made);
  const SymbolTable& symbols = program_.iteration().symbols;
  const Symbol* const symbol = symbols.find(statement.symbol.text(), statement.symbol.hash());
  if (label == nullptr || symbol == nullptr) return;
  isMet_.resize(symbols.symbols().size());
  if (!isMet_[symbol->index]) {
    isMet_[symbol->index] = true;
    return;
  }
  report(*label, statement.label, false);
}

// Each label once, at the second call.
void MacroLabels::report(Label& label, std::string_view again, bool isError) {
  if (std::exchange(label.isReported, true)) return;
  Findings::Report report{
      .at = again,
      .text = concat({"each call of the macro '", label.use->name(), "' defines '", label.text, "' once more",
                      isError ? "" : ", and the last one counts", ": make the label a parameter"}),
      .notes = {{trim(withoutComment(label.use->firstCall)), "the macro is called here first"}}};
  isError ? findings_.addError(std::move(report), Check::MacroLabel)
          : findings_.add(Check::MacroLabel, std::move(report));
  findings_.explainText(label.text);
}

}  // namespace kiln
