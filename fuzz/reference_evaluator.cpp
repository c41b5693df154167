#include "reference_evaluator.h"

#include <algorithm>
#include <limits>

namespace kiln::fuzz {
namespace {

using Wide = __int128;  // no intermediate result overflows it

std::string_view trimmed(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string lowered(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return result;
}

int64_t wrapped(Wide value) { return static_cast<int64_t>(static_cast<uint64_t>(value)); }

int digitValue(char c) {
  const size_t index = std::string_view("0123456789abcdef").find(lowered({&c, 1}));
  return index == std::string_view::npos ? 99 : static_cast<int>(index);
}

bool isDecimal(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return digitValue(c) < 10; });
}

// Like "0FFh".
bool isHexWithSuffix(std::string_view text) {
  if (text.size() < 2 || (text.back() != 'h' && text.back() != 'H') || digitValue(text.front()) > 9) return false;
  text.remove_suffix(1);
  return std::all_of(text.begin(), text.end(), [](char c) { return digitValue(c) < 16; });
}

// The number in front of any other characters; -1 when it has more than 64 bits.
int64_t parseRadix(std::string_view text, int radix) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\r\v\f"), text.size()));
  bool negative = false;
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
    negative = text[0] == '-';
    text.remove_prefix(1);
  }
  if (radix == 16 && text.size() >= 3 && lowered(text.substr(0, 2)) == "0x" && digitValue(text[2]) < 16) {
    text.remove_prefix(2);
  }
  Wide value = 0;
  for (size_t i = 0; i < text.size() && digitValue(text[i]) < radix; ++i) {
    value = value * radix + digitValue(text[i]);
    if (value > std::numeric_limits<uint64_t>::max()) return -1;
  }
  return wrapped(negative ? -value : value);
}

// The digits' value, limited to the largest 64-bit number.
int64_t parseDecimal(std::string_view text) {
  constexpr int64_t maximum = std::numeric_limits<int64_t>::max();
  Wide value = 0;
  for (const char c : text) {
    value = value * 10 + digitValue(c);
    if (value > maximum) return maximum;
  }
  return wrapped(value);
}

int64_t calculate(char sign, Wide left, Wide right) {
  if (sign == '+') return wrapped(left + right);
  if (sign == '-') return wrapped(left - right);
  if (sign == '*') return wrapped(left * right);
  return right == 0 ? 0 : wrapped(left / right);
}

// The index of the last operator of a kind outside parentheses; 0 when there is none. The first character is never an
// operator.
size_t findLastOperator(std::string_view text, char first, char second) {
  int depth = 0;
  for (size_t at = text.size() - 1; at > 0; --at) {
    if (text[at] == ')') ++depth;
    if (text[at] == '(') --depth;
    if (depth == 0 && (text[at] == first || text[at] == second)) return at;
  }
  return 0;
}

}  // namespace

void ReferenceEvaluator::setSymbol(std::string_view name, int64_t value) {
  for (auto& [key, keyValue] : symbols_) {
    if (key == name) {
      keyValue = value;
      return;
    }
  }
  symbols_.emplace_back(name, value);
}

const int64_t* ReferenceEvaluator::find(std::string_view name) const {
  for (const auto& [key, value] : symbols_) {
    if (key == name) return &value;
  }
  return nullptr;
}

int64_t ReferenceEvaluator::evaluate(std::string_view text) {
  text = trimmed(text);
  if (text.empty()) return 0;
  if (text.front() == '<') return evaluate(text.substr(1)) & 255;
  if (text.front() == '>') return evaluate(text.substr(1)) >> 8 & 255;
  size_t split = findLastOperator(text, '+', '-');
  if (split == 0) split = findLastOperator(text, '*', '/');
  if (split != 0) {
    const int64_t left = evaluate(text.substr(0, split));
    return calculate(text[split], left, evaluate(text.substr(split + 1)));
  }
  if (text.front() == '(' && text.back() == ')') return evaluate(text.substr(1, text.size() - 2));
  if (text.front() == '$') return parseRadix(text.substr(1), 16);
  if (text.front() == '%') return parseRadix(text.substr(1), 2);
  return evaluateName(text);
}

int64_t ReferenceEvaluator::evaluateName(std::string_view text) {
  const std::string name(text);
  const std::string withoutLast = name.substr(0, name.size() - 1);
  if (const int64_t* const value = find(text)) {
    if (isHexWithSuffix(text) && ambiguousNames_.insert(name).second) {
      warnings.push_back("label '" + name +
                         "' is ambiguous with Z80-style hex literal; resolving to the label \xE2\x80\x94 rename it or "
                         "use $" +
                         withoutLast + " to silence this warning");
    }
    return *value;
  }
  if (isHexWithSuffix(text)) return parseRadix(withoutLast, 16);
  if (isDecimal(text)) return parseDecimal(text);
  for (const auto& [key, value] : symbols_) {
    if (lowered(key) == lowered(text)) return value;
  }
  warnings.push_back("undefined symbol '" + name + "', using 0");
  return 0;
}

int64_t ReferenceEvaluator::evaluateForSize(std::string_view text) const {
  text = trimmed(text);
  if (text.substr(0, 1) == "$") return parseRadix(text.substr(1), 16);
  if (text.substr(0, 1) == "%") return parseRadix(text.substr(1), 2);
  if (isDecimal(text)) return parseDecimal(text);
  const int64_t* const value = find(text);
  return value != nullptr ? *value : 256;
}

}  // namespace kiln::fuzz
