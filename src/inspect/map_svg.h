// The memory map as a picture.
#pragma once

#include <string>

#include "inspect/memory_map.h"

namespace kiln {

// An SVG 1.1 document without scripts.
std::string renderMapAsSvg(const MemoryMap& map);

}  // namespace kiln
