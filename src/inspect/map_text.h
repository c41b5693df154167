// The memory map as text.
#pragma once

#include <string>

#include "inspect/memory_map.h"

namespace kiln {

std::string renderMapAsText(const MemoryMap& map);

}  // namespace kiln
