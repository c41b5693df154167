// The product's evaluator against the literal one: the same value and the same warnings for every text.
//
// The input is lines. The first names symbols, separated by commas; each further line is an expression, or, behind a
// "=", one more symbol. Both evaluators see all of them in order.
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "base/diagnostics.h"
#include "base/text.h"
#include "check.h"
#include "literal_evaluator.h"
#include "source/expression.h"
#include "source/symbols.h"

namespace kiln::fuzz {
namespace {

// The literal evaluator goes one call deeper with every character, at worst.
constexpr size_t longestExpression = 200;

constexpr std::array<int64_t, 11> symbolValues = {
    0x1234, 0,     -1, 255, 256, 7, 0x8000, std::numeric_limits<int64_t>::max(), std::numeric_limits<int64_t>::min(),
    -256,   0xFFFF};

class Comparison {
 public:
  void enter(std::string_view name) {
    const int64_t value = symbolValues[entered_++ % symbolValues.size()];
    symbols_.set(name, value);
    literal_.enter(name, value);
  }

  void compare(std::string_view text) {
    // A hash must change nothing.
    const uint32_t hash = text.size() % 2 == 0 ? nameHash(text) : 0;
    const int64_t size = evaluator_.sizingValue(text, hash);
    const int64_t literalSize = literal_.evaluateForSize(text);
    if (size != literalSize) failWith("size", text, size, literalSize);
    const int64_t value = evaluator_.evaluate(text, hash);
    const int64_t literalValue = literal_.evaluate(text);
    if (value != literalValue) failWith("value", text, value, literalValue);
    compareWarnings(text);
  }

 private:
  void compareWarnings(std::string_view text) const {
    bool equal = warnings_.size() == literal_.warnings.size();
    for (size_t i = 0; equal && i < warnings_.size(); ++i)
      equal = warnings_[i] == literal_.warnings[i];
    if (equal) return;
    std::string lists = "other warnings at '" + std::string(text) + "':\n";
    for (size_t i = 0; i < warnings_.size(); ++i)
      lists.append("  product: ").append(warnings_[i]).append("\n");
    for (const std::string& warning : literal_.warnings)
      lists.append("  literal: ").append(warning).append("\n");
    fail(lists);
  }

  [[noreturn]] static void failWith(const char* what, std::string_view text, int64_t product, int64_t literal) {
    fail(std::string(what) + " of '" + std::string(text) + "': product " + std::to_string(product) + ", literal " +
         std::to_string(literal));
  }

  SymbolTable symbols_;
  MessageList warnings_;
  Evaluator evaluator_{symbols_, warnings_};
  LiteralEvaluator literal_;
  size_t entered_ = 0;
};

void compareAll(std::string_view input) {
  Comparison comparison;
  Fields lines(input, '\n');
  std::string_view line;
  lines.next(line);
  Fields names(line, ',');
  std::string_view name;
  while (names.next(name))
    comparison.enter(name);
  while (lines.next(line)) {
    if (line.size() > longestExpression) continue;
    if (line.substr(0, 1) == "=") {
      comparison.enter(line.substr(1));
    } else {
      comparison.compare(line);
    }
  }
}

}  // namespace
}  // namespace kiln::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kiln::fuzz::compareAll({reinterpret_cast<const char*>(data), size});
  return 0;
}
