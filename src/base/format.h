// Numbers as text, for messages and listings.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kiln {

// "$" and all upper-case hexadecimal digits, at least `width` of them. A negative value shows its two's complement.
std::string dollarHex(int64_t value, size_t width = 4);

// Appends the same digits without the "$" to `out`.
void appendHex(std::string& out, uint64_t value, size_t width);

// Signed decimal.
std::string decimal(int64_t value);

// The pieces joined.
std::string concat(std::initializer_list<std::string_view> pieces);

}  // namespace kiln
