#include "memory_budget.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace kiln::fuzz {
namespace {

constexpr size_t unlimited = SIZE_MAX;

// Per thread, so that libFuzzer's own threads have no limit.
thread_local size_t bytesLeft = unlimited;
thread_local bool exceeded = false;

void* allocate(size_t size) noexcept {
  if (size > bytesLeft) {
    exceeded = true;
    return nullptr;
  }
  if (bytesLeft != unlimited) bytesLeft -= size;
  return std::malloc(size == 0 ? 1 : size);
}

void* allocateOrThrow(size_t size) {
  void* const memory = allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

MemoryBudget::MemoryBudget(size_t bytes) {
  bytesLeft = bytes;
  exceeded = false;
}
MemoryBudget::~MemoryBudget() { bytesLeft = unlimited; }

bool MemoryBudget::wasExceeded() const { return exceeded; }

BudgetPause::BudgetPause() : bytesLeft_(bytesLeft) { bytesLeft = unlimited; }
BudgetPause::~BudgetPause() { bytesLeft = bytesLeft_; }

}  // namespace kiln::fuzz

// All forms in use are replaced together: memory must be freed by the allocator that it came from.
void* operator new(size_t size) { return kiln::fuzz::allocateOrThrow(size); }
void* operator new[](size_t size) { return kiln::fuzz::allocateOrThrow(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return kiln::fuzz::allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return kiln::fuzz::allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
