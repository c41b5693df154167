// What the instructions do, in a line each.
#pragma once

#include <string_view>

#include "isa/modes.h"
#include "isa/opcodes.h"

namespace kiln {

struct MnemonicText {
  Mnemonic mnemonic;
  std::string_view does;
  std::string_view flags;  // those that it changes, "NVBDIZC"; "-" when there are none, empty when that is not known
};

// The mnemonic is not None.
const MnemonicText& textOf(Mnemonic mnemonic);

// "immediate", "zero page", "indirect, indexed with Y".
std::string_view nameOf(Mode mode);

}  // namespace kiln
