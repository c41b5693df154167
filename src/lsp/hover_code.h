// What is said of instructions, macros and their parameters.
#pragma once

#include <string_view>

#include "lsp/analysis.h"
#include "lsp/code_tokens.h"
#include "lsp/hover_text.h"

namespace kiln {

// `line` is the line of the file that has the mnemonic.
void describeInstruction(const Analysis& analysis, const Token& mnemonic, std::string_view line, HoverText& hover);

// Of a call also what it makes.
void describeMacro(const Analysis& analysis, const Occurrence& name, HoverText& hover);
void describeParameter(const Analysis& analysis, const Occurrence& name, HoverText& hover);

}  // namespace kiln
