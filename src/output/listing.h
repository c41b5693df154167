// The listing: every statement with the address at which it starts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "source/expression.h"
#include "source/line.h"
#include "source/source_lines.h"

namespace kiln {

// One line a statement, and one for each source line without a statement. `lines` are the source lines that the
// statements were parsed from; the evaluator gives the origins their values, by the final symbols.
std::string renderListing(const std::vector<AsLine>& statements, const SourceLines& lines, Evaluator& evaluator);

}  // namespace kiln
