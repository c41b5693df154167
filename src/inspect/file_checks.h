// What concerns whole files: carriage returns and byte order marks.
#pragma once

#include "inspect/findings.h"
#include "inspect/program.h"

namespace kiln {

// To be called before the other checks, because it explains many messages of the assembler.
void checkFiles(const Program& program, Findings& findings);

}  // namespace kiln
