#include "inspect/colon_checks.h"

#include <utility>

#include "base/format.h"
#include "base/text.h"
#include "inspect/foreign_words.h"
#include "inspect/statement_words.h"
#include "inspect/wording.h"

namespace kiln {
namespace {

constexpr std::string_view quotes = "\"'";

// What to write in place of a comparison or an assignment that is none.
std::string adviceForName(std::string_view name, const MacroTable& macros) {
  std::string_view rest = name;
  const std::string_view word = takeWord(rest);
  if (name.find_first_of(quotes) != std::string_view::npos) {
    return "quotes do not protect an '=': write its number, 61";
  }
  if (const ForeignWords* const foreign = foreignWordOf(word); foreign != nullptr && word.size() != name.size()) {
    return std::string(foreign->advice);
  }
  if (beginsStatement(word, macros)) return "nothing compares while assembling: leave the '=' out";
  return "a name consists of letters, digits and '_', and stands alone before the '='";
}

}  // namespace

ColonChecks::ColonChecks(const Program& program, UsedNames& used, LineReporter& reporter)
    : program_(program), used_(used), reporter_(reporter) {}

bool ColonChecks::visitLabel(const Statement& statement) {
  if (isUsableName(statement.label)) return visitPlainLabel(statement);
  // The checks of macros report the statement before a call.
  if (isLabelOfCall(statement)) return false;
  const bool wasStatement =
      beginsStatement(statement.label, program_.notes.macros) || statement.label.find('=') != std::string_view::npos;
  const Kind kind = statement.parsed->kind;
  if (wasStatement && kind != Kind::Empty && kind != Kind::LabelOnly) {
    reportSeparator(statement);
  } else {
    reportGreedyColon(statement);
  }
  return true;
}

// A label that could be one: "CLC: ADC #1" has it by mistake if nothing uses the name.
bool ColonChecks::visitPlainLabel(const Statement& statement) {
  const std::string_view label = statement.label;
  const Kind kind = statement.parsed->kind;
  const bool isWord = mnemonicOf(label) != Mnemonic::None || directiveOf(label) != nullptr;
  if (isWord && !isLabelOfCall(statement) && !used_.contains(label)) {
    const bool isComplete = isCompleteAlone(label);
    if (kind == Kind::Empty || (isComplete && kind == Kind::LabelOnly)) return reportGreedyColon(statement), true;
    if (isComplete) return reportSeparator(statement), true;
  }
  return kind != Kind::Empty && kind != Kind::String && visitOperand(statement);
}

// A colon after that of the label belongs to the operand.
bool ColonChecks::visitOperand(const Statement& statement) {
  const size_t colon = statement.rest.find(':');
  if (colon == std::string_view::npos || statement.rest.find_first_of(quotes) < colon) return false;
  const std::string text = concat({inQuotes(statement.argument), " is all taken for the operand, the colon included"});
  reporter_.add(Check::Separator, statement, separatorReport(statement.rest, colon, text));
  return true;
}

bool ColonChecks::isLabelOfCall(const Statement& statement) {
  if (!calls_.has_value()) {
    calls_.emplace();
    for (const SourceNotes::Call& call : program_.notes.calls)
      calls_->insert(trimLeft(call.line).data());
  }
  return statement.isFirst && calls_->contains(statement.text.data());
}

void ColonChecks::reportSeparator(const Statement& statement) {
  const std::string text = concat({"the colon makes ", inQuotes(statement.label), " a label, so it is not assembled"});
  reporter_.add(Check::Separator, statement, separatorReport(statement.text, statement.text.find(':'), text));
}

void ColonChecks::reportGreedyColon(const Statement& statement) {
  const std::string_view label = statement.label;
  Findings::Report report{.at = label,
                          .text = concat({"the colon makes ", inQuotes(label), " a label, so it is not assembled"})};
  std::string_view rest = label;
  const std::string_view word = takeWord(rest);
  const bool isWord = word.size() == label.size();
  if (label.find_first_of(quotes) != std::string_view::npos) {
    report.addNote("quotes do not protect a colon: write its number, 58");
  } else if (program_.notes.macros.find(word) != nullptr) {
    report.addNote("a macro call has its line to itself");
  } else if (beginsStatement(label, program_.notes.macros)) {
    report.addNote("leave the colon out");
    const std::string_view colon = statement.text.substr(statement.text.find(':'), 1);
    if (statement.rest.empty() || isWord) report.fix.emplace_back(colon, isWord && !statement.rest.empty() ? " " : "");
  } else {
    report.addNote("a label is one word of letters, digits and '_'; a comment begins with ';'");
  }
  reporter_.add(Check::GreedyColon, statement, std::move(report));
}

bool ColonChecks::visitAssignment(const Statement& statement) {
  const size_t equals = statement.rest.find('=');
  const std::string_view name = trimRight(statement.rest.substr(0, equals));
  const std::string_view value = trimLeft(statement.rest.substr(equals + 1));
  if (!isUsableName(name) || name.front() == '>') {
    Findings::Report report{.at = name,
                            .text = concat({"the '=' makes ", extentOf(statement), " an assignment to ", inQuotes(name),
                                            ", so it makes no bytes"})};
    report.addNote(adviceForName(name, program_.notes.macros));
    reporter_.add(Check::GreedyEquals, statement, std::move(report));
    return true;
  }
  const size_t second = value.find('=');
  if (second == std::string_view::npos || value.find('\'') < second) return false;
  Findings::Report report{
      .at = value.substr(second, 1),
      .text = concat({inQuotes(value), " is the value: a second '=' is part of it, and no operator"})};
  report.addNote("write one '=' and one value");
  if (second == 0 && value.size() > 1 && value.find('=', 1) == std::string_view::npos)
    report.fix.emplace_back(report.at, "");
  reporter_.add(Check::GreedyEquals, statement, std::move(report));
  return true;
}

bool ColonChecks::reportMnemonicName(const Statement& statement) {
  Findings::Report report{.at = statement.rest,
                          .text = concat({inQuotes(statement.word), " is an instruction, which takes ",
                                          inQuotes(statement.argument), " for its operand"})};
  report.addNote("choose another name for the value");
  reporter_.add(Check::GreedyEquals, statement, std::move(report));
  return true;
}

}  // namespace kiln
