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

// Which addresses are under the OS ROM, and where their bytes are loaded before they are copied there.
struct ShadowPlan {
  std::vector<uint32_t> ranges;  // low, high, low, high...: both ends inclusive, 0..65535
  uint32_t stageAddress = 0;     // 0 = none: the ranges have no effect
};

}  // namespace kiln
