// Texts and numbers of the source in the words of a finding.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/format.h"

namespace kiln {

// The text in single quotes; only the beginning of a long one.
inline std::string quoted(std::string_view text) {
  constexpr size_t most = 60;
  return text.size() <= most ? concat({"'", text, "'"}) : concat({"'", text.substr(0, most), "...'"});
}

// "$2C", "$012C", "-300".
inline std::string valueText(int64_t value) {
  return value < 0 ? decimal(value) : dollarHex(value, value > 255 ? 4 : 2);
}

}  // namespace kiln
