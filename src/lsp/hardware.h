// What the built-in names of the Atari stand for.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace kiln {

struct HardwareName {
  std::string_view name;
  uint16_t address;
  std::string_view chip;   // or the system's variables
  std::string_view about;  // what it is, whether read or written; empty when the two below say it all
  std::string_view read;   // what reading gives; empty when that says nothing new
  std::string_view write;  // what writing does; likewise
};

// A row for each built-in name, in the order of their addresses.
std::span<const HardwareName> hardwareNames();

// Null when the name, in any letter case, is not built in, or stands for another address.
const HardwareName* findHardware(std::string_view name, int64_t address);

}  // namespace kiln
