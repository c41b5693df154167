// Segments cut into what is loaded in place and what must be staged for memory under the OS ROM.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "output/segment.h"

namespace kiln {

// Bytes of a segment with their load address, 0..65535. The segment owns the bytes.
struct Piece {
  uint32_t address;
  std::span<const uint8_t> bytes;
};

struct Pieces {
  std::vector<Piece> plain;
  std::vector<Piece> shadow;
};

// Appends the segment's pieces. Without a stage address, or where no shadow range touches the segment, it is one plain
// piece. The segment must hold a byte.
void splitShadow(const AsSegment& segment, const ShadowPlan& plan, Pieces& pieces);

}  // namespace kiln
