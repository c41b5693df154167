// Number literals: their shapes and their values.
#pragma once

#include <cstdint>
#include <string_view>

namespace kiln {

// True for a non-empty text of decimal digits alone.
bool isDecimalLiteral(std::string_view text);

// True for hexadecimal digits that begin with a decimal one and end in "h" or "H": 0FFh, 12H.
bool isTrailingHLiteral(std::string_view text);

// The leading number of a text in radix 2 or 16: white space, a sign and (radix 16) "0x" may stand before the digits,
// what follows them is ignored. 0 without digits, -1 when the digits exceed 64 bits.
int64_t parseRadix(std::string_view text, unsigned radix);

// The value of a decimal literal; the largest signed number when it does not fit.
int64_t parseDecimal(std::string_view digits);

// What a command-line definition is worth: a literal of any of the forms, else 0. Never says a word.
int64_t parseDefinition(std::string_view text);

}  // namespace kiln
