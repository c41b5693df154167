#include "inspect/name_checks.h"

#include <algorithm>
#include <utility>

#include "base/arithmetic.h"
#include "base/format.h"
#include "inspect/assigned_twice.h"
#include "inspect/name_text.h"
#include "inspect/unused_labels.h"
#include "source/statements.h"

namespace kiln {
namespace {

// The name in the warning about a name that looks like a hexadecimal number; empty for other messages.
std::string_view numberName(std::string_view message) {
  constexpr std::string_view prefix = "label '";
  constexpr std::string_view suffix = "' is ambiguous";
  const size_t end = message.find(suffix);
  const bool isOne = message.starts_with(prefix) && end != std::string_view::npos;
  return isOne ? message.substr(prefix.size(), end - prefix.size()) : std::string_view();
}

// An assignment by mistake, such as ".if a=b".
bool isGreedy(const AsLine& line) { return line.kind == Kind::Assign && !isPlainName(line.assignName()); }

// True after an odd number of quotes.
bool isInQuotes(std::string_view statement, std::string_view part) {
  return std::count(statement.data(), part.data(), '"') % 2 != 0;
}

}  // namespace

NameChecks::NameChecks(const Program& program, Findings& findings)
    : program_(program),
      findings_(findings),
      definitions_(program),
      undefined_(program, definitions_, findings),
      zeroAddresses_(program.assembler.diagnostics.warnings),
      evaluator_(program.iteration().symbols, ignored_) {
  looksUpNames_ = !program.isAssembled || findings.wants(Check::LetterCase) || findings.wants(Check::Unused);
  findMessages();
  if (findings.wants(Check::Unused)) isUsed_.resize(program.iteration().symbols.symbols().size());
}

// A name without a value gives a message, so that without messages no name has to be looked up.
void NameChecks::findMessages() {
  const MessageList& warnings = program_.assembler.diagnostics.warnings;
  for (size_t i = 0; i < warnings.size(); ++i) {
    const std::string_view name = numberName(warnings[i]);
    if (!name.empty()) numberNames_.try_emplace(name, warnings[i]);
    if (!name.empty() || !undefinedName(warnings[i]).empty()) looksUpNames_ = true;
  }
}

void NameChecks::finish() {
  undefined_.report();
  for (Pending& pending : pending_) {
    const Symbol& symbol = program_.iteration().symbols.symbols()[pending.symbol];
    pending.report.notes.emplace_back(definitions_.first(symbol).text, std::move(pending.note));
    findings_.add(pending.check, std::move(pending.report));
  }
  if (findings_.wants(Check::AssignedTwice)) {
    checkAssignedTwice(program_, definitions_, assignedTwice_, findings_);
  }
  if (!isUsed_.empty() && program_.isAssembled) {
    checkUnusedLabels(program_, definitions_, std::move(isUsed_), findings_);
  }
}

void NameChecks::defineLabel(const Statement& statement) {
  const Symbol* const earlier = definitions_.define(statement.symbol, {statement.label, false});
  if (isOriginDoubtful_ || !hasOrigin_) {
    const uint32_t index = definitions_.find(statement.symbol.text())->index;
    (isOriginDoubtful_ ? doubtful_ : beforeOrigin_).insert(index);
  }
  if (earlier != nullptr) checkLabelTwice(statement, *earlier);
  if (rowOf(statement.parsed->kind).moves) checkLabelBeforeMove(statement);
}

// Only local labels and those with ">": the assembler reports the others.
void NameChecks::checkLabelTwice(const Statement& statement, const Symbol& symbol) {
  const NameDefinitions::Definition first = definitions_.first(symbol);
  const bool isFirst = first.text.data() == statement.label.data();
  if (isFirst || first.text.empty() || !statement.parsed->labelLocal || !isPlainName(symbol.name)) return;
  if (first.isAssignment) {
    assignedTwice_.insert(symbol.index);
    return;
  }
  // A label of a macro is the concern of the calls.
  const SourceNotes::Made* const made = program_.map->madeLine(statement.label);
  const SourceNotes::Made* const firstMade = program_.map->madeLine(first.text);
  if (made != nullptr && firstMade != nullptr && made->pattern.data() == firstMade->pattern.data()) return;
  const bool isInScope = statement.label.starts_with('.') && !statement.scope.empty();
  const std::string scope = isInScope ? concat({" of the scope '", statement.scope, "'"}) : "";
  findings_.add(Check::LabelTwice,
                {.at = statement.label,
                 .text = concat({"a second label '", statement.label, "'", scope, ": all uses mean the last one"}),
                 .notes = {{first.text, "the first one is here: one of them needs another name"}}});
}

void NameChecks::checkLabelBeforeMove(const Statement& statement) {
  const AsLine& line = *statement.parsed;
  uint32_t target = line.address;
  if (line.kind == Kind::Org) target = low16(evaluator_.evaluate(line.operand()));
  if (line.kind == Kind::CloakedSegment) target = low16(evaluator_.evaluate(line.firstItem()));
  if (line.kind == Kind::Bank) target = low16(program_.assembler.settings.banking.bankWindowLow);
  ignored_.clear();
  // A block that moves to the next region begins with a statement that has become an .org.
  const bool isMovedBlock = startsWithIgnoringCase(statement.word, rowOf(Kind::SpillPoint).spelling);
  if (target == line.address || isMovedBlock || !isPlainName(statement.symbol.text())) return;
  findings_.add(Check::LabelBeforeMove,
                {.at = statement.label,
                 .text = concat({"'", statement.label, "' is the address before the ", statement.word, ", ",
                                 dollarHex(line.address), ": put it in the next line for ", dollarHex(target)})});
}

void NameChecks::defineAssigned(const Statement& statement) {
  const std::string_view name = statement.parsed->assignName();
  const Symbol* const earlier = definitions_.define(HashedName(name), {name, true});
  if (isDoubtful_) doubtful_.insert(definitions_.find(name)->index);
  if (earlier == nullptr || !isPlainName(name)) return;
  if (definitions_.first(*earlier).text.data() == name.data()) {
    checkOverride(name, *earlier);
  } else {
    assignedTwice_.insert(earlier->index);
  }
}

// The first assignment to a predefined name. One that gives the value of "-D" again changes nothing.
void NameChecks::checkOverride(std::string_view name, const Symbol& symbol) {
  const std::vector<NamedValue>& defines = program_.assembler.settings.defines;
  const auto define = std::find_if(defines.rbegin(), defines.rend(), [name](const auto& d) { return d.name == name; });
  if (define == defines.rend() || define->value == symbol.value) return;
  findings_.add(Check::DefineOverridden, {.at = name,
                                          .text = concat({"this assignment replaces the value ", decimal(define->value),
                                                          " that -D gives '", name, "': leave it out to use -D"})});
}

void NameChecks::checkNames(const Statement& statement) {
  isDoubtful_ = false;
  const AsLine& line = *statement.parsed;
  if (line.kind == Kind::Empty || isGreedy(line)) undefined_.addVanished(statement);
  if (lookUpOf(line.kind) == LookUp::Never) return;
  if (!numberNames_.empty()) checkNumberNames(statement.rest);
  for (std::string_view name : expressions_.of(line))
    checkName(statement, name);
}

void NameChecks::checkName(const Statement& statement, std::string_view name) {
  const Symbol* const symbol = definitions_.find(name);
  if (symbol == nullptr) {
    isDoubtful_ = true;
    if (isPlainName(name)) checkMissing(statement, name);
    return;
  }
  const LookUp lookUp = lookUpOf(statement.parsed->kind);
  const bool isEarly = (lookUp == LookUp::AtStart && !definitions_.isPredefined(*symbol)) ||
                       (lookUp == LookUp::InOrder && !definitions_.isDefined(*symbol));
  if (isEarly) checkEarly(statement, name, *symbol);
  isDoubtful_ = isDoubtful_ || isEarly || doubtful_.contains(symbol->index);
  if (!isUsed_.empty()) isUsed_[symbol->index] = true;
  if (symbol->name != name) checkLetterCase(statement, name, *symbol);
}

// What is missing in a line that means something else is not reported for itself.
void NameChecks::checkMissing(const Statement& statement, std::string_view name) {
  const AsLine& line = *statement.parsed;
  const bool hasNoMode = line.kind == Kind::Instruction && opcodeFor(line.mnemonic, line.mode) < 0;
  const bool isConsequence = isGreedy(line) || hasNoMode || isInQuotes(statement.text, usedName(statement, name));
  if (isConsequence || isLocalOfScope(statement, name)) {
    findings_.explain(undefinedMessage(name));
  } else {
    undefined_.addUse(statement, name);
  }
}

// Reports a local name that its scope has, but that is looked up without the scope.
bool NameChecks::isLocalOfScope(const Statement& statement, std::string_view name) {
  if (!name.starts_with('.') || statement.scope.empty()) return false;
  const std::string full = concat({statement.scope, name});
  const Symbol* const symbol = program_.iteration().symbols.find(full);
  if (symbol == nullptr) return false;
  const std::string_view written = writtenName(*program_.map, statement, name);
  if (!rowOf(statement.parsed->kind).qualifies) {
    Findings::Report report{
        .at = written,
        .text =
            concat({"'", name, "' gets no scope here, so it is an unknown name and counts as 0: write '", full, "'"})};
    if (written == name) report.fix.emplace_back(written, full);
    findings_.add(Check::LocalInList, std::move(report));
  } else if (reported_.insert(full).second) {
    pending_.push_back({Check::ReservedLocal,
                        {.at = written,
                         .text = concat({"'", name,
                                         "' gets no scope in an operand, so it is an unknown name and "
                                         "counts as 0"})},
                        symbol->index,
                        "the label needs another name, such as '.done'"});
  }
  return true;
}

void NameChecks::checkEarly(const Statement& statement, std::string_view name, const Symbol& symbol) {
  findings_.explain(undefinedMessage(name));
  if (statement.isMisread || std::exchange(earlyStatement_, statement.index) == statement.index) return;
  const AsLine& line = *statement.parsed;
  Findings::Report report{.at = writtenName(*program_.map, statement, name)};
  if (line.kind == Kind::Space) {
    report.text = concat({"'", name,
                          "' is not known yet when the count is read, and counts as 0: write the number, or "
                          "define the name with -D"});
    return pending_.push_back({Check::EarlyCount, std::move(report), symbol.index, "it is defined here"});
  }
  const bool isOwnName = line.kind == Kind::Assign && line.assignName() == symbol.name;
  report.text = concat({"'", name, "' has no value yet here and counts as 0"});
  pending_.push_back({Check::UsedTooEarly, std::move(report), symbol.index,
                      isOwnName ? "it needs a first value in a line above" : "it gets its value here, further down"});
}

void NameChecks::checkLetterCase(const Statement& statement, std::string_view name, const Symbol& symbol) {
  if (!findings_.wants(Check::LetterCase) || !reported_.emplace(name).second) return;
  const std::string_view written = writtenName(*program_.map, statement, name);
  Findings::Report report{.at = written,
                          .text = concat({"'", name, "' is defined in another letter case, as '", symbol.name, "'"})};
  if (name.ends_with(written)) {
    report.fix.emplace_back(written, symbol.name.substr(name.size() - written.size()));
  }
  findings_.add(Check::LetterCase, std::move(report));
}

// Numbers such as 12h that are names, at their first use.
void NameChecks::checkNumberNames(std::string_view text) {
  std::string_view rest = text;
  for (std::string_view word = takeNameLike(rest); !word.empty(); word = takeNameLike(rest)) {
    const std::string_view before = text.substr(0, static_cast<size_t>(word.data() - text.data()));
    const auto found = before.ends_with('$') ? numberNames_.end() : numberNames_.find(word);
    if (found == numberNames_.end()) continue;
    const Symbol& symbol = *program_.iteration().symbols.find(word);
    const std::string number = concat({"$", word.substr(0, word.size() - 1)});
    findings_.explain(found->second);
    numberNames_.erase(found);
    findings_.add(Check::NumberLikeName,
                  {.at = word,
                   .text = concat({"'", word, "' is a name here, with the value ", dollarHex(symbol.value, 2),
                                   ": write ", number, " for the number"})});
  }
}

void NameChecks::checkZeroAddress(const Statement& statement) {
  const AsLine& line = *statement.parsed;
  if (line.kind != Kind::Instruction || line.operand().empty()) return;
  const std::string_view expression = instructionExpression(line, scratch_);
  const std::string_view message = zeroAddresses_.take(line, expression);
  // A number such as $G is the concern of the values.
  if (message.empty() || expressions_.of(line).empty()) return;
  findings_.explain(message);
  const Symbol* const symbol = definitions_.find(leadingSymbol(expression));
  if (isDoubtful_ || (symbol != nullptr && isZeroForOtherReason(*symbol))) return;
  Findings::Report report{.at = writtenName(*program_.map, statement, expression),
                          .text = concat({"'", expression, "' is the address 0: if that is meant, write $00"})};
  if (symbol != nullptr && symbol->value == 0 && !definitions_.first(*symbol).text.empty()) {
    report.notes.emplace_back(definitions_.first(*symbol).text, concat({"'", symbol->name, "' becomes 0 here"}));
  }
  findings_.add(Check::AddressZero, std::move(report));
}

// True for labels that are at 0 because an origin or a window is missing.
bool NameChecks::isZeroForOtherReason(const Symbol& symbol) const {
  if (beforeOrigin_.contains(symbol.index)) return findings_.wants(Check::BeforeOrigin);
  const bool hasWindow = program_.assembler.settings.banking.bankWindowLow != 0;
  return symbol.bank != 0 && !hasWindow && findings_.wants(Check::MissingWindow);
}

}  // namespace kiln
