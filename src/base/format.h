// Numbers as the program's messages and listings print them.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kiln {

// "$" and at least `width` upper-case hexadecimal digits; never cut. A negative value shows its two's complement.
std::string dollarHex(int64_t value, size_t width = 4);

// The digits alone, appended to `out`.
void appendHex(std::string& out, uint64_t value, size_t width);

// Signed decimal.
std::string decimal(int64_t value);

// The pieces as one text.
std::string concat(std::initializer_list<std::string_view> pieces);

}  // namespace kiln
