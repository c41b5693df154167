// The flat Atari binary-load file.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/console.h"
#include "output/image.h"
#include "output/segment.h"

namespace kiln {

// The segments in list order, the staged code, and last the run address (0..65535). Absent, after a printed
// message, when the staging fails.
std::optional<Image> writeXex(const std::vector<AsSegment>& segments, const ShadowPlan& plan, uint32_t runAddress,
                              Console& console);

}  // namespace kiln
