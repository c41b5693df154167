// The 64-bit arithmetic of expressions. It wraps on overflow and never traps. Nowhere else do signed numbers overflow.
#pragma once

#include <cstdint>

namespace kiln {

constexpr int64_t wrappingAdd(int64_t a, int64_t b) {
  return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b));
}
constexpr int64_t wrappingSubtract(int64_t a, int64_t b) {
  return static_cast<int64_t>(static_cast<uint64_t>(a) - static_cast<uint64_t>(b));
}
constexpr int64_t wrappingMultiply(int64_t a, int64_t b) {
  return static_cast<int64_t>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b));
}

// The quotient, rounded toward zero; 0 for a divisor of 0. The lowest number divided by -1 wraps.
constexpr int64_t definedDivide(int64_t a, int64_t b) {
  if (b == 0) return 0;
  return b == -1 ? wrappingSubtract(0, a) : a / b;
}

constexpr uint8_t lowByte(int64_t value) { return static_cast<uint8_t>(value & 0xFF); }
constexpr uint8_t highByte(int64_t value) { return static_cast<uint8_t>((value >> 8) & 0xFF); }
constexpr uint32_t low16(int64_t value) { return static_cast<uint32_t>(value & 0xFFFF); }
constexpr int32_t low16Signed(int64_t value) { return static_cast<int16_t>(static_cast<uint16_t>(value & 0xFFFF)); }
constexpr uint32_t low32(int64_t value) { return static_cast<uint32_t>(value & 0xFFFFFFFF); }

}  // namespace kiln
