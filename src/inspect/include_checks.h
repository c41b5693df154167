// Includes: circles, and files found where nobody expects them.
#pragma once

#include "inspect/findings.h"
#include "inspect/program.h"

namespace kiln {

void checkIncludes(const Program& program, Findings& findings);

}  // namespace kiln
