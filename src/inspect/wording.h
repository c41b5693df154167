// Texts and numbers of the source in the words of a finding.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/format.h"

namespace kiln {

// The beginning of a long text, cut between two characters; all of a short one.
inline std::string shortened(std::string_view text) {
  constexpr size_t most = 60;
  if (text.size() <= most) return std::string(text);
  size_t end = most;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
    --end;
  return concat({text.substr(0, end), "..."});
}

// The same in single quotes, unless the text begins with a quote.
inline std::string inQuotes(std::string_view text) {
  const bool hasQuotes = text.starts_with('"') || text.starts_with('\'');
  const std::string_view quote = hasQuotes ? "" : "'";
  return concat({quote, shortened(text), quote});
}

// "$2C", "$012C", "-300".
inline std::string valueText(int64_t value) {
  return value < 0 ? decimal(value) : dollarHex(value, value > 255 ? 4 : 2);
}

}  // namespace kiln
