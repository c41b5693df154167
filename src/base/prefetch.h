// Asking the processor for memory before it is needed.
#pragma once

namespace kiln {

// Begins to bring the cache line of `address` nearer. Changes nothing that a program could see, whatever the address.
// GCC takes a function that does nothing else for one without any effect, and drops its calls; the empty assembler text
// is what it must keep.
inline void prefetch([[maybe_unused]] const void* address) {
#ifdef __GNUC__
  __builtin_prefetch(address);
  __asm__ volatile("");
#endif
}

}  // namespace kiln
