// The first half of an iteration: the initial symbols, and the source as statements.
#pragma once

#include <string_view>
#include <vector>

#include "passes/assembler.h"

namespace kiln {

// Enters the seeds, the bank registers and the definitions; each replaces an earlier one of its name.
void enterInitialSymbols(const Settings& settings, SymbolTable& symbols);

// Parses every line. Nothing is laid out yet, so only the initial symbols can select zero page.
void parseStatements(const SourceLines& lines, Iteration& iteration);

}  // namespace kiln
