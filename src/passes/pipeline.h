// From source lines to segments.
#pragma once

#include "passes/assembler.h"

namespace kiln {

// Assembles the lines. True when no error was recorded, those from before the call included. Afterwards the segments,
// the last iteration and all messages stand in the assembler.
bool assemble(Assembler& assembler);

}  // namespace kiln
