// Code in columns: labels at 0, statements at 8, comments at 32, as in the manual and the examples. An operand is one
// space after its mnemonic.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kiln {

inline constexpr size_t codeColumn = 8;
inline constexpr size_t commentColumn = 32;

// How gaps between columns are filled.
struct Filling {
  size_t tabSize = 8;  // of tabs that are there or are inserted, at least 1
  bool hasTabs = false;
};

// The parts of a line as they stay, without blanks around them.
struct LineParts {
  struct Statement {
    std::string_view word;  // empty: a label alone
    std::string_view argument;
  };

  std::string_view label;  // with its colon
  std::string_view name;   // of an assignment, which has no statements
  std::string_view value;
  std::vector<Statement> statements;
  std::string_view comment;
};

// The column at which the text ends, counted in characters.
size_t columnAfter(std::string_view text, size_t tabSize);

// The line. `isIndented`: nothing is in column 0. A comment is at `comments`, or one space after longer code.
std::string inColumns(const LineParts& parts, bool isIndented, size_t comments, Filling filling);

}  // namespace kiln
