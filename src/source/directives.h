// The directives: their spellings, and what of each stands in its statement.
#pragma once

#include <string_view>

#include "source/expression.h"
#include "source/line.h"

namespace kiln {

// Fills `line` when the text (trimmed, its label gone) is a directive; false when it is none. Only the count of
// ".space " is evaluated here.
bool parseDirective(std::string_view text, Evaluator& evaluator, AsLine& line);

}  // namespace kiln
