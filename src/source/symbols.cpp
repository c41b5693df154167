#include "source/symbols.h"

#include "base/text.h"

namespace kiln {
namespace {

constexpr size_t shortName = 24;

// So many other names with the hash of the one that is searched are passed. Then the search begins anew where another
// hash leads: there may be thousands of names that differ in letter case alone, and the time to go through all of them
// for each would grow with their square.
constexpr size_t largestCrowd = 16;

// The hashes by which a name is searched, one after the other. The second is the same for names that differ in letter
// case alone and for no others, the last for none.
enum class Level : uint8_t { Loose, IgnoringCase, Exact };

uint32_t hashOf(std::string_view name, Level level) {
  return static_cast<uint32_t>(level == Level::IgnoringCase ? hashIgnoringCase(name) : hashName(name));
}

// The texts of names lie scattered in the source, and looking at one is most often a miss of the cache: the symbol
// itself answers for short names (a tenth of the time of a source full of names).
bool hasName(const Symbol& symbol, std::string_view name, const NameEnds& ends) {
  if (symbol.name.size() != name.size() || symbol.ends != ends) return false;
  return name.size() <= shortName || std::memcmp(symbol.name.data(), name.data(), name.size()) == 0;
}

bool hasNameIgnoringCase(const Symbol& symbol, std::string_view name, const NameEnds& ends) {
  if (symbol.name.size() != name.size() || inSmallLetters(symbol.ends) != inSmallLetters(ends)) return false;
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

// The slot that holds the name, or the free one where it belongs; `hash` becomes the one that marks it. An index is
// never full.
size_t SymbolTable::slotFor(std::string_view name, uint32_t& hash) const {
  const NameEnds ends = endsOf(name.data(), name.size());
  const size_t at = hash & mask();
  const Slot slot = slots_[at];
  if (slot == 0 || (isMarked(slot, hash) && hasName(symbolOf(slot), name, ends))) return at;
  return searchSlot(name, ends, hash);
}

size_t SymbolTable::searchSlot(std::string_view name, const NameEnds& ends, uint32_t& hash) const {
  Level level = Level::Loose;
  size_t crowd = 0;
  size_t at = hash & mask();
  while (const Slot slot = slots_[at]) {
    if (isMarked(slot, hash)) {
      const Symbol& symbol = symbolOf(slot);
      if (hasName(symbol, name, ends)) break;
      const bool counts =
          level == Level::Loose || (level == Level::IgnoringCase && hasNameIgnoringCase(symbol, name, ends));
      if (counts && ++crowd == largestCrowd) {
        level = level == Level::Loose ? Level::IgnoringCase : Level::Exact;
        hash = hashOf(name, level);
        at = hash & mask();
        crowd = 0;
        continue;
      }
    }
    at = (at + 1) & mask();
  }
  return at;
}

// The symbol that the slot tells of; null when it is free.
Symbol* SymbolTable::symbolAt(size_t at) {
  const size_t number = slots_[at] & mask();
  return number == 0 ? nullptr : &symbols_[number - 1];
}

void SymbolTable::occupy(size_t at, uint32_t hash, size_t index) {
  slots_[at] = (hash & ~mask()) | static_cast<uint32_t>(index + 1);
}

void SymbolTable::rebuild(size_t slotCount) {
  slots_.assign(slotCount, 0);
  for (size_t i = 0; i < symbols_.size(); ++i) {
    uint32_t hash = symbolHash(symbols_[i].name);
    const size_t at = slotFor(symbols_[i].name, hash);
    occupy(at, hash, i);
  }
}

Symbol* SymbolTable::find(std::string_view name) {
  if (!hasDigitNames_ && !name.empty() && isDigit(name.front())) return nullptr;
  return find(name, symbolHash(name));
}

Symbol* SymbolTable::find(std::string_view name, uint32_t hash) {
  return slots_.empty() ? nullptr : symbolAt(slotFor(name, hash));
}

// The first one entered is the first one met. One that has a place of its own, by its exact hash, has others before it
// where the search leads.
Symbol* SymbolTable::findIgnoringCase(std::string_view name, uint32_t hash) {
  if (slots_.empty()) return nullptr;
  const NameEnds ends = endsOf(name.data(), name.size());
  size_t crowd = 0;
  size_t at = hash & mask();
  while (const Slot slot = slots_[at]) {
    if (isMarked(slot, hash)) {
      if (hasNameIgnoringCase(symbolOf(slot), name, ends)) return symbolAt(at);
      if (++crowd == largestCrowd) {
        hash = hashOf(name, Level::IgnoringCase);
        at = hash & mask();
        continue;
      }
    }
    at = (at + 1) & mask();
  }
  return nullptr;
}

Symbol& SymbolTable::enter(std::string_view name, uint32_t hash, bool& isNew) {
  if (slots_.size() < 2 * (symbols_.size() + 1)) rebuild(slots_.empty() ? 64 : slots_.size() * 2);
  const size_t at = slotFor(name, hash);
  Symbol* const known = symbolAt(at);
  isNew = known == nullptr;
  if (!isNew) return *known;
  occupy(at, hash, symbols_.size());
  symbols_.push_back(Symbol{.name = name, .ends = endsOf(name.data(), name.size())});
  if (!name.empty() && isDigit(name.front())) hasDigitNames_ = true;
  return symbols_.back();
}

void SymbolTable::set(std::string_view name, int64_t value) {
  bool isNew = false;
  enter(name, isNew).value = value;
}

}  // namespace kiln
