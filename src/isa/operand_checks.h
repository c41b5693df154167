// The bytes behind an opcode: what an operand's value becomes, and what is said when it does not fit.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/diagnostics.h"
#include "isa/modes.h"
#include "isa/opcodes.h"

namespace kiln {

// An instruction whose opcode byte stands already and whose operand has been evaluated.
struct Operand {
  Mnemonic mnemonic;
  Mode mode;                    // any but Implied and Accumulator
  uint32_t line;                // for the messages
  uint32_t pc;                  // address of the opcode byte, 0..65535
  std::string_view text;        // as it stands in the statement
  std::string_view expression;  // without the decorations of the mode
  int64_t value;
};

// Appends one or two bytes. What does not fit is cut and reported; the bytes come in any case.
void encodeOperand(const Operand& operand, Diagnostics& diagnostics, std::vector<uint8_t>& bytes);

}  // namespace kiln
