// The listing with addresses, bytes and cycles before each line of the source.
#pragma once

#include <string>

#include "inspect/placements.h"
#include "inspect/program.h"

namespace kiln {

// All files as they are read, and below a macro call, or a line that has been rewritten, what has come of it, marked
// with "+".
std::string renderCycleListing(const Program& program, const Placements& placements);

}  // namespace kiln
