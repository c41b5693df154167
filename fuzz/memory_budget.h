// A limit on what a run may allocate. A program of ten characters may rightly ask for four gigabytes of output
// (".space $FFFFFFFF"), and macros can double a text line after line. No rule on the text tells such inputs from others
// for certain, so memory is what is limited: the allocation that goes beyond the budget throws std::bad_alloc, as it
// would on a small machine. What the product does then is watched, too.
#pragma once

#include <cstddef>

namespace kiln::fuzz {

// While it lives, the thread may allocate so many bytes in all, whatever it gives back.
class MemoryBudget {
 public:
  explicit MemoryBudget(size_t bytes);
  MemoryBudget(const MemoryBudget&) = delete;
  MemoryBudget& operator=(const MemoryBudget&) = delete;
  ~MemoryBudget();

  // True when an allocation has failed.
  bool wasExceeded() const;
};

// While it lives, nothing counts: for what belongs to the target and not to the product.
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
