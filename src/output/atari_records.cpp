#include "output/atari_records.h"

namespace kiln {
namespace {

// The loader jumps to the address in the first word at the end of the file, and calls that in the second at once.
constexpr uint32_t runVector = 0x02E0;
constexpr uint32_t initVector = 0x02E2;

constexpr uint32_t preloadAddress = 0x03FD;

void appendVector(Image& image, uint32_t vector, uint32_t address) {
  appendRangeHeader(image, vector, vector + 1);
  appendWord(image, address);
}

void appendPreload(Image& image, const Image& routine) {
  appendRangeHeader(image, preloadAddress, preloadAddress + static_cast<uint32_t>(routine.size()) - 1);
  image.append(routine);
}

}  // namespace

void appendMarker(Image& image) { appendWord(image, 0xFFFF); }

void appendRangeHeader(Image& image, uint32_t first, uint32_t last) {
  appendWord(image, first);
  appendWord(image, last);
}

void appendLoadSegment(Image& image, uint32_t address, std::span<const uint8_t> bytes) {
  appendRangeHeader(image, address, address + static_cast<uint32_t>(bytes.size()) - 1);
  appendBytes(image, bytes);
}

void appendRunAddress(Image& image, uint32_t address) { appendVector(image, runVector, address); }

void appendInitAddress(Image& image, uint32_t address) { appendVector(image, initVector, address); }

void appendPreloadInit(Image& image, const Image& routine) {
  appendPreload(image, routine);
  appendInitAddress(image, preloadAddress);
  appendPreload(image, routine);
}

}  // namespace kiln
