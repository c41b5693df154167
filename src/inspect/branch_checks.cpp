#include "inspect/branch_checks.h"

#include <vector>

#include "base/format.h"
#include "inspect/expression_names.h"
#include "passes/stage_code.h"
#include "source/line_text.h"
#include "source/statements.h"

namespace kiln {
namespace {

// The label of a statement as written, without its colon; empty when it has none.
std::string_view labelIn(std::string_view statement) {
  const size_t colon = statement.find(':');
  if (colon == std::string_view::npos) return {};
  const std::string_view label = trim(statement.substr(0, colon));
  return beginsLikeLabel(label) ? label : std::string_view();
}

std::string_view withoutLabel(std::string_view statement) {
  return labelIn(statement).empty() ? statement : trim(statement.substr(statement.find(':') + 1));
}

// The statement of a line that a long branch has replaced: the one with this mnemonic and target. With an operand that
// is not written as the assembler keeps it, the last one with the mnemonic.
std::string_view findBranch(std::string_view code, Mnemonic mnemonic, std::string_view target) {
  std::string_view found;
  StatementTexts texts(code);
  while (const std::optional<std::string_view> text = texts.next()) {
    std::string_view rest = withoutLabel(*text);
    if (mnemonicOf(takeWord(rest)) != mnemonic) continue;
    found = *text;
    if (target.ends_with(writtenOperand(*text))) break;
  }
  return found;
}

// "'loop' and 'INX' are lost: ..."
std::string lostText(const std::vector<std::string_view>& lost) {
  std::string text;
  for (size_t i = 0; i < lost.size(); ++i) {
    const std::string_view before = i == 0 ? "" : i + 1 == lost.size() ? " and " : ", ";
    text += concat({before, "'", lost[i], "'"});
  }
  return concat({text, lost.size() == 1 ? " is" : " are", " lost: a long branch replaces its whole line"});
}

}  // namespace

void BranchChecks::check(const Statement& statement, const CodeFlow& flow) {
  const AsLine& line = *statement.parsed;
  const SourceNotes::Made* made = program_.map->madeLine(statement.line);
  if (made != nullptr && made->text.ends_with(stageComment)) made = program_.map->madeLine(made->origin);
  if (made == nullptr || made->pattern.data() != nullptr || made->text.ends_with(stageComment)) return;
  // The JMP after an inverted branch belongs to that.
  if (!line.longBranchMarked && statement.index != 0 && (&line)[-1].longBranchMarked) return;
  if (findings_.wants(Check::LostWithBranch)) checkLostParts(statement, made->origin);
  checkSkip(statement, flow, made->origin);
}

void BranchChecks::checkLostParts(const Statement& statement, std::string_view source) {
  const AsLine& line = *statement.parsed;
  const std::string_view code = withoutComment(source);
  const Mnemonic mnemonic = line.longBranchMarked ? invertBranch(line.mnemonic) : Mnemonic::BRA;
  const std::string_view target = (&line)[line.longBranchMarked ? 1 : 0].operand();
  const std::string_view branch = findBranch(code, mnemonic, target);
  std::vector<std::string_view> lost;
  StatementTexts texts(code);
  while (const std::optional<std::string_view> text = texts.next()) {
    const std::string_view label = labelIn(*text);
    if (!label.empty()) explainLostLabel(label, statement.scope);
    const std::string_view part = text->data() == branch.data() ? label : *text;
    if (!part.empty()) lost.push_back(part);
  }
  if (lost.empty()) return;
  findings_.add(Check::LostWithBranch, {.at = lost.front(),
                                        .text = lostText(lost),
                                        .notes = {{withoutLabel(branch), "give this branch a line of its own"}}});
}

void BranchChecks::explainLostLabel(std::string_view label, std::string_view scope) {
  if (label.front() == '>') label.remove_prefix(1);
  const std::string_view prefix = label.starts_with('.') ? scope : std::string_view();
  findings_.explain(undefinedMessage(concat({prefix, label})));
}

void BranchChecks::checkSkip(const Statement& statement, const CodeFlow& flow, std::string_view source) {
  const uint32_t skipped = bytesSkippedAfter(flow, evaluator_);
  if (skipped == 0) return;
  const bool isLong = statement.parsed->longBranchMarked;
  findings_.add(Check::SkippedBranch,
                {.at = trim(withoutComment(source)),
                 .text = concat({"this became a long branch of ", isLong ? "five" : "three", " bytes, and the .byte ",
                                 skipped == 2 ? "$2C" : "$24", " before it skips only ", skipped == 2 ? "two" : "one",
                                 ": branch over it instead"})});
}

}  // namespace kiln
