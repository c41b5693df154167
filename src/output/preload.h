// Routines that switch banks while a file loads.
#pragma once

#include <cstdint>

#include "output/bank_values.h"
#include "output/image.h"

namespace kiln {

// Appends the routines to one image, in pairs: select before a segment, reset after it. Stores to the data register
// that would change nothing are left out.
class BankPreload {
 public:
  explicit BankPreload(const BankedSettings& settings) : settings_(settings) {}

  // Shows a bank.
  void appendSelect(Image& image, BankValue bank);
  // Shows bank 0 again.
  void appendReset(Image& image, BankKind kind);

 private:
  BankedSettings settings_;
  int32_t highByte_ = -1;  // in the data register, in plain banking; -1 = unknown
};

}  // namespace kiln
