// Hexadecimal digits.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kiln {

// The value of each character that is a hexadecimal digit, -1 for all others.
inline constexpr std::array<int8_t, 256> digitValues = [] {
  std::array<int8_t, 256> values{};
  values.fill(-1);
  for (size_t i = 0; i < 16; ++i) {
    values[static_cast<unsigned char>("0123456789ABCDEF"[i])] = static_cast<int8_t>(i);
    values[static_cast<unsigned char>("0123456789abcdef"[i])] = static_cast<int8_t>(i);
  }
  return values;
}();

// The value of a hexadecimal digit, or -1.
constexpr int hexDigitValue(char c) { return digitValues[static_cast<unsigned char>(c)]; }
constexpr bool isHexDigit(char c) { return hexDigitValue(c) >= 0; }

// Takes the digits of a radix up to 16 off the front of the text. The result is their value modulo 2^64, 0 without
// digits.
template <unsigned radix>
constexpr uint64_t takeDigits(std::string_view& text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  uint64_t value = 0;
  for (; at != end; ++at) {
    const int digit = hexDigitValue(*at);
    if (digit < 0 || digit >= static_cast<int>(radix)) break;
    value = value * radix + static_cast<unsigned>(digit);
  }
  text = {at, static_cast<size_t>(end - at)};
  return value;
}

constexpr uint64_t takeHex(std::string_view& text) { return takeDigits<16>(text); }

}  // namespace kiln
