// Looking at up to 64 bytes of text at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#if defined(__SSE2__) && !defined(KILN_NO_VECTOR)
#include <emmintrin.h>
#endif

namespace kiln {

#if defined(__SSE2__) && !defined(KILN_NO_VECTOR)

inline constexpr bool hasFastBlocks = true;

// The 16 * Parts bytes from `at` on; all of them must be readable.
template <int Parts>
class ByteBlock {
 public:
  static constexpr size_t size = 16 * Parts;

  explicit ByteBlock(const char* at) {
    for (size_t i = 0; i < Parts; ++i)
      parts_[i] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at + 16 * i));
  }

  // One bit for each byte that is `c`, the first byte's at the lower end.
  uint64_t equalTo(char c) const {
    const __m128i wanted = _mm_set1_epi8(c);
    uint64_t bits = 0;
    for (size_t i = 0; i < Parts; ++i) {
      const auto part = static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(parts_[i], wanted)));
      bits |= uint64_t{part} << (16 * i);
    }
    return bits;
  }

 private:
  __m128i parts_[Parts];  // an array type would drop the alignment
};

#else

// Without vector instructions, walking along the text is quicker than these blocks.
inline constexpr bool hasFastBlocks = false;

template <int Parts>
class ByteBlock {
 public:
  static constexpr size_t size = 16 * Parts;

  explicit ByteBlock(const char* at) { std::memcpy(bytes_, at, size); }

  uint64_t equalTo(char c) const {
    uint64_t bits = 0;
    for (size_t i = 0; i < size; ++i)
      bits |= uint64_t{bytes_[i] == c} << i;
    return bits;
  }

 private:
  char bytes_[size];
};

#endif

// The lowest `count` bits, 0..64.
constexpr uint64_t lowestBits(size_t count) { return count >= 64 ? ~uint64_t{0} : (uint64_t{1} << count) - 1; }

}  // namespace kiln
