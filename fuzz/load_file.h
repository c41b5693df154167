// Binary-load files, read as a loader reads them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kiln::fuzz {

struct LoadRecord {
  uint32_t address;        // of the first byte
  std::string_view bytes;  // at least one, at most 65536
};

// The records behind the marker; absent when the file is not made of a marker and whole records. A last address below
// the first lies beyond the top of the memory.
std::optional<std::vector<LoadRecord>> parseLoadFile(std::string_view file);

// True for the record that sets the run address.
bool isRunAddress(const LoadRecord& record);

}  // namespace kiln::fuzz
