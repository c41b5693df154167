// Recognises directives.
#pragma once

#include <string_view>

#include "source/expression.h"
#include "source/line.h"

namespace kiln {

// Fills `line` when the text (trimmed, without its label) is a directive; false when it is none. Evaluates nothing but
// the count of ".space ".
bool parseDirective(std::string_view text, Evaluator& evaluator, AsLine& line);

}  // namespace kiln
