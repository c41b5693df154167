// Asking the processor for memory before it is needed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kiln {

// Begins to bring the cache line `distance` bytes after `address` nearer. Changes nothing that a program could see,
// whatever the address. GCC takes a function that does nothing else for one without any effect, and drops its calls;
// the empty assembler text is what it must keep.
inline void prefetch([[maybe_unused]] const void* address, [[maybe_unused]] size_t distance = 0) {
#ifdef __GNUC__
  // NOLINTNEXTLINE(performance-no-int-to-ptr): nothing is read there
  __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(address) + distance));
  __asm__ volatile("");
#endif
}

}  // namespace kiln
