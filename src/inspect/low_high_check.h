// "<" and ">" before a sum, all of which they take.
#pragma once

#include <cstddef>
#include <string_view>

#include "inspect/findings.h"
#include "inspect/statement_walk.h"
#include "source/expression.h"

namespace kiln {

// Checks an expression of the statement whose value is stored in so many bytes.
void checkLowHigh(const Statement& statement, std::string_view expression, size_t bytes, Evaluator& evaluator,
                  Findings& findings);

}  // namespace kiln
