// From source lines to segments.
#pragma once

#include "passes/assembler.h"

namespace kiln {

// Assembles the lines. False when there are errors, recorded here or before. The segments, the last iteration and all
// messages are in the assembler afterwards.
bool assemble(Assembler& assembler);

}  // namespace kiln
