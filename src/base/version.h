#pragma once

#include <string_view>

namespace kiln {

inline constexpr std::string_view version = "0.61";

}  // namespace kiln
