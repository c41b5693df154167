// The bytes after an opcode, and the messages about values that do not fit.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/diagnostics.h"
#include "isa/modes.h"
#include "isa/opcodes.h"

namespace kiln {

// An operand and the instruction that it belongs to.
struct Operand {
  Mnemonic mnemonic;
  Mode mode;                    // any but Implied and Accumulator
  uint32_t line;                // number of the line, for messages
  uint32_t pc;                  // address of the opcode byte, 0..65535
  std::string_view text;        // the whole operand
  std::string_view expression;  // the operand without the mode's own characters
  int64_t value;                // of the expression
};

// Appends the one or two bytes of the value. One that does not fit is cut and reported.
void encodeOperand(const Operand& operand, Diagnostics& diagnostics, std::vector<uint8_t>& bytes);

}  // namespace kiln
