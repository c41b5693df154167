// Labels that nothing uses.
#pragma once

#include <vector>

#include "inspect/findings.h"
#include "inspect/name_definitions.h"
#include "inspect/program.h"

namespace kiln {

// `isUsed` has an entry for each symbol. The start of the program, and labels of included files and macros, need no
// use; nor does the label that begins the scope of a local name in use.
void checkUnusedLabels(const Program& program, const NameDefinitions& definitions, std::vector<bool> isUsed,
                       Findings& findings);

}  // namespace kiln
