// The operands of an expression in their order, missing ones included: the texts that the evaluator takes as a number
// or a name.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace kiln {

class ExpressionLeaves {
 public:
  // The leaves in their order, trimmed, as views of the text. Where an operand is missing, there is an empty one.
  // Operands in more than 64 pairs of parentheses are left out. Valid until the next call.
  const std::vector<std::string_view>& find(std::string_view text);

 private:
  // A part of the text: [begin, end) at a depth of parentheses.
  struct Part {
    size_t begin;
    size_t end;
    size_t depth;
  };

  void open(std::string_view text, Part part);
  bool cut(std::string_view text, const Part& part, char first, char second);

  std::vector<Part> parts_;  // still to be opened; the last one comes first
  std::vector<std::string_view> leaves_;
};

}  // namespace kiln
