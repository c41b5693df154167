#include "source/symbols.h"

#include "base/text.h"

namespace kiln {
namespace {

constexpr size_t shortName = 24;

// A search that passes this many names which differ in letter case alone starts again with the exact hash. Only hostile
// sources need it: thousands of such names would take quadratic time.
constexpr size_t largestCrowd = 16;

uint32_t exactHash(std::string_view name) { return static_cast<uint32_t>(hashName(name)); }

// The texts of names are scattered over the source, and reading one usually misses the cache. For short names the ends
// in the symbol are enough (a sixth of the time of a million plain lines).
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
  // Assignments, banks and the rewriters of lines add a few names to the labels that a caller has counted.
  if (symbols_.capacity() < count) symbols_.reserve(count + count / 8);
  size_t slotCount = 64;
  while (slotCount < count * 2)
    slotCount *= 2;
  if (slotCount > slots_.size()) rebuild(slotCount);
}

void SymbolTable::clear() {
  symbols_.clear();
  slots_.clear();
  hasDigitNames_ = false;
}

// The slot that holds the name, or the free one where it belongs. An index is never full.
SymbolTable::Place SymbolTable::placeOf(std::string_view name, const NameEnds& ends, uint32_t hash) const {
  const size_t at = hash & mask_;
  const Slot slot = slots_[at];
  if (slot == 0 || (isMarked(slot, hash) && hasName(symbolOf(slot), name, ends))) return {at, hash};
  return search(name, ends, hash);
}

SymbolTable::Place SymbolTable::search(std::string_view name, const NameEnds& ends, uint32_t hash) const {
  size_t crowd = 0;
  size_t at = hash & mask_;
  while (const Slot slot = slots_[at]) {
    if (isMarked(slot, hash)) {
      if (hasName(symbolOf(slot), name, ends)) break;
      if (hasNameIgnoringCase(symbolOf(slot), name, ends) && ++crowd == largestCrowd) {
        hash = exactHash(name);
        at = hash & mask_;
        continue;
      }
    }
    at = (at + 1) & mask_;
  }
  return {at, hash};
}

const Symbol* SymbolTable::symbolAt(size_t at) const {
  const size_t number = slots_[at] & mask_;
  return number == 0 ? nullptr : &symbols_[number - 1];
}

void SymbolTable::occupy(Place place, size_t index) {
  slots_[place.at] = (place.hash & ~mask_) | static_cast<uint32_t>(index + 1);
}

void SymbolTable::rebuild(size_t slotCount) {
  slots_.assign(slotCount, 0);
  mask_ = static_cast<uint32_t>(slotCount - 1);
  for (const Symbol& symbol : symbols_)
    occupy(placeOf(symbol.name, symbol.ends, symbolHash(symbol.name)), symbol.index);
}

const Symbol* SymbolTable::find(std::string_view name) const {
  if (!hasDigitNames_ && !name.empty() && isDigit(name.front())) return nullptr;
  return find(name, symbolHash(name));
}

const Symbol* SymbolTable::find(std::string_view name, uint32_t hash) const {
  return slots_.empty() ? nullptr : symbolAt(placeOf(name, endsOf(name.data(), name.size()), hash).at);
}

// The search meets the one entered first before all others: those placed by their exact hash came later.
const Symbol* SymbolTable::findIgnoringCase(std::string_view name, uint32_t hash) const {
  if (slots_.empty()) return nullptr;
  const NameEnds ends = endsOf(name.data(), name.size());
  size_t at = hash & mask_;
  while (const Slot slot = slots_[at]) {
    if (isMarked(slot, hash) && hasNameIgnoringCase(symbolOf(slot), name, ends)) return symbolAt(at);
    at = (at + 1) & mask_;
  }
  return nullptr;
}

const Symbol* SymbolTable::resolve(std::string_view name, uint32_t hash) const {
  const Symbol* const exact = find(name, hash);
  return exact != nullptr ? exact : findIgnoringCase(name, hash);
}

SymbolTable::Entry SymbolTable::enter(HashedName name) {
  if (slots_.size() < 2 * (symbols_.size() + 1)) rebuild(slots_.empty() ? 64 : slots_.size() * 2);
  const std::string_view text = name.text();
  const NameEnds ends = endsOf(text.data(), text.size());
  const Place place = placeOf(text, ends, name.hash());
  const size_t number = slots_[place.at] & mask_;
  if (number != 0) return {symbols_[number - 1], false};
  occupy(place, symbols_.size());
  symbols_.push_back({.name = text, .ends = ends, .index = static_cast<uint32_t>(symbols_.size())});
  if (!text.empty() && isDigit(text.front())) hasDigitNames_ = true;
  return {symbols_.back(), true};
}

}  // namespace kiln
