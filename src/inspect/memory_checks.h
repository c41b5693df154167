// Where the program's bytes go: segments, long branches, code regions, shadow code, banks.
#pragma once

#include "inspect/findings.h"
#include "inspect/program.h"

namespace kiln {

void checkMemory(const Program& program, Findings& findings);

}  // namespace kiln
