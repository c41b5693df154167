// The program's expression evaluator against the reference evaluator: both must give the same values and warnings.
//
// The input is lines. The first one lists names of symbols, separated by commas. Every further line is an expression,
// or "=" and the name of one more symbol.
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "base/diagnostics.h"
#include "base/text.h"
#include "check.h"
#include "reference_evaluator.h"
#include "source/expression.h"
#include "source/symbols.h"

namespace kiln::fuzz {
namespace {

// In characters: the reference evaluator may recurse once for each.
constexpr size_t longestExpression = 200;

// Given to the symbols in turn.
constexpr std::array<int64_t, 11> symbolValues = {
    0x1234, 0,     -1, 255, 256, 7, 0x8000, std::numeric_limits<int64_t>::max(), std::numeric_limits<int64_t>::min(),
    -256,   0xFFFF};

class Comparison {
 public:
  void addSymbol(std::string_view name) {
    const int64_t value = symbolValues[symbolCount_++ % symbolValues.size()];
    symbols_.set(name, value);
    reference_.setSymbol(name, value);
  }

  void compare(std::string_view text) {
    // The result is the same with and without the hash.
    const uint32_t hash = text.size() % 2 == 0 ? nameHash(text) : 0;
    compareValues("size", text, evaluator_.sizingValue(text, hash), reference_.evaluateForSize(text));
    compareValues("value", text, evaluator_.evaluate(text, hash), reference_.evaluate(text));
    compareWarnings(text);
  }

 private:
  static void compareValues(const char* what, std::string_view text, int64_t actual, int64_t expected) {
    if (actual == expected) return;
    fail(std::string(what) + " of '" + std::string(text) + "' is " + std::to_string(actual) + ", expected " +
         std::to_string(expected));
  }

  void compareWarnings(std::string_view text) const {
    std::vector<std::string> actual;
    for (size_t i = 0; i < warnings_.size(); ++i)
      actual.emplace_back(warnings_[i]);
    if (actual == reference_.warnings) return;
    std::string report = "other warnings after '" + std::string(text) + "':";
    for (const std::string& warning : actual)
      report += "\n  actual: " + warning;
    for (const std::string& warning : reference_.warnings)
      report += "\n  expected: " + warning;
    fail(report);
  }

  SymbolTable symbols_;
  MessageList warnings_;
  Evaluator evaluator_{symbols_, warnings_};
  ReferenceEvaluator reference_;
  size_t symbolCount_ = 0;
};

void compareAll(std::string_view input) {
  Comparison comparison;
  Fields lines(input, '\n');
  std::string_view line;
  lines.next(line);
  Fields names(line, ',');
  for (std::string_view name; names.next(name);)
    comparison.addSymbol(name);
  while (lines.next(line)) {
    if (line.size() > longestExpression) continue;
    if (line.starts_with('=')) {
      comparison.addSymbol(line.substr(1));
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
