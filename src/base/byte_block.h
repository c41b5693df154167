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

  // One bit for each byte that is `c`, the first byte's at the lower end.
  uint64_t equalTo(char c) const {
    uint64_t bits = 0;
#ifdef KILN_HAS_VECTOR
    const __m128i wanted = _mm_set1_epi8(c);
    for (size_t i = 0; i < Parts; ++i) {
      const __m128i part = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at_ + 16 * i));
      bits |= uint64_t{static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(part, wanted)))} << (16 * i);
    }
#else
    for (size_t i = 0; i < 16 * Parts; ++i)
      bits |= (at_[i] == c ? uint64_t{1} : 0) << i;
#endif
    return bits;
  }

 private:
  const char* at_;
};

// The lowest `count` bits, 0..64.
constexpr uint64_t lowestBits(size_t count) { return count >= 64 ? ~uint64_t{0} : (uint64_t{1} << count) - 1; }

}  // namespace kiln
