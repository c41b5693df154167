// What a statement can be. Everything that is true of all statements of a kind is in its row of the table.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kiln {

enum class Kind : uint8_t {
  Empty,
  LabelOnly,
  Instruction,
  Assign,
  Org,
  Byte,
  Word,
  Long,
  String,
  Space,
  CodeRegions,
  Bank,
  SpillPoint,
  ShadowRanges,
  ShadowStage,
  CloakedSegmentEnd,
  CloakedSegment,
};

// How the argument of a directive is read.
enum class Argument : uint8_t {
  None,    // not at all: text after the directive is ignored
  Text,    // trimmed, for the pass that carries the directive out
  Items,   // a list of expressions, each of which takes `itemSize` bytes
  Quoted,  // without its double quotes; takes a byte for each UTF-16 unit, and one more
  Count,   // evaluated at once; takes that many bytes
};

struct KindRow {
  Kind kind;
  std::string_view spelling;  // of a directive, in lower case; a trailing space is part of it
  Argument argument;
  uint8_t itemSize;
  bool emits;      // puts bytes into the output
  bool moves;      // the next bytes are somewhere else
  bool qualifies;  // a reference to a local label in the operand gets the scope in front
};

// Directives are matched as prefixes, so of two that begin alike the longer one comes first. Those without a trailing
// space match longer words too: .spill_pointer is a .spill_point.
// clang-format off
inline constexpr std::array kindRows = {
    //       kind                     spelling                argument          item   emits  moves  qualifies
    KindRow{Kind::Empty,             "",                     Argument::None,   0,     false, false, false},
    KindRow{Kind::LabelOnly,         "",                     Argument::None,   0,     false, false, false},
    KindRow{Kind::Instruction,       "",                     Argument::None,   0,     true,  false, true},
    KindRow{Kind::Assign,            "",                     Argument::None,   0,     false, false, false},
    KindRow{Kind::Org,               ".org ",                Argument::Text,   0,     false, true,  true},
    KindRow{Kind::Byte,              ".byte ",               Argument::Items,  1,     true,  false, false},
    KindRow{Kind::Word,              ".word ",               Argument::Items,  2,     true,  false, false},
    KindRow{Kind::Long,              ".long ",               Argument::Items,  4,     true,  false, false},
    KindRow{Kind::String,            ".string ",             Argument::Quoted, 0,     true,  false, false},
    KindRow{Kind::Space,             ".space ",              Argument::Count,  0,     true,  false, true},
    KindRow{Kind::CodeRegions,       ".code_regions ",       Argument::Text,   0,     false, false, true},
    KindRow{Kind::Bank,              ".bank ",               Argument::Text,   0,     false, true,  true},
    KindRow{Kind::SpillPoint,        ".spill_point",         Argument::None,   0,     false, false, true},
    KindRow{Kind::ShadowRanges,      ".shadow_ranges ",      Argument::Text,   0,     false, false, true},
    KindRow{Kind::ShadowStage,       ".shadow_stage ",       Argument::Text,   0,     false, false, true},
    KindRow{Kind::CloakedSegmentEnd, ".cloaked_segment_end", Argument::None,   0,     false, true,  true},
    KindRow{Kind::CloakedSegment,    ".cloaked_segment",     Argument::Text,   0,     false, true,  true},
};
// clang-format on

constexpr bool kindRowsAreInOrder() {
  for (size_t i = 0; i < kindRows.size(); ++i) {
    if (kindRows[i].kind != static_cast<Kind>(i)) return false;
    for (size_t j = i + 1; j < kindRows.size() && !kindRows[i].spelling.empty(); ++j) {
      if (kindRows[j].spelling.starts_with(kindRows[i].spelling)) return false;
    }
  }
  return true;
}
static_assert(kindRows.size() == 17 && kindRowsAreInOrder());

constexpr const KindRow& rowOf(Kind kind) { return kindRows[static_cast<size_t>(kind)]; }

constexpr bool emitsBytes(Kind kind) { return rowOf(kind).emits; }

}  // namespace kiln
