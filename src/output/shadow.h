// Shadow staging: code for the memory under the OS ROM, packed behind a routine that copies it there.
#pragma once

#include <cstdint>
#include <vector>

#include "host/console.h"
#include "output/image.h"
#include "output/pieces.h"

namespace kiln {

// Appends the staging segment for `pieces` at `stageAddress` (1..65535), and the segment that makes the loader run it.
// False when it does not fit, which has been printed then; the image is as it was.
bool stageShadow(Image& image, uint32_t stageAddress, const std::vector<Piece>& pieces, Console& console);

}  // namespace kiln
