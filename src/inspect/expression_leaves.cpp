// Takes an expression apart by the rules of the Evaluator, see source/expression.cpp. A part is read again for each
// pair of parentheses around it, so the depth is limited.
#include "inspect/expression_leaves.h"

#include "base/text.h"

namespace kiln {
namespace {

constexpr size_t mostDepth = 64;

}  // namespace

const std::vector<std::string_view>& ExpressionLeaves::find(std::string_view text) {
  leaves_.clear();
  parts_.assign(1, {0, text.size(), 0});
  while (!parts_.empty()) {
    const Part part = parts_.back();
    parts_.pop_back();
    open(text, part);
  }
  return leaves_;
}

void ExpressionLeaves::open(std::string_view text, Part part) {
  const auto isSkipped = [](char c) { return isBlank(c) || c == '<' || c == '>'; };
  while (part.begin < part.end && isSkipped(text[part.begin]))
    ++part.begin;
  while (part.begin < part.end && isBlank(text[part.end - 1]))
    --part.end;
  const std::string_view piece = text.substr(part.begin, part.end - part.begin);
  if (piece.empty()) {
    leaves_.push_back(piece);
  } else if (!cut(text, part, '+', '-') && !cut(text, part, '*', '/')) {
    if (piece.front() != '(' || piece.back() != ')') {
      leaves_.push_back(piece);
    } else if (part.depth < mostDepth) {
      parts_.push_back({part.begin + 1, part.end - 1, part.depth + 1});
    }
  }
}

// Cuts the part at these operators; false when it has none of them. As in the Evaluator, the first character is no
// operator, and depth is counted from the right end.
bool ExpressionLeaves::cut(std::string_view text, const Part& part, char first, char second) {
  size_t end = part.end;
  auto depth = static_cast<ptrdiff_t>(part.depth);
  for (size_t at = part.end; at-- > part.begin + 1;) {
    const char c = text[at];
    if (c == ')') ++depth;
    if (c == '(') --depth;
    if ((c != first && c != second) || depth != static_cast<ptrdiff_t>(part.depth)) continue;
    parts_.push_back({at + 1, end, part.depth});
    end = at;
  }
  if (end == part.end) return false;
  parts_.push_back({part.begin, end, part.depth});
  return true;
}

}  // namespace kiln
