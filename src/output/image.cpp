#include "output/image.h"

#include "base/hex.h"

namespace kiln {

namespace {

constexpr size_t longText = size_t{64} * 1024;

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

void appendRangeHeader(Image& image, uint32_t first, uint32_t last) {
  appendWord(image, first);
  appendWord(image, last);
}

void appendHexText(Image& image, std::string_view text) {
  for (size_t i = 0; i + 1 < text.size();) {
    const int high = hexDigitValue(text[i]);
    const int low = hexDigitValue(text[i + 1]);
    if (high < 0 || low < 0) {
      ++i;
      continue;
    }
    appendByte(image, static_cast<uint32_t>(high * 16 + low));
    i += 2;
  }
}

void appendRunAddress(Image& image, uint32_t address) {
  appendRangeHeader(image, 0x02E0, 0x02E1);
  appendWord(image, address);
}

void appendLoadSegment(Image& image, uint32_t address, std::span<const uint8_t> bytes) {
  appendRangeHeader(image, address, address + static_cast<uint32_t>(bytes.size()) - 1);
  appendBytes(image, bytes);
}

void appendInitAddress(Image& image, uint32_t address) {
  appendRangeHeader(image, 0x02E2, 0x02E3);
  appendWord(image, address);
}

void appendStoreToRegister(Image& image, uint32_t bankRegister) {
  if (bankRegister < 0x100) {
    appendByte(image, 0x85);  // STA zero page
    appendByte(image, bankRegister);
  } else {
    appendByte(image, 0x8D);  // STA absolute
    appendWord(image, bankRegister);
  }
}

void appendPreloadInit(Image& image, const Image& stub) {
  constexpr uint32_t address = 0x03FD;
  const uint32_t last = address + static_cast<uint32_t>(stub.size()) - 1;
  appendRangeHeader(image, address, last);
  image.append(stub);
  appendInitAddress(image, address);
  appendRangeHeader(image, address, last);
  image.append(stub);
}

}  // namespace kiln
