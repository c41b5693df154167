// A limit on the memory that a run may allocate. Ten characters of source can legitimately ask for four gigabytes
// (".space $FFFFFFFF"), and macros can double a text on every line, so large inputs cannot be filtered out by their
// text. Instead, an allocation beyond the budget throws std::bad_alloc, as it would on a small machine. This also tests
// how the program behaves when memory runs out.
#pragma once

#include <cstddef>

namespace kiln::fuzz {

// Limits the total allocated during its lifetime, in bytes. Freed memory is not given back to the budget.
class MemoryBudget {
 public:
  explicit MemoryBudget(size_t bytes);
  MemoryBudget(const MemoryBudget&) = delete;
  MemoryBudget& operator=(const MemoryBudget&) = delete;
  ~MemoryBudget();

  // True if an allocation has failed.
  bool wasExceeded() const;
};

// Suspends the budget during its lifetime, for allocations of the target rather than of the program.
class BudgetPause {
 public:
  BudgetPause();
  BudgetPause(const BudgetPause&) = delete;
  BudgetPause& operator=(const BudgetPause&) = delete;
  ~BudgetPause();

 private:
  size_t bytesLeft_;
};

}  // namespace kiln::fuzz
