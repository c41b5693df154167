// The colours of a PAL machine.
#pragma once

#include <array>
#include <cstdint>

namespace kiln {

// $RRGGBB for each of the chips' 256 colours.
std::array<uint32_t, 256> makePalette();

}  // namespace kiln
