#include "lsp/mnemonics.h"

#include <array>

namespace kiln {
namespace {

// clang-format off
constexpr std::array<MnemonicText, mnemonicCount> texts = {{
    {Mnemonic::ADC, "adds the operand and the carry to A", "NVZC"},
    {Mnemonic::AND, "A = A and the operand, bit by bit", "NZ"},
    {Mnemonic::ASL, "shifts left: a 0 comes in, bit 7 goes to the carry", "NZC"},
    {Mnemonic::BCC, "branches when the carry is clear (after a comparison: less)", "-"},
    {Mnemonic::BCS, "branches when the carry is set (after a comparison: greater or equal)", "-"},
    {Mnemonic::BEQ, "branches when the result was zero, or equal", "-"},
    {Mnemonic::BMI, "branches when bit 7 of the result was set", "-"},
    {Mnemonic::BNE, "branches when the result was not zero, or not equal", "-"},
    {Mnemonic::BPL, "branches when bit 7 of the result was clear", "-"},
    {Mnemonic::BVC, "branches when there was no overflow", "-"},
    {Mnemonic::BVS, "branches when there was an overflow", "-"},
    {Mnemonic::BIT, "tests memory: Z = none of the bits in A, N = bit 7, V = bit 6", "NVZ"},
    {Mnemonic::BRK, "interrupt: pushes the address after the next byte and the flags, jumps through $FFFE", "I"},
    {Mnemonic::CLC, "clears the carry", "C"},
    {Mnemonic::CLD, "turns decimal arithmetic off", "D"},
    {Mnemonic::CLI, "allows interrupts", "I"},
    {Mnemonic::CLV, "clears the overflow flag", "V"},
    {Mnemonic::CMP, "compares A with the operand", "NZC"},
    {Mnemonic::CPX, "compares X with the operand", "NZC"},
    {Mnemonic::CPY, "compares Y with the operand", "NZC"},
    {Mnemonic::DEC, "subtracts 1 from memory", "NZ"},
    {Mnemonic::DEX, "subtracts 1 from X", "NZ"},
    {Mnemonic::DEY, "subtracts 1 from Y", "NZ"},
    {Mnemonic::EOR, "A = A exclusive-or the operand, bit by bit", "NZ"},
    {Mnemonic::INC, "adds 1 to memory", "NZ"},
    {Mnemonic::INX, "adds 1 to X", "NZ"},
    {Mnemonic::INY, "adds 1 to Y", "NZ"},
    {Mnemonic::JMP, "jumps", "-"},
    {Mnemonic::JSR, "calls a routine: pushes the address of its own last byte, jumps", "-"},
    {Mnemonic::LDA, "loads A", "NZ"},
    {Mnemonic::LDX, "loads X", "NZ"},
    {Mnemonic::LDY, "loads Y", "NZ"},
    {Mnemonic::LSR, "shifts right: a 0 comes in, bit 0 goes to the carry", "NZC"},
    {Mnemonic::NOP, "does nothing", "-"},
    {Mnemonic::ORA, "A = A or the operand, bit by bit", "NZ"},
    {Mnemonic::PHA, "pushes A", "-"},
    {Mnemonic::PHP, "pushes the flags", "-"},
    {Mnemonic::PLA, "pulls A", "NZ"},
    {Mnemonic::PLP, "pulls the flags", "NVDIZC"},
    {Mnemonic::ROL, "rotates left: the carry comes in, bit 7 goes to the carry", "NZC"},
    {Mnemonic::ROR, "rotates right: the carry comes in, bit 0 goes to the carry", "NZC"},
    {Mnemonic::RTI, "returns from an interrupt: pulls the flags and the address", "NVDIZC"},
    {Mnemonic::RTS, "returns from a routine", "-"},
    {Mnemonic::SBC, "subtracts the operand from A, and 1 more when the carry is clear", "NVZC"},
    {Mnemonic::SEC, "sets the carry", "C"},
    {Mnemonic::SED, "turns decimal arithmetic on", "D"},
    {Mnemonic::SEI, "keeps interrupts off", "I"},
    {Mnemonic::STA, "stores A", "-"},
    {Mnemonic::STX, "stores X", "-"},
    {Mnemonic::STY, "stores Y", "-"},
    {Mnemonic::TAX, "copies A to X", "NZ"},
    {Mnemonic::TAY, "copies A to Y", "NZ"},
    {Mnemonic::TSX, "copies the stack pointer to X", "NZ"},
    {Mnemonic::TXA, "copies X to A", "NZ"},
    {Mnemonic::TXS, "copies X to the stack pointer", "-"},
    {Mnemonic::TYA, "copies Y to A", "NZ"},
    // Of the pell machine no more is known than the manual says.
    {Mnemonic::ADD, "adds to the stack pointer; an instruction of the pell machine", ""},
    {Mnemonic::PSH, "for data on the stack; an instruction of the pell machine", ""},
    {Mnemonic::PLL, "for data on the stack; an instruction of the pell machine", ""},
    {Mnemonic::PHX, "an instruction of the pell machine", ""},
    {Mnemonic::PHY, "an instruction of the pell machine", ""},
    {Mnemonic::PLX, "an instruction of the pell machine", ""},
    {Mnemonic::PLY, "an instruction of the pell machine", ""},
    {Mnemonic::BRA, "branches always; an ordinary 6502 does not have it", ""},
}};

constexpr bool textsAreInOrder() {
  for (size_t i = 0; i < texts.size(); ++i) {
    if (texts[i].mnemonic != static_cast<Mnemonic>(i + 1)) return false;
  }
  return true;
}
static_assert(textsAreInOrder());

// In the order of modeRows.
constexpr std::array<std::string_view, modeCount> modeNames = {
    "implied", "accumulator", "immediate",
    "zero page", "zero page, indexed with X", "zero page, indexed with Y",
    "absolute", "absolute, indexed with X", "absolute, indexed with Y",
    "indirect", "indexed with X, indirect", "indirect, indexed with Y",
    "relative",
    "at the stack pointer", "stack pointer", "through a pointer on the stack, indexed with Y",
    "at the stack pointer, indexed with X",
};
// clang-format on
static_assert(static_cast<size_t>(Mode::StackRelativeX) == 16 && static_cast<size_t>(Mode::Relative) == 12);

}  // namespace

const MnemonicText& textOf(Mnemonic mnemonic) { return texts[static_cast<size_t>(mnemonic) - 1]; }

std::string_view nameOf(Mode mode) { return modeNames[static_cast<size_t>(mode)]; }

}  // namespace kiln
