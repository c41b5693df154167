// Nearly every program writes "#<label+1" for the low byte of label+1, and that is what it gets. So two readings that
// differ are no mistake yet. It is one in two cases: when "<" or ">" comes again after the sum's first operand, as in
// ">end->start", the writer thinks that each takes one name only; and when ".word <label+$D000" comes to a byte,
// as nobody adds a page number to throw it away.
#include "inspect/low_high_check.h"

#include "base/arithmetic.h"
#include "base/format.h"
#include "base/text.h"
#include "inspect/leaf_checks.h"
#include "inspect/wording.h"

namespace kiln {
namespace {

bool isOperator(char c) { return c == '+' || c == '-' || c == '*' || c == '/'; }
bool isPrefix(char c) { return c == '<' || c == '>'; }

// A sum or product with a prefix in front.
struct PrefixedSum {
  explicit PrefixedSum(std::string_view expression) {
    ptrdiff_t depth = 0;
    for (size_t at = 1; at < expression.size(); ++at) {
      const char c = expression[at];
      if (c == '(') ++depth;
      if (c == ')') --depth;
      if (depth != 0) continue;
      if (isOperator(c) && at > 1 && rest.empty()) {
        first = trimRight(expression.substr(0, at));
        rest = expression.substr(at);
      }
      if (isPrefix(c) && !rest.empty()) hasPrefixAgain = true;
    }
  }

  std::string_view first;  // with its prefix
  std::string_view rest;   // from the first operator on; empty without one
  bool hasPrefixAgain = false;
};

bool differIn(size_t bytes, int64_t a, int64_t b) {
  const auto difference = static_cast<uint64_t>(a) ^ static_cast<uint64_t>(b);
  return (difference & ((uint64_t{1} << 8 * bytes) - 1)) != 0;
}

}  // namespace

void checkLowHigh(const Statement& statement, std::string_view expression, size_t bytes, Evaluator& evaluator,
                  Findings& findings) {
  if (expression.empty() || !isPrefix(expression.front())) return;
  const PrefixedSum sum(expression);
  if (sum.rest.empty()) return;
  const int64_t value = evaluator.evaluate(expression);
  const int64_t meant = evaluator.evaluate(concat({"(", sum.first, ")", sum.rest}));
  if (!differIn(bytes, value, meant)) return;
  const int64_t added = wrappingSubtract(meant, evaluator.evaluate(sum.first));
  const bool losesPage = bytes > 1 && (added > 255 || added < -255);
  if (!sum.hasPrefixAgain && !losesPage) return;
  const std::string_view at = inSource(statement, expression);
  Findings::Report report{.at = at};
  report.text = concat(
      {"'", sum.first.substr(0, 1), "' takes all of ", inQuotes(at.substr(1)), ": the value is ", valueText(value)});
  report.notes.emplace_back(
      at, concat({"write ", inQuotes(concat({"(", sum.first, ")", sum.rest})), " for ", valueText(meant)}));
  findings.add(Check::LowHighAll, std::move(report));
}

}  // namespace kiln
