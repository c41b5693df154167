#include "source/symbols.h"

#include "base/text.h"

namespace kiln {
namespace {

constexpr size_t shortName = 24;

uint32_t tagOf(uint64_t hash) { return static_cast<uint32_t>(hash >> 32); }

// The texts of names lie scattered in the source, and looking at one is most often a miss of the cache: the symbol
// itself answers for short names (a tenth of the time of a source full of names).
bool hasName(const Symbol& symbol, std::string_view name, const NameEnds& ends) {
  if (symbol.name.size() != name.size() || symbol.ends != ends) return false;
  return name.size() <= shortName || std::memcmp(symbol.name.data(), name.data(), name.size()) == 0;
}

// The ends are in small letters.
bool hasNameIgnoringCase(const Symbol& symbol, std::string_view name, const NameEnds& ends) {
  if (symbol.name.size() != name.size() || inSmallLetters(symbol.ends) != ends) return false;
  return name.size() <= shortName || equalIgnoringCase(symbol.name, name);
}

// The slot for the symbol with this index in a table of so many slots.
uint32_t makeSlot(const std::vector<uint32_t>& slots, uint64_t hash, size_t index) {
  const uint32_t mask = static_cast<uint32_t>(slots.size() - 1);
  return (tagOf(hash) & ~mask) | static_cast<uint32_t>(index + 1);
}

}  // namespace

void SymbolTable::reserve(size_t count) {
  symbols_.reserve(count);
  size_t slotCount = 64;
  while (slotCount < count * 2)
    slotCount *= 2;
  if (slotCount > slots_.size()) rebuild(slotCount);
}

// The slot that holds the name, or the free one where it belongs. The table is never full.
size_t SymbolTable::slotFor(std::string_view name, uint64_t hash) const {
  const NameEnds ends = endsOf(name.data(), name.size());
  const uint32_t mask = static_cast<uint32_t>(slots_.size() - 1);
  size_t at = hash & mask;
  while (const Slot slot = slots_[at]) {
    if (((slot ^ tagOf(hash)) & ~mask) == 0 && hasName(symbols_[(slot & mask) - 1], name, ends)) break;
    at = (at + 1) & mask;
  }
  return at;
}

void SymbolTable::rebuild(size_t slotCount) {
  slots_.assign(slotCount, 0);
  for (size_t i = 0; i < symbols_.size(); ++i) {
    const uint64_t hash = hashName(symbols_[i].name);
    slots_[slotFor(symbols_[i].name, hash)] = makeSlot(slots_, hash, i);
  }
}

Symbol* SymbolTable::find(std::string_view name) {
  if (slots_.empty()) return nullptr;
  if (!hasDigitNames_ && !name.empty() && isDigit(name.front())) return nullptr;
  return symbolIn(slots_, slotFor(name, hashName(name)));
}

Symbol& SymbolTable::enter(std::string_view name, bool& isNew) {
  if (slots_.size() < 2 * (symbols_.size() + 1)) rebuild(slots_.empty() ? 64 : slots_.size() * 2);
  const uint64_t hash = hashName(name);
  const size_t at = slotFor(name, hash);
  Symbol* const known = symbolIn(slots_, at);
  isNew = known == nullptr;
  if (!isNew) return *known;
  slots_[at] = makeSlot(slots_, hash, symbols_.size());
  symbols_.push_back(Symbol{.name = name, .ends = endsOf(name.data(), name.size())});
  if (!name.empty() && isDigit(name.front())) hasDigitNames_ = true;
  return symbols_.back();
}

// The symbol that the slot tells of; null when it is free.
Symbol* SymbolTable::symbolIn(const std::vector<Slot>& slots, size_t at) {
  const size_t number = slots[at] & (slots.size() - 1);
  return number == 0 ? nullptr : &symbols_[number - 1];
}

void SymbolTable::set(std::string_view name, int64_t value) {
  bool isNew = false;
  enter(name, isNew).value = value;
}

size_t SymbolTable::foldedSlotFor(std::string_view name, uint64_t hash) const {
  const NameEnds ends = inSmallLetters(endsOf(name.data(), name.size()));
  const uint32_t mask = static_cast<uint32_t>(foldedSlots_.size() - 1);
  size_t at = hash & mask;
  while (const Slot slot = foldedSlots_[at]) {
    if (((slot ^ tagOf(hash)) & ~mask) == 0 && hasNameIgnoringCase(symbols_[(slot & mask) - 1], name, ends)) break;
    at = (at + 1) & mask;
  }
  return at;
}

// Takes in the symbols that have been entered since the last time.
void SymbolTable::coverFolded() {
  if (foldedSlots_.size() < 2 * symbols_.size()) {
    foldedSlots_.assign(slots_.size(), 0);
    foldedCount_ = 0;
  }
  for (; foldedCount_ < symbols_.size(); ++foldedCount_) {
    const uint64_t hash = hashIgnoringCase(symbols_[foldedCount_].name);
    Slot& slot = foldedSlots_[foldedSlotFor(symbols_[foldedCount_].name, hash)];
    if (slot == 0) slot = makeSlot(foldedSlots_, hash, foldedCount_);
  }
}

Symbol* SymbolTable::findIgnoringCase(std::string_view name) {
  if (symbols_.empty()) return nullptr;
  coverFolded();
  return symbolIn(foldedSlots_, foldedSlotFor(name, hashIgnoringCase(name)));
}

}  // namespace kiln
