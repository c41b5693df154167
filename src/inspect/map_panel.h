// Where addresses are in the picture of the memory: rows of 4 KB, each of 16 pages.
#pragma once

#include <algorithm>
#include <cstdint>

#include "inspect/memory_map.h"
#include "inspect/svg_writer.h"

namespace kiln {

inline constexpr uint32_t pageSize = 0x100;
inline constexpr uint32_t rowSize = 0x1000;
inline constexpr uint32_t pagesInRow = rowSize / pageSize;

inline constexpr double thinnest = 2;  // so that a single byte can be seen

// How a space is drawn.
struct Scale {
  double pageWidth;
  double rowHeight;
  double rowPitch;
};
inline constexpr Scale mainScale = {44, 24, 30};
inline constexpr Scale bankScale = {18, 15, 19};

struct Panel {
  double x;  // of the first page
  double y;
  Scale scale;
  AddressRange window;
};

inline uint32_t firstRow(const AddressRange& window) { return window.first / rowSize; }
inline uint32_t rowCount(const AddressRange& window) { return window.last / rowSize - firstRow(window) + 1; }

// A part of a range that is in one row.
inline Box boxOf(const Panel& panel, const AddressRange& part) {
  const double perByte = panel.scale.pageWidth / pageSize;
  const uint32_t row = part.first / rowSize - firstRow(panel.window);
  return {panel.x + part.first % rowSize * perByte, panel.y + row * panel.scale.rowPitch,
          std::max(part.size() * perByte, thinnest), panel.scale.rowHeight};
}

template <typename Take>
void forEachRow(const AddressRange& range, Take take) {
  for (uint32_t first = range.first; first <= range.last;) {
    const uint32_t last = std::min(range.last, first | (rowSize - 1));
    take(AddressRange{first, last});
    first = last + 1;
  }
}

}  // namespace kiln
