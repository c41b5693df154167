#include "base/format.h"

#include <charconv>

namespace kiln {

void appendHex(std::string& out, uint64_t value, size_t width) {
  char digits[16];
  size_t count = 0;
  do {
    digits[count++] = "0123456789ABCDEF"[value & 15];
    value >>= 4;
  } while (value != 0);
  if (count < width) out.append(width - count, '0');
  while (count != 0)
    out.push_back(digits[--count]);
}

std::string dollarHex(int64_t value, size_t width) {
  std::string text = "$";
  appendHex(text, static_cast<uint64_t>(value), width);
  return text;
}

std::string decimal(int64_t value) {
  char digits[20];
  const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value);
  return std::string(digits, end.ptr);
}

std::string concat(std::initializer_list<std::string_view> pieces) {
  size_t size = 0;
  for (std::string_view piece : pieces)
    size += piece.size();
  std::string text;
  text.reserve(size);
  for (std::string_view piece : pieces)
    text += piece;
  return text;
}

}  // namespace kiln
