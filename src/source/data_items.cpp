#include "source/data_items.h"

namespace kiln {
namespace {

uint32_t walkItems(DataItems items) {
  uint32_t count = 0;
  while (items.next())
    ++count;
  return count;
}

struct Commas {
  uint32_t count = 0;
  bool gap = false;  // one of them is before a blank or another comma
};

// The commas in [at, at + Size). The byte after them is read, too.
template <size_t Size>
Commas findCommas(const char* at) {
  uint8_t count = 0;
  uint8_t gaps = 0;
  for (size_t i = 0; i < Size; ++i) {
    const uint8_t isComma = at[i] == ',' ? 1 : 0;
    const uint8_t isGap = (at[i + 1] == ',' ? 1 : 0) | (at[i + 1] == ' ' ? 1 : 0) | (at[i + 1] == '\t' ? 1 : 0);
    count = static_cast<uint8_t>(count + isComma);
    gaps = static_cast<uint8_t>(gaps | (isComma & isGap));
  }
  return {count, gaps != 0};
}

}  // namespace

// Every comma is between two items unless it is first, last, or before a blank or another comma. Without such a comma,
// counting the commas is enough, and the compiler makes vector code of blocks of 16 (7 % of the time of a source of
// data lists).
uint32_t countItems(std::string_view list) {
  bool hasGap = list.front() == ',' || list.back() == ',';
  uint32_t count = 1;
  const auto add = [&](Commas commas) {
    count += commas.count;
    hasGap = hasGap || commas.gap;
  };
  size_t i = 0;
  for (; i + 16 < list.size(); i += 16)
    add(findCommas<16>(list.data() + i));
  for (; i + 1 < list.size(); ++i)
    add(findCommas<1>(list.data() + i));
  return hasGap ? walkItems(DataItems(list)) : count;
}

}  // namespace kiln
