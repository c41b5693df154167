// A file image in the making: the pieces that the writers share.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kiln {

// The bytes of a file. Values are cut to 8 bits, addresses to 16; address words are little-endian.
using Image = std::string;

void appendByte(Image& image, uint32_t value);
void appendWord(Image& image, uint32_t address);
void appendBytes(Image& image, std::span<const uint8_t> bytes);

// Both ends inclusive.
void appendRangeHeader(Image& image, uint32_t first, uint32_t last);

// Bytes spelled as pairs of hexadecimal digits; whatever is no such pair is passed over.
void appendHexText(Image& image, std::string_view text);

// The segment that tells the loader where to start the program.
void appendRunAddress(Image& image, uint32_t address);

// A header for `size` bytes from `address`, then the bytes. The last address wraps at 16 bits.
void appendLoadSegment(Image& image, uint32_t address, std::span<const uint8_t> bytes);

// The segment that makes the loader call `address` at once.
void appendInitAddress(Image& image, uint32_t address);

// The instruction that stores A to a bank register: in the zero page where the address fits, absolute elsewhere.
void appendStoreToRegister(Image& image, uint32_t bankRegister);

// A routine of at least one byte that the loader calls at $03FD. It is loaded once more behind the call, and stays
// there for the program.
void appendPreloadInit(Image& image, const Image& stub);

}  // namespace kiln
