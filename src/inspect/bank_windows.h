// The addresses that show a program's banks, and the registers that choose them.
#pragma once

#include <cstdint>
#include <vector>

#include "inspect/placements.h"
#include "inspect/program.h"
#include "output/bank_values.h"

namespace kiln {

// Addresses from `first` to `last`, 0..65535.
struct AddressRange {
  uint32_t first = 0;
  uint32_t last = 0;

  uint32_t size() const { return last - first + 1; }
};

// The addresses that show a bank of this kind.
AddressRange windowOf(BankKind kind, const BankedSettings& settings);

struct SwitchedWindow {
  AddressRange range;
  uint32_t lowRegister = 0;   // takes the low byte of the bank's value
  uint32_t highRegister = 0;  // takes its high byte; 0 = none
};

// One for each kind of bank that the program's file has; none for a file without banks. The program must be assembled.
std::vector<SwitchedWindow> switchedWindows(const Program& program, const Placements& placements);

}  // namespace kiln
