#include "output/image.h"

#include "base/hex.h"

namespace kiln {
namespace {

constexpr size_t longText = 64;  // borrowed from this size on; each costs two parts

}  // namespace

void Image::appendKept(std::string_view bytes) {
  if (bytes.size() < longText) return append(bytes);
  borrowed_.push_back({own_.size(), bytes});
  borrowedSize_ += bytes.size();
}

std::vector<std::string_view> Image::parts() const {
  std::vector<std::string_view> parts;
  const std::string_view own = own_;
  size_t at = 0;
  for (const Borrowed& borrowed : borrowed_) {
    parts.push_back(own.substr(at, borrowed.at - at));
    parts.push_back(borrowed.bytes);
    at = borrowed.at;
  }
  parts.push_back(own.substr(at));
  return parts;
}

void appendByte(Image& image, uint32_t value) {
  const char byte = static_cast<char>(value & 0xFF);
  image.append({&byte, 1});
}

void appendWord(Image& image, uint32_t address) {
  appendByte(image, address);
  appendByte(image, address >> 8);
}

void appendBytes(Image& image, std::span<const uint8_t> bytes) {
  image.appendKept({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

void appendHexText(Image& image, std::string_view text) {
  for (size_t i = 0; i + 1 < text.size(); ++i) {
    const int high = hexDigitValue(text[i]);
    const int low = hexDigitValue(text[i + 1]);
    if (high < 0 || low < 0) continue;
    appendByte(image, static_cast<uint32_t>(high * 16 + low));
    ++i;
  }
}

}  // namespace kiln
