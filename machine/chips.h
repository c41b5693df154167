// The registers of an Atari's chips that programs store to, as they were last stored. Programs read other things at the
// same addresses, so plain memory cannot hold them.
#pragma once

#include <array>
#include <cstdint>

namespace kiln {

struct Chips {
  std::array<uint8_t, 32> gtia = {};   // from $D000 on: players, missiles and colours
  std::array<uint8_t, 16> pokey = {};  // from $D200 on: sound
  std::array<uint8_t, 16> antic = {};  // from $D400 on: the display list and its memory
};

// Places in `gtia`.
inline constexpr int playerPosition = 0x00, missilePosition = 0x04, playerSize = 0x08, missileSize = 0x0C;
inline constexpr int playerShape = 0x0D, missileShape = 0x11, playerColour = 0x12, fieldColour = 0x16;
inline constexpr int backgroundColour = 0x1A, priority = 0x1B, graphicsControl = 0x1D, clearCollisions = 0x1E;

// Places in `antic`.
inline constexpr int dmaControl = 0x00, displayListAddress = 0x02, horizontalScroll = 0x04, playerPage = 0x07;
inline constexpr int fontPage = 0x09, waitForSync = 0x0A, interruptEnable = 0x0E;

}  // namespace kiln
