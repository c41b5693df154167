// A file image: the bytes of the output file, as a writer appends them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kiln {

class Image {
 public:
  size_t size() const { return own_.size() + borrowedSize_; }

  void append(std::string_view bytes) { own_ += bytes; }
  void appendZeros(size_t count) { own_.append(count, '\0'); }
  // Like append(), but does not copy a long text, which must stay unchanged while the image is in use. This halves time
  // and memory for a program of 4 GB.
  void appendKept(std::string_view bytes);
  // All bytes of another image, to which only copies were appended.
  void append(const Image& other) { own_ += other.own_; }

  // All bytes in order; valid until the image changes.
  std::vector<std::string_view> parts() const;

 private:
  struct Borrowed {
    size_t at;  // the number of own bytes before it
    std::string_view bytes;
  };

  std::string own_;
  std::vector<Borrowed> borrowed_;
  size_t borrowedSize_ = 0;
};

// Values are cut to 8 bits, addresses to 16. The low byte of an address comes first.
void appendByte(Image& image, uint32_t value);
void appendWord(Image& image, uint32_t address);
// The bytes must stay unchanged while the image is in use.
void appendBytes(Image& image, std::span<const uint8_t> bytes);

// Bytes written as pairs of hexadecimal digits. Everything else in the text is skipped.
void appendHexText(Image& image, std::string_view text);

}  // namespace kiln
