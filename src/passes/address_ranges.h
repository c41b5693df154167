// Lists of address ranges: $2000-$2FFF,$4000-$4FFF.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/diagnostics.h"
#include "source/expression.h"

namespace kiln {

// Start and end of each range in turn, inclusive, 0..65535. Reading stops with an error at a malformed entry, which
// keeps the ranges before it, and at an invalid range, which drops them all. The messages name .code_regions, even for
// a list of shadow ranges.
std::vector<uint32_t> parseAddressRanges(std::string_view list, uint32_t lineNumber, Evaluator& evaluator,
                                         Diagnostics& diagnostics);

}  // namespace kiln
