// Symbols of statements further on, on their way to the processor when they are needed.
#pragma once

#include <vector>

#include "base/prefetch.h"
#include "source/line.h"
#include "source/symbols.h"

namespace kiln {

// Walks ahead of a pass that looks up one name for each statement. The symbols of a large program are in no cache near
// the processor, and a look-up waits for the index and then for the symbol; asked for some statements before, both are
// there (a tenth of the time of a million plain lines).
template <typename NameOf>
class LookAhead {
 public:
  // `nameOf` gives the name that will be looked up for a statement, with its hash; any text with the hash 0 when there
  // is none. The statements must stay where they are.
  LookAhead(const SymbolTable& symbols, const std::vector<AsLine>& statements, NameOf nameOf)
      : symbols_(symbols), nameOf_(nameOf) {
    if (!symbols.isLarge() || statements.size() <= slotDistance) return;
    current_ = statements.data();
    end_ = current_ + (statements.size() - slotDistance);
  }

  // To be called once for each statement, in order.
  void step() {
    if (current_ == end_) return;
    const HashedText name = nameOf_(current_[slotDistance]);
    prefetch(name.text().data());
    symbols_.fetchSlot(name.hash());
    symbols_.fetchSymbol(nameOf_(current_[symbolDistance]).hash());
    ++current_;
  }

 private:
  static constexpr size_t slotDistance = 32;
  static constexpr size_t symbolDistance = 16;

  const SymbolTable& symbols_;
  const NameOf nameOf_;
  const AsLine* current_ = nullptr;
  const AsLine* end_ = nullptr;  // nothing is left to be fetched from here on
};

}  // namespace kiln
