// Calls and jumps into other banks, rewritten in the source text to go through main memory.
#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "passes/assembler.h"
#include "passes/line_edits.h"

namespace kiln {

// Looks for JSR and JMP instructions whose target lies in another bank than they do, appends the edits that stage them,
// and returns how many it found. Without a code bank register there is nothing to stage with. Calls staged in earlier
// iterations get the symbols that they need. A stage label outside main memory is an error.
size_t stageCrossBankCalls(Assembler& assembler, std::vector<LineEdit>& edits);

}  // namespace kiln
