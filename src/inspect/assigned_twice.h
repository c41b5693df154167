// Names with several values.
#pragma once

#include <cstdint>
#include <unordered_set>

#include "inspect/findings.h"
#include "inspect/name_definitions.h"
#include "inspect/program.h"

namespace kiln {

// Walks the program once more for the symbols with these indexes, which have several definitions. Reports those with
// different values where that shows: an instruction or a list gets another value than the lines above it give, or
// nothing has used the value that is replaced.
void checkAssignedTwice(const Program& program, const NameDefinitions& definitions,
                        const std::unordered_set<uint32_t>& symbols, Findings& findings);

}  // namespace kiln
