// Puts large blocks of memory on large pages. A run over a million lines touches some 120 MB once; in pages of 4 KB a
// quarter of its time went into the kernel's handling of 30,000 page faults. Only the release program links this file.
#include <sys/mman.h>

#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t largePage = std::size_t{2} << 20;
constexpr std::size_t leastLargeBlock = 2 * largePage;

void* allocateLarge(std::size_t size) {
  const std::size_t rounded = (size + largePage - 1) / largePage * largePage;
  if (rounded < size) return nullptr;
  void* const block = std::aligned_alloc(largePage, rounded);
  // A system that has no large pages to give says so, and small ones do.
  if (block != nullptr) (void)::madvise(block, rounded, MADV_HUGEPAGE);
  return block;
}

}  // namespace

void* operator new(std::size_t size) {
  void* const block = size < leastLargeBlock ? std::malloc(size == 0 ? 1 : size) : allocateLarge(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
