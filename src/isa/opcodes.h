// The instruction set: one row for each mnemonic and mode that go together, and look-ups in these rows.
#pragma once

#include <cstdint>
#include <string_view>

#include "isa/modes.h"

namespace kiln {

// In the order of the opcode table.
enum class Mnemonic : uint8_t {
  // clang-format off
  None,
  ADC, AND, ASL, BCC, BCS, BEQ, BMI, BNE, BPL, BVC, BVS, BIT, BRK, CLC, CLD, CLI, CLV, CMP, CPX, CPY, DEC, DEX, DEY,
  EOR, INC, INX, INY, JMP, JSR, LDA, LDX, LDY, LSR, NOP, ORA, PHA, PHP, PLA, PLP, ROL, ROR, RTI, RTS, SBC, SEC, SED,
  SEI, STA, STX, STY, TAX, TAY, TSX, TXA, TXS, TYA, ADD, PSH, PLL, PHX, PHY, PLX, PLY, BRA,
  // clang-format on
};

inline constexpr size_t mnemonicCount = 64;

// The mnemonic with this name, in any letter case; None when there is none.
Mnemonic mnemonicOf(std::string_view word);

// Upper-case text of three letters; empty for None.
std::string_view mnemonicText(Mnemonic mnemonic);

// The opcode byte, 0..255, or -1 when the mnemonic lacks the mode.
int opcodeFor(Mnemonic mnemonic, Mode mode);

inline bool isBranch(Mnemonic mnemonic) { return opcodeFor(mnemonic, Mode::Relative) >= 0; }

// The branch taken exactly when this one is not; None for BRA and for what is not a branch.
Mnemonic invertBranch(Mnemonic branch);

struct OpcodeRow {
  Mnemonic mnemonic;
  Mode mode;
  uint8_t opcode;
};

inline constexpr size_t opcodeRowCount = 172;
// The first row.
const OpcodeRow* opcodeRows();

}  // namespace kiln
