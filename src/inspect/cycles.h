// How many cycles the instructions of the 6502 take.
#pragma once

#include <cstdint>
#include <optional>

#include "isa/modes.h"
#include "isa/opcodes.h"

namespace kiln {

struct Cycles {
  uint8_t count;  // 2..7; of a branch, when it is not taken
  bool mayGrow;   // one more when indexing leads to the next page
};

// Absent for what the 6502 lacks: `BRA` and the extensions of the pell machine.
std::optional<Cycles> cyclesOf(Mnemonic mnemonic, Mode mode);

// The cycles of a taken branch that is at `address` and goes to `target`, both 0..65535.
uint32_t takenBranchCycles(uint32_t address, uint32_t target);

}  // namespace kiln
