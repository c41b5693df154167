// Findings as people and programs read them.
#pragma once

#include <span>
#include <string>

#include "inspect/findings.h"

namespace kiln {

// "FILE:LINE:COLUMN: warning: TEXT [CHECK]", the line and a mark below it, then the notes.
// Of a long line, only what is near the mark.
std::string renderText(std::span<const Finding> findings, const SourceMap& map, bool inColour);

// One JSON object a line.
std::string renderJson(std::span<const Finding> findings);

struct ProgramFindings {
  std::span<const Finding> findings;
  const SourceMap* map;
};

// A SARIF 2.1.0 document, which code hosts read.
std::string renderSarif(std::span<const ProgramFindings> programs);

}  // namespace kiln
