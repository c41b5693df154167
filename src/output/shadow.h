// Shadow staging: code for the memory under the OS ROM, loaded with a routine that copies it there.
#pragma once

#include <cstdint>
#include <vector>

#include "host/console.h"
#include "output/image.h"
#include "output/pieces.h"

namespace kiln {

// The size of the staging segment for `pieces`.
uint64_t stageSize(const std::vector<Piece>& pieces);

// Appends the staging segment for `pieces` at `stageAddress` (1..65535), and the record that makes the loader call it.
// False when it does not fit: a message has been printed, and the image is unchanged.
bool stageShadow(Image& image, uint32_t stageAddress, const std::vector<Piece>& pieces, Console& console);

}  // namespace kiln
