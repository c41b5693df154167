// Writes a picture of palette colours as a PNG file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kiln::screenshot {

struct Picture {
  size_t width = 0;
  size_t height = 0;
  std::vector<uint8_t> points;  // row by row, each a number of the palette
};

using Palette = std::vector<uint32_t>;  // 256 colours, $RRGGBB

// The whole file.
std::string makePng(const Picture& picture, const Palette& palette);

}  // namespace kiln::screenshot
