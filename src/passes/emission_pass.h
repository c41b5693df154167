// The last pass: statements to segments.
#pragma once

#include <vector>

#include "passes/assembler.h"

namespace kiln {

// The bytes of all statements. Errors in operands are recorded and do not end the pass. `bankOrigin` is where code
// begins after a ".bank", 0..65535.
std::vector<AsSegment> emit(Iteration& iteration, uint32_t bankOrigin, Diagnostics& diagnostics);

}  // namespace kiln
