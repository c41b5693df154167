#include "lsp/name_parts.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <numeric>
#include <tuple>

#include "base/text.h"
#include "inspect/macro_uses.h"
#include "inspect/name_definitions.h"
#include "inspect/name_text.h"
#include "isa/opcodes.h"
#include "source/line_text.h"

namespace kiln {
namespace {

bool isBefore(const char* a, const char* b) { return std::less<>()(a, b); }

auto thingOf(const NamePart& part) { return std::make_tuple(part.thing, part.id); }

}  // namespace

NameParts::NameParts(const Analysis& analysis) : analysis_(analysis) {
  for (const Occurrence& occurrence : analysis.names().all()) {
    if (occurrence.thing == Thing::Symbol) {
      addSymbol(occurrence.text, occurrence.id);
    } else if (occurrence.thing != Thing::File) {
      add(occurrence.text, occurrence.thing, occurrence.id);
    }
  }
  addUncalledBodies();
  std::stable_sort(parts_.begin(), parts_.end(),
                   [](const NamePart& a, const NamePart& b) { return isBefore(a.text.data(), b.text.data()); });
  byThing_.resize(parts_.size());
  std::iota(byThing_.begin(), byThing_.end(), 0U);
  std::stable_sort(byThing_.begin(), byThing_.end(),
                   [this](uint32_t a, uint32_t b) { return thingOf(parts_[a]) < thingOf(parts_[b]); });
}

void NameParts::addSymbol(std::string_view written, uint32_t id) {
  const SymbolTable& symbols = analysis_.program().iteration().symbols;
  size_t begin = written.starts_with('>') || written.starts_with('.') ? 1 : 0;
  if (startsWithIgnoringCase(written, bankPrefix)) begin = bankPrefix.size();
  // The scopes in front of a local name.
  const size_t firstDot = begin == 0 ? written.find('.', 1) : std::string_view::npos;
  for (size_t dot = firstDot; dot != std::string_view::npos; dot = written.find('.', dot + 1)) {
    const Symbol* const scope = symbols.resolve(written.substr(0, dot));
    if (scope == nullptr) continue;
    add(written.substr(begin, dot - begin), Thing::Symbol, scope->index);
    begin = dot + 1;
  }
  add(written.substr(begin), Thing::Symbol, id);
}

// What nothing calls makes no statements, but its words would be left behind.
void NameParts::addUncalledBodies() {
  const MacroUses uses(analysis_.program().notes);
  for (const MacroUse& use : uses.all()) {
    if (use.calls != 0 || analysis_.map().fileOf(use.macro->head) == nullptr) continue;
    for (const Macro::Line& line : use.macro->body)
      addWords(withoutComment(line.text), use);
  }
}

void NameParts::addWords(std::string_view code, const MacroUse& macro) {
  const SymbolTable& symbols = analysis_.program().iteration().symbols;
  Fields pieces(code, '"');
  std::string_view piece;
  for (bool isQuoted = false; pieces.next(piece); isQuoted = !isQuoted) {
    if (isQuoted) continue;
    for (std::string_view word = takeNameLike(piece); !word.empty(); word = takeNameLike(piece)) {
      if (isHexadecimal(code, word)) continue;
      const Symbol* const symbol = symbols.find(word);
      if (symbol == nullptr || mnemonicOf(word) != Mnemonic::None || macro.mayReplaceIn(word)) continue;
      addSymbol(word, symbol->index);
    }
  }
}

const NamePart* NameParts::at(const char* place) const {
  const Occurrence* const occurrence = analysis_.names().at(place);
  const char* const begin = occurrence == nullptr ? place : occurrence->text.data();
  auto after = std::upper_bound(parts_.begin(), parts_.end(), place,
                                [](const char* at, const NamePart& part) { return isBefore(at, part.text.data()); });
  if (after != parts_.begin()) {
    const NamePart& before = beginningAt(std::prev(after)->text.data()).front();
    const bool reaches = !isBefore(before.text.data() + before.text.size(), place);
    if (reaches && !isBefore(before.text.data(), begin)) return &before;
  }
  // On a "." or ">" in front of the name, or in "__bank_".
  const bool isInName =
      occurrence != nullptr && after != parts_.end() && isBefore(after->text.data(), begin + occurrence->text.size());
  return isInName ? &*after : nullptr;
}

std::span<const NamePart> NameParts::beginningAt(const char* place) const {
  const auto first = std::lower_bound(parts_.begin(), parts_.end(), place, [](const NamePart& part, const char* at) {
    return isBefore(part.text.data(), at);
  });
  auto last = first;
  while (last != parts_.end() && last->text.data() == place)
    ++last;
  return {std::to_address(first), static_cast<size_t>(last - first)};
}

std::vector<const NamePart*> NameParts::of(Thing thing, uint32_t id) const {
  const auto key = std::make_tuple(thing, id);
  auto at = std::lower_bound(byThing_.begin(), byThing_.end(), key,
                             [this](uint32_t index, const auto& wanted) { return thingOf(parts_[index]) < wanted; });
  std::vector<const NamePart*> found;
  for (; at != byThing_.end() && thingOf(parts_[*at]) == key; ++at)
    found.push_back(&parts_[*at]);
  return found;
}

}  // namespace kiln
