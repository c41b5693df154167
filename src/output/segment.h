// One contiguous run of output bytes.
#pragma once

#include <cstdint>
#include <vector>

namespace kiln {

struct AsSegment {
  uint32_t start = 0;          // load address of the first byte, 0..65535
  std::vector<uint8_t> bytes;  // in address order; may be empty, and may run past $FFFF
  int32_t bank = -1;           // -1 = none
  bool cloaked = false;        // opened by ".cloaked_segment"
  int32_t cloakedId = -1;      // -1 = unnumbered
};

// Where code that must lie under the OS ROM goes, and where it waits until it is copied there.
struct ShadowPlan {
  std::vector<uint32_t> ranges;  // low, high, low, high...: both ends inclusive, 0..65535
  uint32_t stageAddress = 0;     // 0 = none, and then the ranges mean nothing
};

}  // namespace kiln
