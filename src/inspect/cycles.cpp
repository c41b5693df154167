#include "inspect/cycles.h"

namespace kiln {
namespace {

// What an instruction does with its operand decides how long it takes in a mode.
struct ModeTimes {
  Mode mode;
  uint8_t read;
  uint8_t write;
  uint8_t modify;
  bool readMayGrow;
};

// clang-format off
constexpr ModeTimes modeTimes[] = {
    //                     read write modify grows
    {Mode::Accumulator,      0,    0,     2, false},
    {Mode::Immediate,        2,    0,     0, false},
    {Mode::ZeroPage,         3,    3,     5, false},
    {Mode::ZeroPageX,        4,    4,     6, false},
    {Mode::ZeroPageY,        4,    4,     0, false},
    {Mode::Absolute,         4,    4,     6, false},
    {Mode::AbsoluteX,        4,    5,     7, true},
    {Mode::AbsoluteY,        4,    5,     0, true},
    {Mode::IndexedIndirectX, 6,    6,     0, false},
    {Mode::IndirectIndexedY, 5,    6,     0, true},
};
// clang-format on

constexpr uint8_t shortest = 2;

bool isExtension(Mnemonic mnemonic) { return mnemonic > Mnemonic::TYA; }

// Of the instructions without an operand in memory, and of jumps.
Cycles controlCycles(Mnemonic mnemonic, Mode mode) {
  switch (mnemonic) {
    case Mnemonic::BRK:
      return {7, false};
    case Mnemonic::JSR:
    case Mnemonic::RTI:
    case Mnemonic::RTS:
      return {6, false};
    case Mnemonic::PLA:
    case Mnemonic::PLP:
      return {4, false};
    case Mnemonic::PHA:
    case Mnemonic::PHP:
      return {3, false};
    case Mnemonic::JMP:
      return {static_cast<uint8_t>(mode == Mode::Indirect ? 5 : 3), false};
    default:
      return {shortest, false};
  }
}

Cycles memoryCycles(Mnemonic mnemonic, const ModeTimes& times) {
  switch (mnemonic) {
    case Mnemonic::STA:
    case Mnemonic::STX:
    case Mnemonic::STY:
      return {times.write, false};
    case Mnemonic::ASL:
    case Mnemonic::DEC:
    case Mnemonic::INC:
    case Mnemonic::LSR:
    case Mnemonic::ROL:
    case Mnemonic::ROR:
      return {times.modify, false};
    default:
      return {times.read, times.readMayGrow};
  }
}

}  // namespace

std::optional<Cycles> cyclesOf(Mnemonic mnemonic, Mode mode) {
  if (isExtension(mnemonic) || opcodeFor(mnemonic, mode) < 0) return std::nullopt;
  const bool isJump = mnemonic == Mnemonic::JMP || mnemonic == Mnemonic::JSR;
  if (isJump || mode == Mode::Implied || mode == Mode::Relative) return controlCycles(mnemonic, mode);
  for (const ModeTimes& times : modeTimes) {
    if (times.mode == mode) return memoryCycles(mnemonic, times);
  }
  return std::nullopt;
}

uint32_t takenBranchCycles(uint32_t address, uint32_t target) {
  const uint32_t next = (address + 2) & 0xFFFF;
  return next >> 8 == target >> 8 ? shortest + 1 : shortest + 2;
}

}  // namespace kiln
