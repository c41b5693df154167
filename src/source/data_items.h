// The lists of .byte, .word and .long.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "base/hex.h"
#include "base/text.h"

namespace kiln {

// How many items a list has. It is not empty, and a text of a TextStore.
uint32_t countItems(std::string_view list);

// Writes the lowest bytes of a value to `to`, the lowest first, and returns the end of them.
template <size_t size>
uint8_t* writeLow(uint64_t value, uint8_t* to) {
  for (size_t i = 0; i < size; ++i)
    *to++ = static_cast<uint8_t>(value >> 8 * i);
  return to;
}

// Cuts a list, a text of a TextStore, into its value expressions. They are cut anew each time, because a list of views
// would take more memory than the text itself.
class DataItems {
 public:
  explicit DataItems(std::string_view list) : at_(list.data()), end_(list.data() + list.size()) {}

  // The next item, trimmed; empty items are skipped. Absent at the end. Items are short, so a plain loop beats a search
  // for the comma (by a sixth of the time of a source of .byte lists).
  std::optional<std::string_view> next() {
    while (at_ < end_) {
      const char* const begin = at_;
      while (at_ != end_ && *at_ != ',')
        ++at_;
      const std::string_view item = trim(std::string_view(begin, static_cast<size_t>(at_ - begin)));
      ++at_;
      if (!item.empty()) return item;
    }
    return std::nullopt;
  }

  // Skips the blanks before an item.
  void skipBlanks() {
    while (at_ < end_ && isBlank(*at_))
      ++at_;
  }

  // Takes items for as long as they are a "$" and two hexadecimal digits for each of `ItemSize` bytes, without blanks
  // around them. Writes their bytes to `to` and returns the end of them. The usual items of a list are so (a quarter of
  // the time of a source of data lists).
  template <size_t ItemSize>
  uint8_t* takeHex(uint8_t* to) {
    constexpr std::ptrdiff_t size = 1 + 2 * ItemSize;
    while (isItem(size) && *at_ == '$') {
      int all = 0;
      for (size_t i = 0; i < ItemSize; ++i) {
        const int byte = hexDigitValue(at_[2 * i + 1]) * 16 | hexDigitValue(at_[2 * i + 2]);
        to[ItemSize - 1 - i] = static_cast<uint8_t>(byte);
        all |= byte;
      }
      if (all < 0) break;
      to += ItemSize;
      at_ += size + 1;
    }
    return to;
  }

  // The same for items of up to three decimal digits, or, where they take more than one byte, 15. The processor cannot
  // predict how many of three there are, so no jump depends on that (a tenth of the time of a source of data lists).
  template <size_t ItemSize>
  uint8_t* takeDecimals(uint8_t* to) {
    const auto digit = [this](std::ptrdiff_t i) -> uint32_t { return static_cast<uint8_t>(at_[i] - '0'); };
    while (at_ < end_ && digit(0) <= 9) {
      // The top bit of a difference below zero: 1 for a digit.
      const uint32_t hasSecond = (digit(1) - 10) >> 31;
      const uint32_t hasThird = (digit(2) - 10) >> 31 & hasSecond;
      uint64_t value = digit(0);
      value += (value * 9 + digit(1)) & -uint64_t{hasSecond};
      value += (value * 9 + digit(2)) & -uint64_t{hasThird};
      std::ptrdiff_t size = 1 + hasSecond + hasThird;
      for (; ItemSize > 1 && size < 15 && digit(size) <= 9; ++size)
        value = value * 10 + digit(size);
      if (!isItem(size)) break;
      to = writeLow<ItemSize>(value, to);
      at_ += size + 1;
    }
    return to;
  }

 private:
  // True when the list ends after `size` characters, or has a comma there.
  bool isItem(std::ptrdiff_t size) const { return end_ - at_ >= size && (at_[size] == ',' || end_ - at_ == size); }

  const char* at_;  // one past the end after an item that ends the list
  const char* end_;
};

}  // namespace kiln
