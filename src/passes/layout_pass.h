// The second half of an iteration: an address for every statement, a value for every label.
#pragma once

#include "passes/assembler.h"

namespace kiln {

// Lays out the statements of the iteration; statements that the code regions call for are inserted among them.
void layOut(const Settings& settings, Diagnostics& diagnostics, ShadowPlan& shadowPlan, Iteration& iteration);

}  // namespace kiln
