// The parts of a program that its full labels begin.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "inspect/placements.h"
#include "inspect/program.h"

namespace kiln {

// From one full label to the next, or to where the source moves to another address.
struct Routine {
  std::string_view name;
  Place place;           // of the label; line 0: none
  uint32_t segment = 0;  // index; of the next one when none is open
  uint32_t address = 0;  // 0..65535
  uint64_t size = 0;
  bool isCode = false;  // begins with an instruction
};

// In the order of the source, those without bytes left out.
std::vector<Routine> listRoutines(const Program& program, const Placements& placements);

}  // namespace kiln
