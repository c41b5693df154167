// Asking the processor for memory before it is needed.
#pragma once

namespace kiln {

// Begins to bring the cache line of `address` nearer. Changes nothing that a program could see, whatever the address.
inline void prefetch([[maybe_unused]] const void* address) {
#ifdef __GNUC__
  __builtin_prefetch(address);
#endif
}

}  // namespace kiln
