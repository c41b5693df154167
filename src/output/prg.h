// The Commodore program file.
#pragma once

#include <optional>
#include <vector>

#include "output/image.h"
#include "output/segment.h"

namespace kiln {

// The load address and the memory from there on, gaps filled with zeros. A segment that starts inside the one before it
// is appended where the file ends, so that it lands higher than its own address. Absent when no segment holds a byte.
std::optional<Image> writePrg(const std::vector<AsSegment>& segments);

}  // namespace kiln
