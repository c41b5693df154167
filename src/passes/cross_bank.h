// Calls and jumps into other banks, rewritten in the source text to go through main memory.
#pragma once

#include "passes/assembler.h"
#include "passes/line_edits.h"

namespace kiln {

// Stages each JSR and JMP whose target is in another bank. Calls staged in earlier iterations get the symbols that they
// need. Without a code bank register nothing can be staged. A stage label outside main memory is an error.
Rewrite stageCrossBankCalls(Iteration& iteration, const SourceLines& lines, const BankedSettings& settings,
                            const ShadowPlan& shadowPlan, RewriteState& state);

}  // namespace kiln
