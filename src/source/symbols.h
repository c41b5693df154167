// The symbol table of one iteration: names to values, in the order in which the names came.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/name_hash.h"
#include "base/prefetch.h"

namespace kiln {

// The hash by which the symbol table finds a name in any letter case. Who keeps it beside the name need not make it
// again.
inline uint32_t symbolHash(std::string_view name) { return static_cast<uint32_t>(hashLoosely(name)); }

struct Symbol {
  std::string_view name;
  NameEnds ends;
  int64_t value = 0;
  uint32_t bank = 0;  // the bank in which the label stands, 0 = none
  bool seed = false;  // came from a symbol file or the built-in equates; a label may take its place
};

// Names are views: whoever enters one keeps its text alive. A pointer to a symbol is good until the next enter().
class SymbolTable {
 public:
  // Makes room for `count` names in all.
  void reserve(size_t count);

  // The symbol of exactly this name; null when there is none. `hash` is always symbolHash() of the name.
  Symbol* find(std::string_view name);
  Symbol* find(std::string_view name, uint32_t hash);
  // The symbol that entered first among those whose names differ from `name` at most in letter case; else null.
  Symbol* findIgnoringCase(std::string_view name, uint32_t hash);

  // True when there is room for so many symbols that no cache near the processor holds them. A look-up waits for memory
  // twice then, unless these two have been called some time before, fetchSlot() first: it asks for what fetchSymbol()
  // reads, and that for what a look-up does. Any number will do as a hash.
  bool isLarge() const { return slots_.size() > 0x10000; }
  void fetchSlot(uint32_t hash) const { prefetch(&slots_[hash & (slots_.size() - 1)]); }
  void fetchSymbol(uint32_t hash) const {
    // Of the first slot alone, which is nearly always the right one.
    const size_t number = slots_[hash & (slots_.size() - 1)] & (slots_.size() - 1);
    if (number == 0) return;
    prefetch(&symbols_[number - 1].name);
    prefetch(&symbols_[number - 1].value);
  }

  // The symbol of exactly this name, entered with value 0 when it is new; `isNew` says which.
  Symbol& enter(std::string_view name, bool& isNew) { return enter(name, symbolHash(name), isNew); }
  Symbol& enter(std::string_view name, uint32_t hash, bool& isNew);
  void set(std::string_view name, int64_t value);

  // True when some name begins with a digit; without one, no number needs a look-up.
  bool hasDigitNames() const { return hasDigitNames_; }

  const std::vector<Symbol>& symbols() const { return symbols_; }

 private:
  // A slot of the open-addressed index holds a symbol's number plus one, 0 when it is free. An index of 2^n slots has
  // room for 2^(n-1) symbols and begins a search at the lower n bits of the hash, so that the slot has room for the
  // upper ones: most probes end without a look at the symbol itself. A small index stays in the cache.
  using Slot = uint32_t;

  bool isMarked(Slot slot, uint32_t hash) const { return ((slot ^ hash) & ~mask()) == 0; }
  const Symbol& symbolOf(Slot slot) const { return symbols_[(slot & mask()) - 1]; }
  uint32_t mask() const { return static_cast<uint32_t>(slots_.size() - 1); }
  size_t slotFor(std::string_view name, uint32_t& hash) const;
  size_t searchSlot(std::string_view name, const NameEnds& ends, uint32_t& hash) const;
  Symbol* symbolAt(size_t at);
  void occupy(size_t at, uint32_t hash, size_t index);
  void rebuild(size_t slotCount);

  std::vector<Symbol> symbols_;
  std::vector<Slot> slots_;
  bool hasDigitNames_ = false;
};

}  // namespace kiln
