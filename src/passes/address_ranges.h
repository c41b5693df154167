// Lists of address ranges as the directives write them: $2000-$2FFF,$4000-$4FFF.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/diagnostics.h"
#include "source/expression.h"

namespace kiln {

// Start and end of each range in turn, inclusive, 0..65535. Entries before a malformed one are kept; an invalid range
// leaves none at all. Both are errors that name the code regions, also where the list is one of shadow ranges.
std::vector<uint32_t> parseAddressRanges(std::string_view list, uint32_t lineNumber, Evaluator& evaluator,
                                         Diagnostics& diagnostics);

}  // namespace kiln
