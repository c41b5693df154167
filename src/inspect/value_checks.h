// Operands and items: numbers, modes, values that do not fit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/diagnostics.h"
#include "inspect/findings.h"
#include "inspect/leaf_checks.h"
#include "inspect/lost_definitions.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"
#include "source/expression.h"

namespace kiln {

// Values are judged with the symbols of the finished program.
class ValueChecks {
 public:
  ValueChecks(const Program& program, Findings& findings);

  // To be called once for each statement, in order.
  void visit(const Statement& statement);

 private:
  void visitInstruction(const Statement& statement);
  bool isHarmless(const AsLine& line) const;
  void visitOperand(const Statement& statement, std::string_view expression);
  void explainOperand(const AsLine& line, std::string_view expression);
  void visitItems(const Statement& statement);
  void visitItem(const Statement& statement, std::string_view item, size_t bytes);
  void visitArgument(const Statement& statement);
  void visitRanges(const Statement& statement);
  void visitAddress(const Statement& statement, std::string_view expression);

  std::optional<int64_t> valueOf(std::string_view expression, uint32_t hash = 0);
  void checkByte(const Statement& statement, std::string_view expression, int64_t value);
  void checkAddress(const Statement& statement, std::string_view expression, int64_t value);
  void reportCut(const Statement& statement, std::string_view expression, int64_t value, size_t bytes,
                 std::string note);

  Findings& findings_;
  const SymbolTable& symbols_;
  MessageList messages_;  // about the expression just evaluated
  Evaluator evaluator_;
  LostDefinitions lost_;
  LeafChecks leaves_;
  const bool hasLargeSymbols_;  // some name's value does not fit two bytes
  const bool wantsThreeBytes_;
  std::string scratch_;
};

}  // namespace kiln
