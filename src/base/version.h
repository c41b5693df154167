#pragma once

#include <string_view>

namespace kiln {

// The one place for it: CMake reads it here, and a test checks the pages that repeat it.
inline constexpr std::string_view version = "0.61";

}  // namespace kiln
