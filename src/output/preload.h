// The routines by which a file that is loading switches banks.
#pragma once

#include <cstdint>

#include "output/bank_values.h"
#include "output/image.h"

namespace kiln {

// Appends the routines to one image, in pairs: select, then the segment itself, then reset. It remembers what the data
// register holds, and leaves out the stores to it that would change nothing.
class BankPreload {
 public:
  explicit BankPreload(const BankedSettings& settings) : settings_(settings) {}

  // Shows a bank.
  void appendSelect(Image& image, BankValue bank);
  // Shows bank 0 in its stead.
  void appendReset(Image& image, BankKind kind);

 private:
  static constexpr int32_t unknown = -1;

  uint32_t registerFor(BankKind kind) const;

  BankedSettings settings_;
  int32_t highByte_ = unknown;  // what the data register holds in plain banking
};

}  // namespace kiln
