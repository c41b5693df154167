// What the symbols of a program are.
#pragma once

#include <cstdint>
#include <vector>

#include "lsp/analysis.h"

namespace kiln {

struct SymbolFacts {
  enum class Kind : uint8_t {
    Predefined,  // or none of the others
    Label,
    LocalLabel,  // written with "."
    Name,        // assigned
    Bank,
  };

  Kind kind = Kind::Predefined;
  const Statement* definition = nullptr;  // the last one; null for predefined ones
  size_t uses = 0;                        // places in files, definitions not counted
};

// By Symbol::index.
std::vector<SymbolFacts> describeSymbols(const Analysis& analysis);

}  // namespace kiln
