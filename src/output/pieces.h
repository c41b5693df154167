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

// Cuts segments at the shadow ranges of a plan. Without a stage address there are none.
class ShadowSplitter {
 public:
  explicit ShadowSplitter(const ShadowPlan& plan);

  // Appends the segment's pieces: a single plain one if no range touches the segment, which must not be empty.
  void split(const AsSegment& segment, Pieces& pieces) const;

 private:
  struct Range {
    uint64_t low;
    uint64_t high;
    size_t number;  // in the order of declaration
  };

  static bool isBefore(const Range& a, const Range& b);
  std::vector<Range> rangesWithin(uint64_t first, uint64_t last) const;

  std::vector<Range> ranges_;          // by start
  std::vector<uint64_t> highestUpTo_;  // the highest end of a range and all before it
};

}  // namespace kiln
