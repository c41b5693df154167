#include "source/directives.h"

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

uint32_t countItems(DataItems items) {
  uint32_t count = 0;
  std::string_view item;
  while (items.next(item))
    ++count;
  return count;
}

uint32_t sizeOf(AsLine& line, Evaluator& evaluator) {
  switch (line.kind) {
    case Kind::Byte:
      return countItems(line.items());
    case Kind::Word:
      return 2 * countItems(line.items());
    case Kind::Long:
      return 4 * countItems(line.items());
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
  if (text.front() != '.') return false;
  for (const Directive& directive : directives) {
    if (!startsWithIgnoringCase(text, directive.spelling)) continue;
    line.kind = directive.kind;
    if (directive.hasArgument) line.operand = trim(text.substr(directive.spelling.size()));
    if (line.kind == Kind::String) line.operand = withoutEnclosing(line.operand, '"', '"');
    line.size = sizeOf(line, evaluator);
    return true;
  }
  return false;
}

}  // namespace kiln
