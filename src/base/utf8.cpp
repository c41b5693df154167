#include "base/utf8.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace kiln {
namespace {

unsigned byteAt(std::string_view text, size_t index) { return static_cast<unsigned char>(text[index]); }

bool isContinuation(unsigned byte) { return (byte & 0xC0) == 0x80; }

// The number of continuation bytes after this lead byte; -1 when it is not one.
int continuationCount(unsigned lead) {
  if (lead < 0x80) return 0;
  if (lead < 0xC2) return -1;
  if (lead < 0xE0) return 1;
  if (lead < 0xF0) return 2;
  return lead < 0xF5 ? 3 : -1;
}

// False for the second byte of an overlong form, a surrogate or a value above U+10FFFF.
bool isStrictSecondByte(unsigned lead, unsigned second) {
  switch (lead) {
    case 0xE0:
      return second >= 0xA0;
    case 0xED:
      return second < 0xA0;
    case 0xF0:
      return second >= 0x90;
    case 0xF4:
      return second < 0x90;
    default:
      return true;
  }
}

// The index of the first byte at or after `at` that is not ASCII. Sources are mostly ASCII, so this reads 64 bytes at a
// time.
size_t skipAscii(std::string_view bytes, size_t at) {
  std::array<uint64_t, 8> block;
  for (; at + sizeof block <= bytes.size(); at += sizeof block) {
    std::memcpy(block.data(), bytes.data() + at, sizeof block);
    uint64_t all = 0;
    for (uint64_t word : block)
      all |= word;
    if ((all & 0x8080808080808080U) != 0) break;
  }
  while (at < bytes.size() && byteAt(bytes, at) < 0x80)
    ++at;
  return at;
}

enum class Rule : uint8_t { Lax, Strict };

bool isValid(std::string_view bytes, Rule rule) {
  size_t at = skipAscii(bytes, 0);
  while (at < bytes.size()) {
    const unsigned lead = byteAt(bytes, at);
    const int count = continuationCount(lead);
    if (count < 0 || bytes.size() - at <= static_cast<size_t>(count)) return false;
    for (int i = 1; i <= count; ++i) {
      if (!isContinuation(byteAt(bytes, at + static_cast<size_t>(i)))) return false;
    }
    if (rule == Rule::Strict && !isStrictSecondByte(lead, byteAt(bytes, at + 1))) return false;
    at = skipAscii(bytes, at + 1 + static_cast<size_t>(count));
  }
  return true;
}

}  // namespace

bool isUtf8(std::string_view bytes) { return isValid(bytes, Rule::Lax); }

bool isStrictUtf8(std::string_view bytes) { return isValid(bytes, Rule::Strict); }

size_t utf16Length(std::string_view text) {
  size_t length = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const unsigned byte = byteAt(text, i);
    if (!isContinuation(byte)) length += byte >= 0xF0 ? 2 : 1;
  }
  return length;
}

}  // namespace kiln
