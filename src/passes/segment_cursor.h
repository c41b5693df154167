// The address of the next byte, and when a new segment opens for it.
#pragma once

#include <cstdint>

#include "passes/code_regions.h"

namespace kiln {

// The regions must outlive it.
class SegmentCursor {
 public:
  explicit SegmentCursor(const RegionList& regions) : regions_(regions) {}

  uint32_t pc() const { return pc_; }

  // False when there is no segment: the next byte needs a new one at pc().
  bool isOpen() const { return isOpen_; }

  // True when an origin begins a new segment; false when the gap up to it is filled instead.
  bool splitsAt(uint32_t target) const;

  // A new segment at `address`, 0..65535.
  void open(uint32_t address) {
    pc_ = start_ = address;
    isOpen_ = isEmpty_ = true;
  }
  // There is no segment until the next open().
  void close() { isOpen_ = false; }
  // Puts `size` bytes into the open segment.
  void advance(uint32_t size) {
    pc_ = (pc_ + size) & 0xFFFF;
    isEmpty_ = isEmpty_ && size == 0;
  }

 private:
  bool crossesRegions(uint32_t target) const;

  const RegionList& regions_;
  uint32_t pc_ = 0;
  uint32_t start_ = 0;
  bool isOpen_ = false;
  bool isEmpty_ = true;
};

}  // namespace kiln
