#include "source/directives.h"

#include <algorithm>
#include <array>

#include "base/arithmetic.h"
#include "base/text.h"
#include "base/utf8.h"

namespace kiln {
namespace {

struct Directive {
  std::string_view spelling;  // lower case
  Kind kind;
  bool hasArgument;
};

// Matched as prefixes, in this order. One that must be followed by a space has the space in its spelling; of the others
// any longer word is a case too: .spill_pointer is a .spill_point.
constexpr std::array<Directive, 13> directives = {{
    {".org ", Kind::Org, true},
    {".bank ", Kind::Bank, true},
    {".code_regions ", Kind::CodeRegions, true},
    {".shadow_ranges ", Kind::ShadowRanges, true},
    {".shadow_stage ", Kind::ShadowStage, true},
    {".spill_point", Kind::SpillPoint, false},
    {".cloaked_segment_end", Kind::CloakedSegmentEnd, false},
    {".cloaked_segment", Kind::CloakedSegment, true},
    {".byte ", Kind::Byte, true},
    {".word ", Kind::Word, true},
    {".long ", Kind::Long, true},
    {".string ", Kind::String, true},
    {".space ", Kind::Space, true},
}};

constexpr size_t shortestSpelling = 5;

uint32_t walkItems(DataItems items) {
  uint32_t count = 0;
  std::string_view item;
  while (items.next(item))
    ++count;
  return count;
}

// The commas in [at, at + Size), and whether one of them stands before a blank or another comma.
template <size_t Size>
uint32_t countCommas(const char* at, bool& doubtful) {
  uint8_t commas = 0;
  uint8_t gaps = 0;
  for (size_t i = 0; i < Size; ++i) {
    const uint8_t isComma = at[i] == ',' ? 1 : 0;
    const uint8_t isGap = (at[i + 1] == ',' ? 1 : 0) | (at[i + 1] == ' ' ? 1 : 0) | (at[i + 1] == '\t' ? 1 : 0);
    commas = static_cast<uint8_t>(commas + isComma);
    gaps = static_cast<uint8_t>(gaps | (isComma & isGap));
  }
  doubtful = doubtful || gaps != 0;
  return commas;
}

// Every comma stands between two items unless it stands first, last, or before a blank or another comma. Without such
// a one the items need not be walked. The compiler makes vector code of blocks of 16 (a fifth less time for a source of
// data lists).
uint32_t countItems(std::string_view list) {
  bool doubtful = list.front() == ',' || list.back() == ',';
  uint32_t count = 1;
  size_t i = 0;
  for (; i + 16 < list.size(); i += 16)
    count += countCommas<16>(list.data() + i, doubtful);
  for (; i + 1 < list.size(); ++i)
    count += countCommas<1>(list.data() + i, doubtful);
  return doubtful ? walkItems(DataItems(list)) : count;
}

uint32_t sizeOf(AsLine& line, Evaluator& evaluator) {
  switch (line.kind) {
    case Kind::Byte:
      return countItems(line.operand);
    case Kind::Word:
      return 2 * countItems(line.operand);
    case Kind::Long:
      return 4 * countItems(line.operand);
    case Kind::String:
      return static_cast<uint32_t>(utf16Length(line.operand)) + 1;
    case Kind::Space:
      return low32(evaluator.evaluate(line.operand));
    default:
      return 0;
  }
}

}  // namespace

bool parseDirective(std::string_view text, Evaluator& evaluator, AsLine& line) {
  if (text.front() != '.' || text.size() < shortestSpelling) return false;
  const char second = toLower(text[1]);
  for (const Directive& directive : directives) {
    if (directive.spelling[1] != second || !startsWithIgnoringCase(text, directive.spelling)) continue;
    line.kind = directive.kind;
    if (directive.hasArgument) line.operand = trim(text.substr(directive.spelling.size()));
    if (line.kind == Kind::String) line.operand = withoutEnclosing(line.operand, '"', '"');
    line.size = sizeOf(line, evaluator);
    return true;
  }
  return false;
}

}  // namespace kiln
