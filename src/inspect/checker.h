// All checks of a program.
#pragma once

#include <vector>

#include "inspect/findings.h"
#include "inspect/program.h"

namespace kiln {

// What the checks find in a program whose files could be read, the assembler's own messages included.
std::vector<Finding> checkProgram(const Program& program, const CheckLevels& levels);

}  // namespace kiln
