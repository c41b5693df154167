// The second half of an iteration: an address for every statement, a value for every label.
#pragma once

#include "passes/assembler.h"

namespace kiln {

// Lays out the statements of the iteration, and inserts those that the code regions need.
void layOut(const Settings& settings, Diagnostics& diagnostics, ShadowPlan& shadowPlan, Iteration& iteration);

}  // namespace kiln
