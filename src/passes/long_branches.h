// Branches that do not reach their targets, rewritten in the source text.
#pragma once

#include <cstdint>

#include "passes/assembler.h"
#include "passes/line_edits.h"

namespace kiln {

// Replaces the lines of all branches that are out of range. `bankOrigin` is where code begins after a ".bank",
// 0..65535.
Rewrite rewriteLongBranches(Iteration& iteration, uint32_t bankOrigin, RewriteState& state);

}  // namespace kiln
