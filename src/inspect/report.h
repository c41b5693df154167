// Findings as people and programs read them.
#pragma once

#include <string>
#include <vector>

#include "inspect/findings.h"

namespace kiln {

// "FILE:LINE:COLUMN: warning: TEXT [CHECK]", the line and a mark below it, then the notes.
std::string renderText(const std::vector<Finding>& findings, const SourceMap& map, bool inColour);

// One JSON object a line.
std::string renderJson(const std::vector<Finding>& findings);

// A SARIF 2.1.0 document, which code hosts read.
std::string renderSarif(const std::vector<Finding>& findings, const SourceMap& map);

}  // namespace kiln
