// The value of an expression's text against the symbol table.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/diagnostics.h"
#include "base/name_hash.h"
#include "base/text.h"
#include "source/literals.h"
#include "source/symbols.h"

namespace kiln {

// Nothing is cached: an unknown name has the value 0 and gives its warning each time it is evaluated. A label that
// looks like a number gives its warning once for each evaluator.
class Evaluator {
 public:
  Evaluator(const SymbolTable& symbols, MessageList& warnings) : symbols_(symbols), warnings_(warnings) {}

  // Any text has a value; an empty one is 0. Time grows with the length of the text (times its logarithm where it has
  // parentheses), and the call stack does not grow, whatever is nested in the text.
  int64_t evaluate(std::string_view text) {
    text = trim(text);
    if (text.empty()) return 0;
    const int64_t literal = parsePlainLiteral(text);
    if (literal >= 0 && (text.front() == '$' || !symbols_.hasDigitNames())) return literal;
    return expressionValue(text);
  }

  // The same for a text with this nameHash().
  int64_t evaluate(std::string_view text, uint32_t hash) {
    if (hash == 0) return evaluate(text);
    const Symbol* const symbol = symbols_.find(text, hash);
    return symbol != nullptr ? symbol->value : unknownNameValue(text, hash);
  }

  // The value that chooses between zero-page and absolute modes: plain literals and names known so far have theirs,
  // anything else has 256. No warnings. `hash` is the nameHash() of the text.
  int64_t sizingValue(std::string_view text, uint32_t hash) const;

 private:
  struct Operator {
    size_t depth;  // of parentheses, counted from the right end of the text
    size_t at;     // index in the text
    char sign;
  };

  // A part of the text: [begin, end) at a depth of parentheses.
  struct Part {
    size_t begin;
    size_t end;
    size_t depth;
  };

  // An operation that waits for the value of the current part.
  struct Pending {
    enum class Kind : uint8_t { Sum, Product, LowByte, HighByte, Zero } kind;
    char sign = '+';          // operator between `value` and the current part
    int64_t value = 0;        // of the operands before it
    size_t nextOperator = 0;  // the operator after the current part, in sums_ or products_
    size_t end = 0;           // where the whole sum or product ends
    size_t depth = 0;
  };

  int64_t expressionValue(std::string_view text);
  int64_t sumValue(std::string_view text);
  int64_t nestedValue(std::string_view text);
  void findOperators(std::string_view text);
  bool open(std::string_view text, Part& part);
  bool openOperands(Pending::Kind kind, Part& part);
  void openPrefixes(std::string_view text, Part& part);
  bool close(int64_t& value, Part& part);
  size_t operandEnd(const Pending& pending) const;
  const std::vector<Operator>& operatorsOf(const Pending& pending) const;
  int64_t leafValue(std::string_view text);
  int64_t nameValue(std::string_view text);
  int64_t unknownNameValue(std::string_view text, uint32_t hash);
  void warnOfAmbiguity(std::string_view name);

  const SymbolTable& symbols_;
  MessageList& warnings_;
  std::unordered_set<std::string_view, NameHash> ambiguousNames_;  // warned of; texts of the symbol table
  std::vector<Operator> sums_;      // "+" and "-" of the current text, by depth and then place
  std::vector<Operator> products_;  // "*" and "/" likewise
  std::vector<Pending> pending_;
};

// The symbolHash() of a text that is one name of letters, digits, "_" and ".", the first no digit: its value is that of
// the name, whatever the symbol table has. 0 for other texts, and perhaps for a rare name.
uint32_t nameHash(std::string_view text);

// The name at the front of an expression: the run of letters, digits, "_" and "." when it begins with a letter, "_" or
// "."; empty otherwise.
std::string_view leadingSymbol(std::string_view expression);

}  // namespace kiln
