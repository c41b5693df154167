#include "lsp/hover_symbols.h"

#include <algorithm>

#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"
#include "lsp/hardware.h"
#include "source/literals.h"

namespace kiln {
namespace {

using Is = SymbolFacts::Kind;

constexpr uint32_t mostCommentLines = 20;

std::string usesText(size_t uses) {
  if (uses == 0) return "not used";
  return uses == 1 ? "used once" : concat({"used ", decimal(static_cast<int64_t>(uses)), " times"});
}

// The line of a place, and the lines above it that are only comments.
std::string lineWithComments(const SourceMap& map, const Place& place) {
  uint32_t first = place.line;
  while (first > 1 && place.line - first < mostCommentLines &&
         trim(map.lineOf(*place.file, first - 1)).starts_with(';'))
    --first;
  std::string text;
  for (uint32_t line = first; line <= place.line; ++line) {
    if (!text.empty()) text.push_back('\n');
    text += trimRight(map.lineOf(*place.file, line));
  }
  return text;
}

void addDefinition(const Analysis& analysis, const SymbolFacts& facts, HoverText& hover) {
  const Place place = analysis.map().placeOf(analysis.map().originOf(facts.definition->line));
  if (place.line == 0) return hover.addParagraph(usesText(facts.uses));
  hover.addParagraph(
      concat({usesText(facts.uses), ", ", lastComponent(place.file->path), " line ", decimal(place.line)}));
  hover.addBlock(lineWithComments(analysis.map(), place));
}

std::string bankText(const Analysis& analysis, const Statement& definition, const HoverText& hover) {
  const Placements& placements = *analysis.placements();
  const StatementPlace& place = placements.statements[definition.index];
  const BankValue* const bank = bankAt(placements, place);
  if (bank == nullptr) return "";
  const std::string_view name = placements.segments[place.segment].name;
  const std::string number = concat({", bank ", decimal(bank->value)});
  return name.empty() ? number : concat({number, ", ", hover.code(name)});
}

void describeLabel(const Analysis& analysis, const Symbol& symbol, const SymbolFacts& facts, HoverText& hover) {
  std::string text = concat({hover.code(symbol.name), ": label"});
  if (analysis.placements() != nullptr) {
    text += concat({" at ", hover.number(symbol.value), bankText(analysis, *facts.definition, hover)});
  }
  hover.addParagraph(text);
  addDefinition(analysis, facts, hover);
}

// Where the program does not assemble, a value may depend on what is wrong.
void describeName(const Analysis& analysis, const Symbol& symbol, const SymbolFacts& facts, HoverText& hover) {
  const bool isKnown =
      analysis.placements() != nullptr || parsePlainLiteral(facts.definition->parsed->assignValue()) >= 0;
  hover.addParagraph(hover.code(symbol.name) + (isKnown ? ": " + hover.number(symbol.value) : ""));
  addDefinition(analysis, facts, hover);
}

void describeBank(const Analysis& analysis, const Symbol& symbol, const SymbolFacts& facts, HoverText& hover) {
  const std::string_view name = facts.definition->parsed->operand();
  std::string text = concat({hover.code(name), ": bank ", decimal(symbol.value)});
  if (analysis.placements() != nullptr) {
    const std::vector<AsSegment>& segments = analysis.program().assembler.segments;
    const std::vector<SegmentBank>& banks = analysis.placements()->segments;
    size_t size = 0;
    for (size_t i = 0; i < std::min(banks.size(), segments.size()); ++i)
      size += banks[i].name == name ? segments[i].bytes.size() : 0;
    text += concat({", ", decimal(static_cast<int64_t>(size)), size == 1 ? " byte" : " bytes"});
  }
  hover.addParagraph(text);
  addDefinition(analysis, facts, hover);
}

void describeHardware(const HardwareName& row, HoverText& hover) {
  const bool hasOneText = !row.about.empty();
  hover.addParagraph(concat({row.chip, hasOneText ? ": " : "", row.about}));
  if (!row.read.empty()) hover.addParagraph(concat({"read: ", row.read}));
  if (!row.write.empty()) hover.addParagraph(concat({"write: ", row.write}));
}

void describePredefined(const Symbol& symbol, const SymbolFacts& facts, HoverText& hover) {
  hover.addParagraph(concat({hover.code(symbol.name), ": ", hover.number(symbol.value)}));
  const HardwareName* const row = symbol.seed == 1 ? findHardware(symbol.name, symbol.value) : nullptr;
  if (row != nullptr) {
    describeHardware(*row, hover);
  } else {
    hover.addParagraph("defined before the first line");
  }
  hover.addParagraph(usesText(facts.uses));
}

}  // namespace

void describeSymbol(const Analysis& analysis, const std::vector<SymbolFacts>& facts, uint32_t symbol,
                    HoverText& hover) {
  const Symbol& found = analysis.program().iteration().symbols.symbols()[symbol];
  const SymbolFacts& about = facts[symbol];
  switch (about.kind) {
    case Is::Predefined:
      return describePredefined(found, about, hover);
    case Is::Label:
    case Is::LocalLabel:
      return describeLabel(analysis, found, about, hover);
    case Is::Name:
      return describeName(analysis, found, about, hover);
    case Is::Bank:
      return describeBank(analysis, found, about, hover);
  }
}

}  // namespace kiln
