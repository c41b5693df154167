// Pictures of palette colours in PNG files, by libpng.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kiln::screenshot {

struct Picture {
  size_t width = 0;
  size_t height = 0;
  std::vector<uint32_t> points;  // row by row, each $RRGGBB
  bool operator==(const Picture&) const = default;
};

// False when the file cannot be written. At most 256 colours.
bool writePng(const std::string& path, const Picture& picture);
// Nothing when the file is no picture.
std::optional<Picture> readPng(const std::string& path);

}  // namespace kiln::screenshot
