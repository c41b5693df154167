// Number literals: their shapes and their values.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "base/text.h"

namespace kiln {

constexpr std::array<int8_t, 256> makeDigitValues() {
  std::array<int8_t, 256> values{};
  for (size_t i = 0; i < values.size(); ++i)
    values[i] = static_cast<int8_t>(hexDigitValue(static_cast<char>(i)));
  return values;
}

// The values of all hexadecimal digits, -1 elsewhere.
inline constexpr std::array<int8_t, 256> digitValues = makeDigitValues();

// True for a non-empty text of decimal digits alone.
bool isDecimalLiteral(std::string_view text);

// True for hexadecimal digits that begin with a decimal one and end in "h" or "H": 0FFh, 12H.
bool isTrailingHLiteral(std::string_view text);

// A "$" with 1 to 15 hexadecimal digits behind it, or 1 to 16 decimal digits, and nothing else: the number, or -1 when
// the text has another form. Nearly every literal is of these, and they cannot overflow.
inline int64_t parsePlainLiteral(std::string_view text) {
  if (text.empty() || text.size() > 16) return -1;
  uint64_t value = 0;
  if (text.front() != '$') {
    for (char c : text) {
      const unsigned digit = static_cast<unsigned char>(c) - unsigned{'0'};
      if (digit > 9) return -1;
      value = value * 10 + digit;
    }
    return static_cast<int64_t>(value);
  }
  if (text.size() == 1) return -1;
  for (char c : text.substr(1)) {
    const int8_t digit = digitValues[static_cast<unsigned char>(c)];
    if (digit < 0) return -1;
    value = value << 4 | static_cast<unsigned>(digit);
  }
  return static_cast<int64_t>(value);
}

// The leading number of a text in radix 2 or 16: white space, a sign and (radix 16) "0x" may stand before the digits,
// what follows them is ignored. 0 without digits, -1 when the digits exceed 64 bits.
int64_t parseRadix(std::string_view text, unsigned radix);

// The value of a decimal literal; the largest signed number when it does not fit.
int64_t parseDecimal(std::string_view digits);

// What a command-line definition is worth: a literal of any of the forms, else 0. Never says a word.
int64_t parseDefinition(std::string_view text);

}  // namespace kiln
