#include "source/symbols.h"

#include "base/text.h"

namespace kiln {
namespace {

constexpr size_t shortName = 24;

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

uint32_t foldedHash(std::string_view name) { return static_cast<uint32_t>(hashIgnoringCase(name)); }

}  // namespace

void SymbolTable::reserve(size_t count) {
  symbols_.reserve(count);
  size_t slotCount = 64;
  while (slotCount < count * 2)
    slotCount *= 2;
  if (slotCount > slots_.size()) rebuild(slotCount);
}

// For the symbol with this index.
SymbolTable::Slot SymbolTable::makeSlot(const std::vector<Slot>& slots, uint32_t hash, size_t index) {
  const uint32_t mask = static_cast<uint32_t>(slots.size() - 1);
  return (hash & ~mask) | static_cast<uint32_t>(index + 1);
}

// The slot of the symbol that has the name, or the free one where it belongs. An index is never full.
template <typename HasName>
size_t SymbolTable::slotFor(const std::vector<Slot>& slots, uint32_t hash, HasName hasName) const {
  const uint32_t mask = static_cast<uint32_t>(slots.size() - 1);
  size_t at = hash & mask;
  while (const Slot slot = slots[at]) {
    if (((slot ^ hash) & ~mask) == 0 && hasName(symbols_[(slot & mask) - 1])) break;
    at = (at + 1) & mask;
  }
  return at;
}

size_t SymbolTable::exactSlotFor(std::string_view name, uint32_t hash) const {
  const NameEnds ends = endsOf(name.data(), name.size());
  return slotFor(slots_, hash, [&](const Symbol& symbol) { return hasName(symbol, name, ends); });
}

size_t SymbolTable::foldedSlotFor(std::string_view name, uint32_t hash) const {
  const NameEnds ends = inSmallLetters(endsOf(name.data(), name.size()));
  return slotFor(foldedSlots_, hash, [&](const Symbol& symbol) { return hasNameIgnoringCase(symbol, name, ends); });
}

void SymbolTable::rebuild(size_t slotCount) {
  slots_.assign(slotCount, 0);
  for (size_t i = 0; i < symbols_.size(); ++i) {
    const uint32_t hash = symbolHash(symbols_[i].name);
    slots_[exactSlotFor(symbols_[i].name, hash)] = makeSlot(slots_, hash, i);
  }
}

Symbol* SymbolTable::find(std::string_view name) {
  if (!hasDigitNames_ && !name.empty() && isDigit(name.front())) return nullptr;
  return find(name, symbolHash(name));
}

Symbol* SymbolTable::find(std::string_view name, uint32_t hash) {
  return slots_.empty() ? nullptr : symbolIn(slots_, exactSlotFor(name, hash));
}

// Looks into the first slot alone, where nearly every name is.
void SymbolTable::fetchSymbol(uint32_t hash) const {
  const size_t mask = slots_.size() - 1;
  const size_t number = slots_[hash & mask] & mask;
  if (number == 0) return;
  const Symbol& symbol = symbols_[number - 1];
  prefetch(&symbol.name);
  prefetch(&symbol.value);
}

Symbol& SymbolTable::enter(std::string_view name, uint32_t hash, bool& isNew) {
  if (slots_.size() < 2 * (symbols_.size() + 1)) rebuild(slots_.empty() ? 64 : slots_.size() * 2);
  const size_t at = exactSlotFor(name, hash);
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

// Takes in the symbols that have been entered since the last time.
void SymbolTable::coverFolded() {
  if (foldedSlots_.size() < 2 * symbols_.size()) {
    foldedSlots_.assign(slots_.size(), 0);
    foldedCount_ = 0;
  }
  for (; foldedCount_ < symbols_.size(); ++foldedCount_) {
    const std::string_view name = symbols_[foldedCount_].name;
    const uint32_t hash = foldedHash(name);
    Slot& slot = foldedSlots_[foldedSlotFor(name, hash)];
    if (slot == 0) slot = makeSlot(foldedSlots_, hash, foldedCount_);
  }
}

Symbol* SymbolTable::findIgnoringCase(std::string_view name) {
  if (symbols_.empty()) return nullptr;
  coverFolded();
  return symbolIn(foldedSlots_, foldedSlotFor(name, foldedHash(name)));
}

}  // namespace kiln
