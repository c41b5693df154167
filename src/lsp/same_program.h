// Whether a program is still the same after an edit.
#pragma once

#include <string>

#include "lsp/analysis.h"

namespace kiln {

struct NameChange {
  std::string from;
  std::string to;
};

// What differs between a program and the one with other names, in a few words; empty when nothing does: all bytes, all
// messages but for the changed name, all statements, and what each name stands for. Neither has an error().
std::string differenceOf(const Analysis& before, const Analysis& after, const NameChange& change);

// True when both assemble, to the same bytes and, but for blanks, the same messages. Neither has an error().
bool areSameButBlanks(const Analysis& before, const Analysis& after);

}  // namespace kiln
