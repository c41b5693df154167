// Hashing and comparing names, which are short: a quarter less time for a look-up than with the standard library's.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace kiln {

template <typename Word>
uint64_t load(const char* at) {
  Word word;
  std::memcpy(&word, at, sizeof word);
  return word;
}

// The first and the last eight bytes of a name, which overlap where it is shorter than sixteen, and the eight before
// the last where it is longer: two names of up to 24 bytes are equal when their sizes and these are.
struct NameEnds {
  uint64_t front;
  uint64_t back;
  uint64_t middle = 0;

  bool operator==(const NameEnds&) const = default;
};

inline NameEnds endsOf(const char* at, size_t size) {
  if (size > 16) return {load<uint64_t>(at), load<uint64_t>(at + size - 8), load<uint64_t>(at + size - 16)};
  if (size >= 8) return {load<uint64_t>(at), load<uint64_t>(at + size - 8)};
  if (size >= 4) return {load<uint32_t>(at), load<uint32_t>(at + size - 4)};
  if (size == 0) return {0, 0};
  const auto byte = [at](size_t i) { return uint64_t{static_cast<unsigned char>(at[i])}; };
  return {byte(0) | byte(size / 2) << 8 | byte(size - 1) << 16, 0};
}

// Each byte of the word that is an ASCII capital as a small letter.
inline uint64_t inSmallLetters(uint64_t word) {
  constexpr uint64_t everyByte = 0x0101010101010101;
  const uint64_t low = word & (0x7F * everyByte);
  const uint64_t fromA = low + (0x80 - 'A') * everyByte;
  const uint64_t behindZ = low + (0x80 - 'Z' - 1) * everyByte;
  const uint64_t capitals = fromA & ~behindZ & ~word & (0x80 * everyByte);
  return word | capitals >> 2;
}

inline NameEnds inSmallLetters(const NameEnds& ends) {
  return {inSmallLetters(ends.front), inSmallLetters(ends.back), inSmallLetters(ends.middle)};
}

inline uint64_t mixHash(uint64_t value) {
  value *= 0x9E3779B97F4A7C15U;
  return value ^ (value >> 32);
}

// The hash of a name whose words go through `change` before they count. Names that are numbered differ in the last
// bytes of their words alone, which a multiplication keeps at the upper end: it takes three to spread them over all
// bits (with two, the 16,000 labels "word_0" and so on cost 30 probes of a table each).
template <typename Change>
uint64_t hashChanged(std::string_view name, Change change) {
  uint64_t hash = name.size();
  const char* at = name.data();
  size_t left = name.size();
  for (; left > 16; at += 8, left -= 8)
    hash = mixHash(hash ^ change(load<uint64_t>(at)));
  const NameEnds rest = endsOf(at, left);
  return mixHash(mixHash(mixHash(hash ^ change(rest.front)) ^ change(rest.back)));
}

inline uint64_t hashName(std::string_view name) {
  return hashChanged(name, [](uint64_t word) { return word; });
}

// The same for names that differ in letter case alone.
inline uint64_t hashIgnoringCase(std::string_view name) {
  return hashChanged(name, [](uint64_t word) { return inSmallLetters(word); });
}

struct NameHash {
  size_t operator()(std::string_view name) const { return hashName(name); }
};

}  // namespace kiln
