// The symbol table of one iteration: names to values, in the order in which the names were entered.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/name_hash.h"
#include "base/prefetch.h"

namespace kiln {

// Case-insensitive hash of a name. Keep it next to the name to avoid hashing twice.
inline uint32_t symbolHash(std::string_view name) { return static_cast<uint32_t>(hashIgnoringCase(name)); }

// A name of less than 4 GB with its symbolHash().
class HashedName {
 public:
  HashedName() = default;
  explicit HashedName(std::string_view name) : HashedName(name, symbolHash(name)) {}
  HashedName(std::string_view name, uint32_t hash)
      : data_(name.data()), size_(static_cast<uint32_t>(name.size())), hash_(hash) {}

  std::string_view text() const { return {data_, size_}; }
  bool empty() const { return size_ == 0; }
  uint32_t hash() const { return hash_; }

 private:
  const char* data_ = nullptr;
  uint32_t size_ = 0;
  uint32_t hash_ = 0;
};

struct Symbol {
  std::string_view name;
  NameEnds ends;
  int64_t value = 0;
  uint32_t bank : 31 = 0;  // the bank of the label, 0 = none
  uint32_t seed : 1 = 0;   // from a symbol file or the built-in equates; a label may replace it
  uint32_t index = 0;      // its place in symbols()
};

// Names are views: their texts have to outlive the table. A pointer to a symbol is valid until the next enter().
class SymbolTable {
 public:
  // Makes room for `count` names in all, and a few more.
  void reserve(size_t count);
  // Forgets all names, but keeps the memory.
  void clear();

  // The symbol with exactly this name; null when there is none. `hash` is always symbolHash() of the name.
  const Symbol* find(std::string_view name) const;
  const Symbol* find(std::string_view name, uint32_t hash) const;
  // The first symbol entered whose name differs from `name` at most in letter case; null when there is none.
  const Symbol* findIgnoringCase(std::string_view name, uint32_t hash) const;
  // The symbol that a use of the name means: the one with exactly this name, else findIgnoringCase().
  const Symbol* resolve(std::string_view name, uint32_t hash) const;
  const Symbol* resolve(std::string_view name) const { return resolve(name, symbolHash(name)); }

  // True when the table is too large for the caches near the processor. A look-up then waits for memory twice, unless
  // these two are called some time before it: fetchSlot() first, which loads what fetchSymbol() reads. Any number will
  // do as a hash. A name that is new needs the first alone.
  bool isLarge() const { return slots_.size() > 0x10000; }
  void fetchSlot(uint32_t hash) const { prefetch(&slots_[hash & mask_]); }
  void fetchSymbol(uint32_t hash) const {
    // From the first slot alone, which is nearly always the right one.
    const size_t number = slots_[hash & mask_] & mask_;
    if (number == 0) return;
    prefetch(&symbols_[number - 1].name);
    prefetch(&symbols_[number - 1].value);
  }

  struct Entry {
    Symbol& symbol;
    bool isNew;
  };

  // The symbol with exactly this name, entered with the value 0 when it is new.
  Entry enter(HashedName name);
  void set(std::string_view name, int64_t value) { enter(HashedName(name)).symbol.value = value; }

  // True when some name begins with a digit; without one, no number needs a look-up.
  bool hasDigitNames() const { return hasDigitNames_; }

  const std::vector<Symbol>& symbols() const { return symbols_; }

 private:
  // A slot of the open-addressed index holds a symbol's number plus one, 0 when it is free. An index of 2^n slots has
  // room for 2^(n-1) symbols and begins a search at the lower n bits of the hash. The upper bits are kept in the slot:
  // most probes end without a look at the symbol, and a small index stays in the cache.
  using Slot = uint32_t;

  // Where a name is, or where it belongs: a slot, and the hash that marks it.
  struct Place {
    size_t at;
    uint32_t hash;
  };

  bool isMarked(Slot slot, uint32_t hash) const { return ((slot ^ hash) & ~mask_) == 0; }
  const Symbol& symbolOf(Slot slot) const { return symbols_[(slot & mask_) - 1]; }
  Place placeOf(std::string_view name, const NameEnds& ends, uint32_t hash) const;
  Place search(std::string_view name, const NameEnds& ends, uint32_t hash) const;
  const Symbol* symbolAt(size_t at) const;
  void occupy(Place place, size_t index);
  void rebuild(size_t slotCount);

  std::vector<Symbol> symbols_;
  std::vector<Slot> slots_;
  uint32_t mask_ = 0;  // the lower n bits
  bool hasDigitNames_ = false;
};

}  // namespace kiln
