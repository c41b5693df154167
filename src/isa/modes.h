// Addressing modes. All facts of a mode are in its row, except its opcodes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace kiln {

// The order has no meaning.
enum class Mode : uint8_t {
  Implied,
  Accumulator,
  Immediate,
  ZeroPage,
  ZeroPageX,
  ZeroPageY,
  Absolute,
  AbsoluteX,
  AbsoluteY,
  Indirect,
  IndexedIndirectX,
  IndirectIndexedY,
  Relative,
  StackRelative,
  StackAdjust,
  StackIndirectY,
  StackRelativeX,
};

// How an operand's value is checked and encoded.
enum class OperandKind : uint8_t {
  None,
  Immediate,
  Address,
  ZeroPagePointer,
  BranchTarget,
  StackOffset,
};

struct ModeRow {
  Mode mode;
  uint8_t size;             // bytes of the instruction, 1..3
  std::string_view before;  // what the operand has before its value, in lower case: the "(" of "(n),y"
  std::string_view after;   // what it has after its value: the "),y"
  OperandKind operand;
  Mode absolute;  // of a zero-page mode the three-byte mode with the same spelling, else the mode itself
};

// clang-format off
inline constexpr ModeRow modeRows[] = {
    {Mode::Implied,          1, "",    "",       OperandKind::None,            Mode::Implied},
    {Mode::Accumulator,      1, "",    "",       OperandKind::None,            Mode::Accumulator},
    {Mode::Immediate,        2, "#",   "",       OperandKind::Immediate,       Mode::Immediate},
    {Mode::ZeroPage,         2, "",    "",       OperandKind::Address,         Mode::Absolute},
    {Mode::ZeroPageX,        2, "",    ",x",     OperandKind::Address,         Mode::AbsoluteX},
    {Mode::ZeroPageY,        2, "",    ",y",     OperandKind::Address,         Mode::AbsoluteY},
    {Mode::Absolute,         3, "",    "",       OperandKind::Address,         Mode::Absolute},
    {Mode::AbsoluteX,        3, "",    ",x",     OperandKind::Address,         Mode::AbsoluteX},
    {Mode::AbsoluteY,        3, "",    ",y",     OperandKind::Address,         Mode::AbsoluteY},
    {Mode::Indirect,         3, "(",   ")",      OperandKind::Address,         Mode::Indirect},
    {Mode::IndexedIndirectX, 2, "(",   ",x)",    OperandKind::ZeroPagePointer, Mode::IndexedIndirectX},
    {Mode::IndirectIndexedY, 2, "(",   "),y",    OperandKind::ZeroPagePointer, Mode::IndirectIndexedY},
    {Mode::Relative,         2, "",    "",       OperandKind::BranchTarget,    Mode::Relative},
    {Mode::StackRelative,    2, "",    ",sp",    OperandKind::StackOffset,     Mode::StackRelative},
    {Mode::StackAdjust,      2, "sp,", "",       OperandKind::StackOffset,     Mode::StackAdjust},
    {Mode::StackIndirectY,   2, "(",   ",sp),y", OperandKind::StackOffset,     Mode::StackIndirectY},
    {Mode::StackRelativeX,   2, "",    ",sp,x",  OperandKind::StackOffset,     Mode::StackRelativeX},
};
// clang-format on

inline constexpr size_t modeCount = std::size(modeRows);
static_assert(modeCount == static_cast<size_t>(Mode::StackRelativeX) + 1, "a mode without a row");

constexpr bool rowsAreInOrder() {
  for (size_t i = 0; i < modeCount; ++i) {
    if (modeRows[i].mode != static_cast<Mode>(i)) return false;
  }
  return true;
}
static_assert(rowsAreInOrder());

constexpr const ModeRow& rowOf(Mode mode) { return modeRows[static_cast<size_t>(mode)]; }

constexpr uint32_t instructionSize(Mode mode) { return rowOf(mode).size; }
constexpr Mode absoluteForm(Mode mode) { return rowOf(mode).absolute; }

}  // namespace kiln
