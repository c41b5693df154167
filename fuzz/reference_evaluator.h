// A second implementation of expressions, written for simplicity: slow, recursive, sharing no code with the program.
// Both must give the same values and warnings.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kiln::fuzz {

class ReferenceEvaluator {
 public:
  // Adds a symbol, or changes its value.
  void setSymbol(std::string_view name, int64_t value);

  int64_t evaluate(std::string_view text);
  // The value that chooses between zero-page and absolute modes.
  int64_t evaluateForSize(std::string_view text) const;

  std::vector<std::string> warnings;

 private:
  const int64_t* find(std::string_view name) const;
  int64_t evaluateName(std::string_view text);

  std::vector<std::pair<std::string, int64_t>> symbols_;  // in the order in which they were added
  std::set<std::string> ambiguousNames_;                  // those that have had their warning
};

}  // namespace kiln::fuzz
