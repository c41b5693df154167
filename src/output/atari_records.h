// The Atari binary-load file: records of a first address, a last address and the bytes between them.
#pragma once

#include <cstdint>
#include <span>

#include "output/image.h"

namespace kiln {

// The marker that the file begins with.
void appendMarker(Image& image);

// The two addresses that begin a record; the bytes follow.
void appendRangeHeader(Image& image, uint32_t first, uint32_t last);

// A record with at least one byte. The last address wraps at 16 bits. The bytes must stay unchanged while the image is
// in use.
void appendLoadSegment(Image& image, uint32_t address, std::span<const uint8_t> bytes);

// The record with the address at which the program starts.
void appendRunAddress(Image& image, uint32_t address);

// The record that makes the loader call `address` before it reads on.
void appendInitAddress(Image& image, uint32_t address);

// Records that load a routine of at least one byte at $03FD, call it, and load it again.
void appendPreloadInit(Image& image, const Image& routine);

}  // namespace kiln
