// Instructions: modes that were not meant, addresses that come out otherwise than they look.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "inspect/findings.h"
#include "inspect/statement_walk.h"

namespace kiln {

// An instruction with an operand.
struct CheckedOperand {
  const Statement& statement;
  std::string_view expression;   // without the mode's own characters
  std::optional<int64_t> value;  // of the expression; absent when something in it is not defined
};

// Parentheses that were taken for those of the mode. True when that is reported.
bool checkModeParentheses(const Statement& statement, std::string_view expression, Findings& findings);
// "(n),X", which looks like a mode. True when it is reported.
bool checkIndexedParentheses(const CheckedOperand& operand, Findings& findings);
// JMP through a vector that crosses a page.
void checkVector(const CheckedOperand& operand, Findings& findings);
// A sum of more than 255 that its first number has put into the zero page. True when it is reported.
bool checkFirstNumber(const CheckedOperand& operand, Findings& findings);
// An absolute operand with a value that would fit the zero page.
void checkSize(const CheckedOperand& operand, Findings& findings);
// Instructions with other opcodes than on the 65C02.
void checkOpcode(const Statement& statement, Findings& findings);

}  // namespace kiln
