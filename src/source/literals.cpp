#include "source/literals.h"

#include <algorithm>
#include <limits>

#include "base/arithmetic.h"
#include "base/hex.h"
#include "base/text.h"

namespace kiln {

bool isDecimalLiteral(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return isDigit(c); });
}

bool isTrailingHLiteral(std::string_view text) {
  if (text.size() < 2 || toLower(text.back()) != 'h' || !isDigit(text.front())) return false;
  return std::all_of(text.begin(), text.end() - 1, [](char c) { return isHexDigit(c); });
}

int64_t parseRadix(std::string_view text, unsigned radix) {
  while (!text.empty() && isWhitespace(text.front()))
    text.remove_prefix(1);
  const bool negative = !text.empty() && text.front() == '-';
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
  if (radix == 16 && text.size() > 2 && text[0] == '0' && toLower(text[1]) == 'x' && isHexDigit(text[2])) {
    text.remove_prefix(2);
  }
  while (text.starts_with('0'))
    text.remove_prefix(1);
  const size_t size = text.size();
  const int64_t value = static_cast<int64_t>(radix == 16 ? takeHex(text) : takeDigits<2>(text));
  if (size - text.size() > (radix == 16 ? 16 : 64)) return -1;
  return negative ? wrappingSubtract(0, value) : value;
}

int64_t parseDecimal(std::string_view digits) {
  constexpr int64_t largest = std::numeric_limits<int64_t>::max();
  int64_t value = 0;
  for (char c : digits) {
    const int digit = c - '0';
    if (value > (largest - digit) / 10) return largest;
    value = value * 10 + digit;
  }
  return value;
}

int64_t parseDefinition(std::string_view text) {
  text = trim(text);
  if (text.empty()) return 0;
  if (text.front() == '$') return parseRadix(text.substr(1), 16);
  if (text.front() == '%') return parseRadix(text.substr(1), 2);
  if (isTrailingHLiteral(text)) return parseRadix(text.substr(0, text.size() - 1), 16);
  return isDecimalLiteral(text) ? parseDecimal(text) : 0;
}

}  // namespace kiln
