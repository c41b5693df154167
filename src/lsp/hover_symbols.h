// What is said of labels, names and banks.
#pragma once

#include <cstdint>
#include <vector>

#include "lsp/analysis.h"
#include "lsp/hover_text.h"
#include "lsp/symbol_facts.h"

namespace kiln {

// `facts` are those of all symbols.
void describeSymbol(const Analysis& analysis, const std::vector<SymbolFacts>& facts, uint32_t symbol, HoverText& hover);

}  // namespace kiln
