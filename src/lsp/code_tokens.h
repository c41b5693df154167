// What each part of a source text is.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "lsp/analysis.h"
#include "lsp/symbol_facts.h"

namespace kiln {

enum class TokenType : uint8_t {
  Label,
  Name,  // assigned, built in or predefined
  Bank,
  Macro,
  Parameter,
  Number,
  Mnemonic,
  Directive,
  String,
  Comment,
};

enum TokenModifier : uint8_t {
  Definition = 1,
  Local = 2,     // a label that is written with "."
  ZeroPage = 4,  // a name that is used in a zero-page mode
  BuiltIn = 8,   // a name of the hardware or the OS
  Vanished = 16  // a text that makes nothing
};

struct Token {
  std::string_view text;  // within a line of the source
  TokenType type;
  uint8_t modifiers = 0;
  const Occurrence* occurrence = nullptr;  // of a name, an include's file among them
  const Statement* statement = nullptr;    // that has it; null when the line has none, as in macros and rewritten lines
};

// The tokens in a part of the source, which consists of whole lines, in their order. None overlaps the next.
std::vector<Token> findTokens(const Analysis& analysis, const std::vector<SymbolFacts>& facts, std::string_view part);

}  // namespace kiln
