// The colours and patterns of the picture of the memory.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "inspect/memory_map.h"

namespace kiln {

// How bytes of a use are drawn. Fills and strokes are attributes of SVG elements.
struct UseStyle {
  Use use;
  std::string_view name;
  std::string_view fill;
};

inline constexpr std::array useStyles = {
    UseStyle{Use::Code, "code", "fill=\"#9ecae1\""},
    UseStyle{Use::Data, "data", "fill=\"url(#data)\""},
    UseStyle{Use::Reserved, "zeros", "fill=\"url(#reserved)\""},
    UseStyle{Use::Shadow, "shadow code", "fill=\"url(#shadow)\""},
    UseStyle{Use::Stage, "stage, while loading", "fill=\"url(#stage)\""},
    UseStyle{Use::Cloaked, "cloaked", "fill=\"url(#cloaked)\""},
    UseStyle{Use::Overlap, "overlap", "fill=\"url(#overlap)\""},
};
inline constexpr std::string_view hardwareFill = R"(fill="#d9d9d9")";
inline constexpr std::string_view windowStroke = R"(fill="none" stroke="#000" stroke-dasharray="1 3")";
inline constexpr std::string_view regionStroke = R"(fill="none" stroke="#000" stroke-dasharray="5 2")";
inline constexpr std::string_view thinStroke = R"(fill="none" stroke="#000" stroke-width="0.6")";
inline constexpr std::string_view pageStroke = R"(stroke="#bbb" stroke-width="0.5")";
inline constexpr std::string_view beginStroke = R"(stroke="#000" stroke-width="0.8")";

// The patterns that fills refer to.
inline constexpr std::string_view patterns = R"(<defs>
<pattern id="data" width="4" height="4" patternUnits="userSpaceOnUse">
  <rect width="4" height="4" fill="#fee391"/>
  <rect width="1" height="1" fill="#8c6d1f"/>
</pattern>
<pattern id="reserved" width="6" height="6" patternUnits="userSpaceOnUse">
  <rect width="6" height="6" fill="#f4f4f4"/>
  <rect x="2" y="2" width="1" height="1" fill="#555"/>
</pattern>
<pattern id="shadow" width="6" height="6" patternUnits="userSpaceOnUse">
  <rect width="6" height="6" fill="#dadaeb"/>
  <path d="M0 6L6 0" stroke="#6a51a3" stroke-width="1"/>
</pattern>
<pattern id="stage" width="8" height="8" patternUnits="userSpaceOnUse">
  <rect width="8" height="8" fill="#fff"/>
  <path d="M0 0L8 8" stroke="#777" stroke-width="1"/>
</pattern>
<pattern id="cloaked" width="6" height="6" patternUnits="userSpaceOnUse">
  <rect width="6" height="6" fill="#c7e9c0"/>
  <path d="M0 3H6" stroke="#238b45" stroke-width="1"/>
</pattern>
<pattern id="overlap" width="6" height="6" patternUnits="userSpaceOnUse">
  <rect width="6" height="6" fill="#fb6a4a"/>
  <path d="M0 0L6 6M0 6L6 0" stroke="#000" stroke-width="0.6"/>
</pattern>
</defs>
)";

inline const UseStyle& styleOf(Use use) {
  return *std::find_if(useStyles.begin(), useStyles.end(), [use](const UseStyle& style) { return style.use == use; });
}

}  // namespace kiln
