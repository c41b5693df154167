// The operands of expressions: numbers that end early, characters, signs, and operators that this language lacks.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/expression_leaves.h"
#include "inspect/findings.h"
#include "inspect/lost_definitions.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"
#include "source/symbols.h"

namespace kiln {

class LeafChecks {
 public:
  LeafChecks(const Program& program, LostDefinitions& lost, Findings& findings)
      : symbols_(program.iteration().symbols), lost_(lost), findings_(findings) {}

  // Checks an expression of the statement, as it is evaluated. Names of letters, digits, "_" and "." pass, even if
  // nothing defines them. True when another operand counts as 0, which is reported or explained.
  bool visit(const Statement& statement, std::string_view expression);

 private:
  void visitLeaf(size_t index);
  void checkMissing(size_t index);
  void reportSigned(std::string_view before, std::string_view after, std::string_view next);
  void checkNumber(std::string_view leaf);
  void checkUndefined(std::string_view leaf);
  void reportUndefined(std::string_view leaf);
  void reportCharacter(std::string_view leaf);
  void reportSign(std::string_view leaf);
  void reportDigits(std::string_view leaf);
  void reportName(std::string_view leaf);
  void add(Check check, std::string_view at, std::string text, std::string note = "", std::string replacement = "");
  void addAlternative(Check check, std::string_view at, std::string text, std::string note, std::string alternative);

  const SymbolTable& symbols_;
  LostDefinitions& lost_;
  Findings& findings_;
  ExpressionLeaves walker_;
  // The current expression.
  const Statement* statement_ = nullptr;
  std::string_view expression_;
  const std::vector<std::string_view>* leaves_ = nullptr;
  size_t reported_ = 0;  // what begins before this index belongs to a character that has been reported
  bool hasZero_ = false;
};

// True for a view of the statement's line, which has a place.
bool isInLine(const Statement& statement, std::string_view text);

// A text of the statement with a place: the text itself if it is in the line, else its copy in the argument as it is
// written, else the whole argument.
std::string_view inSource(const Statement& statement, std::string_view text);

}  // namespace kiln
