// The Atari binary-load file for a machine with extended memory: segments in the bank window go to banks.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/console.h"
#include "output/bank_values.h"
#include "output/image.h"
#include "output/segment.h"

namespace kiln {

// The staged code, the banked segments, the segments outside the bank window, and last the run address (0..65535).
// Cloaked segments are left out with a warning. Absent, after a printed message, when something does not fit or a
// register is missing.
std::optional<Image> writeBanked(const std::vector<AsSegment>& segments, const ShadowPlan& plan,
                                 const BankedSettings& given, uint32_t runAddress, Console& console);

}  // namespace kiln
