// Findings as people read them.
#pragma once

#include <string>
#include <vector>

#include "inspect/findings.h"

namespace kiln {

// "FILE:LINE:COLUMN: warning: TEXT [CHECK]", the line and a mark below it, then the notes.
std::string renderText(const std::vector<Finding>& findings, const SourceMap& map, bool inColour);

}  // namespace kiln
