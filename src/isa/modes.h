// Addressing modes: their codes, their instruction sizes, and how much of an operand's text each one is made of.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace kiln {

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

inline constexpr size_t modeCount = 17;

// The bytes of an instruction in this mode, 1..3.
constexpr uint32_t instructionSize(Mode mode) {
  if (mode == Mode::Implied || mode == Mode::Accumulator) return 1;
  return mode >= Mode::Absolute && mode <= Mode::Indirect ? 3 : 2;
}

// The three-byte mode that stands in for a zero-page mode which a mnemonic lacks; any other mode stays as it is.
constexpr Mode absoluteForm(Mode mode) {
  switch (mode) {
    case Mode::ZeroPage:
      return Mode::Absolute;
    case Mode::ZeroPageX:
      return Mode::AbsoluteX;
    case Mode::ZeroPageY:
      return Mode::AbsoluteY;
    default:
      return mode;
  }
}

constexpr bool isStackMode(Mode mode) { return mode >= Mode::StackRelative; }

// How many characters a mode puts before and after the value of its operand: "(" and "),Y", say.
struct Decoration {
  uint8_t front;
  uint8_t back;
};

inline constexpr std::array<Decoration, modeCount> decorations = {{
    {0, 0},  // Implied
    {0, 0},  // Accumulator
    {1, 0},  // Immediate         #n
    {0, 0},  // ZeroPage          n
    {0, 2},  // ZeroPageX         n,X
    {0, 2},  // ZeroPageY         n,Y
    {0, 0},  // Absolute          n
    {0, 2},  // AbsoluteX         n,X
    {0, 2},  // AbsoluteY         n,Y
    {1, 1},  // Indirect          (n)
    {1, 3},  // IndexedIndirectX  (n,X)
    {1, 3},  // IndirectIndexedY  (n),Y
    {0, 0},  // Relative          n
    {0, 3},  // StackRelative     n,SP
    {3, 0},  // StackAdjust       SP,n
    {1, 6},  // StackIndirectY    (n,SP),Y
    {0, 5},  // StackRelativeX    n,SP,X
}};

}  // namespace kiln
