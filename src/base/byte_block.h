// Looking at up to 64 bytes of text at once.
#pragma once

#include <cstddef>
#include <cstdint>
#if defined(__SSE2__) && !defined(KILN_NO_VECTOR)
#include <emmintrin.h>
#define KILN_HAS_VECTOR
#endif

namespace kiln {

#ifdef KILN_HAS_VECTOR
inline constexpr bool hasFastBlocks = true;
#else
inline constexpr bool hasFastBlocks = false;  // walking along the text is quicker
#endif

// The 16 * Parts bytes from `at` on; all of them must be readable.
template <size_t Parts>
class ByteBlock {
 public:
  explicit ByteBlock(const char* at) : at_(at) {}

  // One bit for each byte that is one of the wanted ones, the first byte's at the lower end.
  template <typename... Char>
  uint64_t equalTo(Char... wanted) const {
    uint64_t bits = 0;
#ifdef KILN_HAS_VECTOR
    for (size_t i = 0; i < Parts; ++i) {
      const __m128i part = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at_ + 16 * i));
      const __m128i areEqual = (_mm_cmpeq_epi8(part, _mm_set1_epi8(wanted)) | ...);
      bits |= uint64_t{static_cast<uint32_t>(_mm_movemask_epi8(areEqual))} << (16 * i);
    }
#else
    for (size_t i = 0; i < 16 * Parts; ++i)
      bits |= (((at_[i] == wanted) || ...) ? uint64_t{1} : 0) << i;
#endif
    return bits;
  }

 private:
  const char* at_;
};

// The number of bits that are set. std::popcount() is a call on processors that may lack an instruction for it, which
// is slower (2 % of the instructions for a source of data lists).
constexpr uint32_t countBits(uint64_t bits) {
  bits -= bits >> 1 & 0x5555555555555555;
  bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
  bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0F;
  return static_cast<uint32_t>(bits * 0x0101010101010101 >> 56);
}

// The lowest `count` bits, 0..64.
constexpr uint64_t lowestBits(size_t count) { return count >= 64 ? ~uint64_t{0} : (uint64_t{1} << count) - 1; }

}  // namespace kiln
