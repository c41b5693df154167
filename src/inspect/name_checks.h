// Labels and names: defined twice, not at all, or too early.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "inspect/expression_names.h"
#include "inspect/findings.h"
#include "inspect/name_definitions.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"
#include "inspect/undefined_names.h"
#include "inspect/zero_addresses.h"

namespace kiln {

class NameChecks {
 public:
  NameChecks(const Program& program, Findings& findings);

  // To be called once for each statement, in order.
  void visit(const Statement& statement) {
    const Kind kind = statement.parsed->kind;
    if (statement.parsed->hasLabel) defineLabel(statement);
    if (looksUpNames_) checkNames(statement);
    if (zeroAddresses_.mayWarnOf(statement.parsed->lineNumber)) checkZeroAddress(statement);
    if (kind == Kind::Assign) defineAssigned(statement);
    if (kind == Kind::Bank) definitions_.defineBank(statement.parsed->operand(), statement.argument);
    if (kind == Kind::Org) isOriginDoubtful_ = isDoubtful_;
    hasOrigin_ = hasOrigin_ || rowOf(kind).moves;
  }
  // After the last statement.
  void finish();

 private:
  // A finding with a note at the definition of a symbol, which may come further down.
  struct Pending {
    Check check;
    Findings::Report report;
    uint32_t symbol;
    std::string note;
  };

  void findMessages();

  void defineLabel(const Statement& statement);
  void checkLabelBeforeMove(const Statement& statement);
  void checkLabelTwice(const Statement& statement, const Symbol& symbol);
  void defineAssigned(const Statement& statement);
  void checkOverride(std::string_view name, const Symbol& symbol);

  void checkNames(const Statement& statement);
  void checkName(const Statement& statement, std::string_view name);
  void checkMissing(const Statement& statement, std::string_view name);
  bool isLocalOfScope(const Statement& statement, std::string_view name);
  void checkEarly(const Statement& statement, std::string_view name, const Symbol& symbol);
  void checkLetterCase(const Statement& statement, std::string_view name, const Symbol& symbol);
  void checkNumberNames(std::string_view text);
  void checkZeroAddress(const Statement& statement);
  bool isZeroForOtherReason(const Symbol& symbol) const;

  const Program& program_;
  Findings& findings_;
  NameDefinitions definitions_;
  UndefinedNames undefined_;
  ZeroAddresses zeroAddresses_;
  ExpressionNames expressions_;
  MessageList ignored_;
  Evaluator evaluator_;  // with all names
  std::string scratch_;

  bool looksUpNames_ = false;      // some name may be without a value, or a check needs all uses
  bool isDoubtful_ = false;        // the current statement uses a name without its value
  bool isOriginDoubtful_ = false;  // so did the last .org
  bool hasOrigin_ = false;
  std::optional<size_t> earlyStatement_;       // the last one with a name that has its value later
  std::unordered_set<uint32_t> doubtful_;      // symbols whose values are wrong because of that
  std::unordered_set<uint32_t> beforeOrigin_;  // labels above the first .org
  std::unordered_map<std::string_view, std::string_view> numberNames_;  // messages about names that look like numbers
  std::unordered_set<uint32_t> assignedTwice_;                          // symbols with several definitions
  std::unordered_set<std::string> reported_;                            // names of which one finding is enough
  std::vector<Pending> pending_;
  std::vector<bool> isUsed_;  // of each symbol; empty unless that is wanted
};

}  // namespace kiln
