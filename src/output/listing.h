// The listing: every statement with the address at which it starts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "source/expression.h"
#include "source/line.h"
#include "source/source_lines.h"

namespace kiln {

// One line for each statement, and one for each source line without a statement. `lines` are the source lines that the
// statements were parsed from. The evaluator has the final symbols and computes the origins.
std::string renderListing(const std::vector<AsLine>& statements, const SourceLines& lines, Evaluator& evaluator);

}  // namespace kiln
