// The Commodore program file.
#pragma once

#include <optional>
#include <vector>

#include "output/image.h"
#include "output/segment.h"

namespace kiln {

// The load address and the memory from there on, gaps filled with zeros. A segment that starts inside the one before it
// is appended at the end of the file, so it is loaded above its own address. Absent when no segment has a byte.
std::optional<Image> writePrg(const std::vector<AsSegment>& segments);

}  // namespace kiln
