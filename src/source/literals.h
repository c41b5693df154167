// Number literals: their shapes and their values.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/hex.h"

namespace kiln {

// True for one or more decimal digits.
bool isDecimalLiteral(std::string_view text);

// True for hexadecimal digits that begin with a decimal one, followed by "h" or "H": 0FFh, 12H.
bool isTrailingHLiteral(std::string_view text);

// The value of "$" and 1 to 15 hexadecimal digits, or of 1 to 16 decimal digits; -1 for all other texts. Nearly every
// literal is one of these, and they cannot overflow.
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
  text.remove_prefix(1);
  if (text.empty()) return -1;
  value = takeHex(text);
  return text.empty() ? static_cast<int64_t>(value) : -1;
}

// The number at the start of a text, in radix 2 or 16. White space, a sign and, in radix 16, "0x" may precede the
// digits; anything may follow them. 0 without digits, -1 when the digits do not fit 64 bits.
int64_t parseRadix(std::string_view text, unsigned radix);

// The value of decimal digits; the largest signed number when it does not fit.
int64_t parseDecimal(std::string_view digits);

// The value of a command-line definition: that of a literal of any form, else 0.
int64_t parseDefinition(std::string_view text);

}  // namespace kiln
