// Macros and includes.
#pragma once

#include "inspect/findings.h"
#include "inspect/program.h"

namespace kiln {

void checkMacros(const Program& program, Findings& findings);

}  // namespace kiln
