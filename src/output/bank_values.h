// Which bank each segment of a banked program goes to: one rule for the writer and for calls between banks.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace kiln {

// Banking as the command line and the layout set it: addresses, and ranges with inclusive ends.
struct BankedSettings {
  uint32_t bankWindowLow = 0;     // 0 = $4000
  uint32_t bankWindowHigh = 0;    // 0 = $7FFF
  uint32_t codeBankRegister = 0;  // 0 = none
  uint32_t dataBankRegister = 0;  // 0 is an address like any other
  bool splitBank = false;         // the window has a code half and a data half
  uint32_t dataWindowLow = 0;     // the data half
  uint32_t dataWindowHigh = 0;
  uint32_t regcWindowLow = 0;  // there is regc banking when this and regcRegisterLow are not 0
  uint32_t regcWindowHigh = 0;
  uint32_t regcRegisterLow = 0;
  uint32_t regcRegisterHigh = 0;  // 0 = none
  uint32_t mainRegionLow = 0;     // 0 = $A000
  uint32_t mainRegionHigh = 0;    // 0 = $BFFF
};

// The settings with each missing value that has a default replaced by it.
BankedSettings withDefaults(BankedSettings settings);

enum class BankKind : uint8_t { Plain, CodeHalf, DataHalf, Regc };

struct BankValue {
  BankKind kind;
  uint16_t value;  // what the registers must hold
};

// The register that shows a bank of this kind: it takes the low byte of the bank's value.
uint32_t bankRegister(const BankedSettings& settings, BankKind kind);

// Numbers the segments of a program. Call next() for every segment that is not cloaked, empty ones too, in list order.
class BankCounters {
 public:
  explicit BankCounters(const BankedSettings& settings);

  // The bank of the segment that starts at `start` and has the number `bank` (-1 = none). Absent when the segment
  // starts outside the bank window, and so is not banked.
  std::optional<BankValue> next(uint32_t start, int32_t bank);

 private:
  BankKind kindAt(uint32_t start) const;

  BankedSettings settings_;
  std::array<uint16_t, 4> counters_{1, 1, 1, 1};  // by kind; 0 follows 65535
};

}  // namespace kiln
