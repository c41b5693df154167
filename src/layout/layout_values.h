// Numbers and ranges as layout files write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kiln {

struct LayoutRange {
  uint32_t low = 0;
  uint32_t high = 0;
};

// "$" and hexadecimal digits, or decimal digits, with blanks around allowed; absent for anything else. A number too
// long for 32 bits keeps its low ones.
std::optional<uint32_t> parseLayoutNumber(std::string_view text);

// The first "$low-$high" in the text, blanks around the "-" allowed and any other text around it skipped; absent when
// there is none. The ends are not compared: a reversed range is a range.
std::optional<LayoutRange> findLayoutRange(std::string_view text);

}  // namespace kiln
