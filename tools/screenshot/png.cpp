#include "png.h"

#include <algorithm>
#include <bit>
#include <string_view>
#include <utility>

namespace kiln::screenshot {
namespace {

constexpr uint32_t longestMatch = 258;
constexpr uint32_t shortestMatch = 3;

std::string bigEndian(uint32_t value) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8)
    bytes += static_cast<char>(value >> shift);
  return bytes;
}

uint32_t crc32(std::string_view bytes) {
  uint32_t crc = ~uint32_t{0};
  for (char byte : bytes) {
    crc ^= static_cast<uint8_t>(byte);
    for (int bit = 0; bit < 8; ++bit)
      crc = crc >> 1 ^ (crc & 1) * 0xEDB88320;
  }
  return ~crc;
}

uint32_t adler32(std::string_view bytes) {
  uint32_t low = 1, high = 0;
  for (char byte : bytes) {
    low = (low + static_cast<uint8_t>(byte)) % 65521;
    high = (high + low) % 65521;
  }
  return high << 16 | low;
}

// One deflate block with the fixed codes. Codes are packed from their highest bit on, all other numbers from their
// lowest.
class Deflater {
 public:
  // Besides the byte just before, `stride` bytes back is where a repetition is looked for: the row above.
  std::string run(std::string_view bytes, size_t stride) {
    putNumber(1, 1);  // the last block
    putNumber(1, 2);  // fixed codes
    for (size_t at = 0; at < bytes.size();) {
      size_t length = 0, distance = 0;
      for (size_t candidate : {size_t{1}, stride}) {
        const size_t found = matchLength(bytes, at, candidate);
        if (found > length) length = found, distance = candidate;
      }
      if (length < shortestMatch) {
        putSymbol(static_cast<uint8_t>(bytes[at++]));
      } else {
        putMatch(static_cast<uint32_t>(length), static_cast<uint32_t>(distance));
        at += length;
      }
    }
    putSymbol(256);  // the end
    putNumber(0, 7);
    return std::move(output_);
  }

 private:
  static size_t matchLength(std::string_view bytes, size_t at, size_t distance) {
    if (distance > at) return 0;
    const size_t most = std::min(size_t{longestMatch}, bytes.size() - at);
    size_t length = 0;
    while (length < most && bytes[at + length] == bytes[at + length - distance])
      ++length;
    return length;
  }

  void putNumber(uint32_t number, int bits) {
    for (int i = 0; i < bits; ++i)
      putBit(number >> i & 1);
  }
  void putCode(uint32_t code, int bits) {
    while (bits-- > 0)
      putBit(code >> bits & 1);
  }
  void putBit(uint32_t bit) {
    pending_ |= bit << pendingBits_;
    if (++pendingBits_ < 8) return;
    output_ += static_cast<char>(pending_);
    pending_ = 0;
    pendingBits_ = 0;
  }

  void putSymbol(uint32_t symbol) {
    if (symbol < 144) return putCode(0x30 + symbol, 8);
    if (symbol < 256) return putCode(0x190 + symbol - 144, 9);
    if (symbol < 280) return putCode(symbol - 256, 7);
    putCode(0xC0 + symbol - 280, 8);
  }
  // Lengths and distances are cut into classes that double in size: the class is a code, the place in it a number.
  void putMatch(uint32_t length, uint32_t distance) {
    if (length == longestMatch) {
      putSymbol(285);
    } else {
      const uint32_t value = length - shortestMatch;
      const int extra = std::max(0, static_cast<int>(std::bit_width(value)) - 3);
      putSymbol(257 + 4 * static_cast<uint32_t>(extra) + (value >> extra));
      putNumber(value, extra);
    }
    const uint32_t value = distance - 1;
    const int extra = std::max(0, static_cast<int>(std::bit_width(value)) - 2);
    putCode(2 * static_cast<uint32_t>(extra) + (value >> extra), 5);
    putNumber(value, extra);
  }

  std::string output_;
  uint32_t pending_ = 0;
  int pendingBits_ = 0;
};

std::string chunk(std::string_view type, std::string_view data) {
  const std::string body = std::string(type).append(data);
  return bigEndian(static_cast<uint32_t>(data.size())) + body + bigEndian(crc32(body));
}

}  // namespace

std::string makePng(const Picture& picture, const Palette& palette) {
  std::string header =
      bigEndian(static_cast<uint32_t>(picture.width)) + bigEndian(static_cast<uint32_t>(picture.height));
  header += std::string("\x08\x03\0\0\0", 5);  // 8 bits a point, with a palette
  std::string colours, rows;
  for (uint32_t colour : palette)
    colours += bigEndian(colour).substr(1);
  for (size_t row = 0; row < picture.height; ++row) {
    rows += '\0';  // no filter
    rows.append(reinterpret_cast<const char*>(&picture.points[row * picture.width]), picture.width);
  }
  const std::string data = "\x78\x01" + Deflater().run(rows, picture.width + 1) + bigEndian(adler32(rows));
  return "\x89PNG\r\n\x1A\n" + chunk("IHDR", header) + chunk("PLTE", colours) + chunk("IDAT", data) + chunk("IEND", "");
}

}  // namespace kiln::screenshot
