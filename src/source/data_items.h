// The lists of .byte, .word and .long.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/hex.h"
#include "base/text.h"

namespace kiln {

// How many items a list has. It is not empty, and a text of a TextStore.
uint32_t countItems(std::string_view list);

// Cuts a list into its value expressions. They are cut anew each time, because a list of views would take more memory
// than the text itself.
class DataItems {
 public:
  explicit DataItems(std::string_view list) : at_(list.data()), end_(list.data() + list.size()) {}

  // The next item, trimmed; empty items are skipped. Absent at the end. Items are short, so a plain loop beats a search
  // for the comma (by a sixth of the time of a source of .byte lists).
  std::optional<std::string_view> next() {
    while (at_ != end_) {
      const char* const begin = at_;
      while (at_ != end_ && *at_ != ',')
        ++at_;
      const std::string_view item = trim(std::string_view(begin, static_cast<size_t>(at_ - begin)));
      if (at_ != end_) ++at_;
      if (!item.empty()) return item;
    }
    return std::nullopt;
  }

  // Takes the next item when it is a "$", exactly `count` hexadecimal digits and a comma: its value, else -1. The usual
  // items of a list are so (9 % of the time of a source of data lists).
  template <int count>
  int64_t takeHexOf() {
    if (end_ - at_ < count + 2 || at_[0] != '$' || at_[count + 1] != ',') return -1;
    int64_t value = 0;
    int anyInvalid = 0;
    for (int i = 1; i <= count; ++i) {
      anyInvalid |= hexDigitValue(at_[i]);
      value = value * 16 + hexDigitValue(at_[i]);
    }
    if (anyInvalid < 0) return -1;
    at_ += count + 2;
    return value;
  }

  // Takes the next item when it is a "$" with 1 to 15 hexadecimal digits, or 1 to 15 decimal digits, without blanks
  // around it: its value. Otherwise takes nothing, and is -1 (7 % of the time of a source of data lists).
  int64_t takeLiteral() { return at_ != end_ && *at_ == '$' ? takeDigitsOf<16>(at_ + 1) : takeDigitsOf<10>(at_); }

 private:
  template <unsigned radix>
  int64_t takeDigitsOf(const char* digits) {
    std::string_view rest(digits, static_cast<size_t>(end_ - digits));
    const uint64_t value = takeDigits<radix>(rest);
    const auto count = rest.data() - digits;
    if (count == 0 || count > 15 || (!rest.empty() && rest.front() != ',')) return -1;
    at_ = rest.empty() ? end_ : rest.data() + 1;
    return static_cast<int64_t>(value);
  }

  const char* at_;
  const char* end_;
};

}  // namespace kiln
