// The rules of expressions, word for word: slow, recursive, and nothing shared with the product. What the product's
// evaluator makes of a text must be the same, value and warnings.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kiln::fuzz {

class LiteralEvaluator {
 public:
  // Enters the symbol, or gives it another value.
  void enter(std::string_view name, int64_t value);

  int64_t evaluate(std::string_view text);
  int64_t evaluateForSize(std::string_view text) const;

  std::vector<std::string> warnings;

 private:
  const int64_t* find(std::string_view name) const;
  int64_t evaluateName(std::string_view text);

  std::vector<std::pair<std::string, int64_t>> symbols_;  // the table's key order: as they came
  std::set<std::string> warnedNames_;
};

}  // namespace kiln::fuzz
