// A file image in the making: the pieces that the writers share.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kiln {

// The bytes of a file.
class Image {
 public:
  size_t size() const { return own_.size() + borrowedSize_; }

  void append(std::string_view bytes) { own_ += bytes; }
  void appendZeros(size_t count) { own_.append(count, '\0'); }
  // The same as append(), but long texts are not copied: they must stay as they are as long as the image is in use. A
  // program of 4 GB takes half the time and half the memory.
  void appendKept(std::string_view bytes);
  // All bytes of another image that has nothing but copies.
  void append(const Image& other) { own_ += other.own_; }

  // All bytes in order, in pieces; good until the image changes.
  std::vector<std::string_view> parts() const;

 private:
  struct Borrowed {
    size_t at;  // how many of the own bytes stand before it
    std::string_view bytes;
  };

  std::string own_;
  std::vector<Borrowed> borrowed_;
  size_t borrowedSize_ = 0;
};

// Values are cut to 8 bits, addresses to 16; address words are little-endian.
void appendByte(Image& image, uint32_t value);
void appendWord(Image& image, uint32_t address);
// The bytes must stay as they are as long as the image is in use.
void appendBytes(Image& image, std::span<const uint8_t> bytes);

// Both ends inclusive.
void appendRangeHeader(Image& image, uint32_t first, uint32_t last);

// Bytes spelled as pairs of hexadecimal digits; whatever is no such pair is passed over.
void appendHexText(Image& image, std::string_view text);

// The segment that tells the loader where to start the program.
void appendRunAddress(Image& image, uint32_t address);

// A header for the bytes from `address` on, then the bytes, which must stay as they are as long as the image is in use.
// The last address wraps at 16 bits.
void appendLoadSegment(Image& image, uint32_t address, std::span<const uint8_t> bytes);

// The segment that makes the loader call `address` at once.
void appendInitAddress(Image& image, uint32_t address);

// The instruction that stores A to a bank register: in the zero page where the address fits, absolute elsewhere.
void appendStoreToRegister(Image& image, uint32_t bankRegister);

// A routine of at least one byte that the loader calls at $03FD. It is loaded once more behind the call, and stays
// there for the program.
void appendPreloadInit(Image& image, const Image& stub);

}  // namespace kiln
