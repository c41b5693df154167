// Numbers and ranges in layout files.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kiln {

struct LayoutRange {
  uint32_t low = 0;
  uint32_t high = 0;
};

// The value, modulo 2^32, of "$" and hexadecimal digits, or of decimal digits. Blanks around the number are ignored;
// absent for any other text.
std::optional<uint32_t> parseLayoutNumber(std::string_view text);

// The first "$low-$high" in the text, with or without blanks around the "-"; absent when there is none. The low end may
// be the greater one.
std::optional<LayoutRange> findLayoutRange(std::string_view text);

}  // namespace kiln
