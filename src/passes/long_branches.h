// Branches that do not reach their targets, rewritten in the source text.
#pragma once

#include <cstdint>
#include <vector>

#include "base/text_store.h"
#include "passes/assembler.h"
#include "passes/line_edits.h"

namespace kiln {

// The edits that replace the lines of all out-of-range branches; none when every branch reaches. `bankOrigin` is where
// code begins behind a ".bank", 0..65535. `labelCount` numbers the generated labels and goes on from call to call;
// `texts` takes the new lines.
std::vector<LineEdit> rewriteLongBranches(Iteration& iteration, uint32_t bankOrigin, uint32_t& labelCount,
                                          TextStore& texts);

}  // namespace kiln
