#include "source/symbols.h"

#include "base/text.h"

namespace kiln {
namespace {

constexpr size_t shortName = 16;

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
  const size_t mask = slots_.size() - 1;
  size_t at = hash & mask;
  while (slots_[at].number != 0) {
    if (slots_[at].tag == tagOf(hash) && hasName(symbols_[slots_[at].number - 1], name, ends)) break;
    at = (at + 1) & mask;
  }
  return at;
}

void SymbolTable::rebuild(size_t slotCount) {
  slots_.assign(slotCount, Slot{});
  for (size_t i = 0; i < symbols_.size(); ++i) {
    const uint64_t hash = hashName(symbols_[i].name);
    slots_[slotFor(symbols_[i].name, hash)] = {tagOf(hash), static_cast<uint32_t>(i + 1)};
  }
}

Symbol* SymbolTable::find(std::string_view name) {
  if (slots_.empty()) return nullptr;
  if (!hasDigitNames_ && !name.empty() && isDigit(name.front())) return nullptr;
  const uint32_t number = slots_[slotFor(name, hashName(name))].number;
  return number == 0 ? nullptr : &symbols_[number - 1];
}

Symbol& SymbolTable::enter(std::string_view name, bool& isNew) {
  if (slots_.size() < 2 * (symbols_.size() + 1)) rebuild(slots_.empty() ? 64 : slots_.size() * 2);
  const uint64_t hash = hashName(name);
  Slot& slot = slots_[slotFor(name, hash)];
  isNew = slot.number == 0;
  if (!isNew) return symbols_[slot.number - 1];
  symbols_.push_back(Symbol{.name = name, .ends = endsOf(name.data(), name.size())});
  slot = {tagOf(hash), static_cast<uint32_t>(symbols_.size())};
  if (!name.empty() && isDigit(name.front())) hasDigitNames_ = true;
  return symbols_.back();
}

void SymbolTable::set(std::string_view name, int64_t value) {
  bool isNew = false;
  enter(name, isNew).value = value;
}

size_t SymbolTable::foldedSlotFor(std::string_view name, uint64_t hash) const {
  const NameEnds ends = inSmallLetters(endsOf(name.data(), name.size()));
  const size_t mask = foldedSlots_.size() - 1;
  size_t at = hash & mask;
  while (foldedSlots_[at].number != 0) {
    const Slot& slot = foldedSlots_[at];
    if (slot.tag == tagOf(hash) && hasNameIgnoringCase(symbols_[slot.number - 1], name, ends)) break;
    at = (at + 1) & mask;
  }
  return at;
}

// Takes in the symbols that have been entered since the last time.
void SymbolTable::coverFolded() {
  if (foldedSlots_.size() < 2 * symbols_.size()) {
    foldedSlots_.assign(slots_.size(), Slot{});
    foldedCount_ = 0;
  }
  for (; foldedCount_ < symbols_.size(); ++foldedCount_) {
    const uint64_t hash = hashIgnoringCase(symbols_[foldedCount_].name);
    Slot& slot = foldedSlots_[foldedSlotFor(symbols_[foldedCount_].name, hash)];
    if (slot.number == 0) slot = {tagOf(hash), static_cast<uint32_t>(foldedCount_ + 1)};
  }
}

Symbol* SymbolTable::findIgnoringCase(std::string_view name) {
  if (symbols_.empty()) return nullptr;
  coverFolded();
  const uint32_t number = foldedSlots_[foldedSlotFor(name, hashIgnoringCase(name))].number;
  return number == 0 ? nullptr : &symbols_[number - 1];
}

}  // namespace kiln
