// One statement of the program.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "isa/opcodes.h"

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
  CloakedSegment,
  CloakedSegmentEnd,
};

// The value expressions of a data list. They are cut out of the list's text whenever they are walked: keeping them
// apart would cost more memory than the text itself.
class DataItems {
 public:
  explicit DataItems(std::string_view list) : at_(list.data()), end_(list.data() + list.size()) {}

  // Moves to the next item, trimmed; empty ones are passed over. False when there is none left. Items have few
  // characters, so that a plain loop beats a search for the comma (by a sixth of the time of a source of .byte lists).
  bool next(std::string_view& item) {
    while (at_ != end_) {
      const char* const begin = at_;
      while (at_ != end_ && *at_ != ',')
        ++at_;
      item = trim(std::string_view(begin, static_cast<size_t>(at_ - begin)));
      if (at_ != end_) ++at_;
      if (!item.empty()) return true;
    }
    return false;
  }

 private:
  const char* at_;
  const char* end_;
};

// Texts are views into the source or into the run's text store. The struct fills one cache line, and a million of them
// are the greater part of what a run keeps: its source text is found through its line number.
struct AsLine {
  std::string_view label;       // qualified with its scope; empty when the statement defines none
  std::string_view operand;     // operand or argument; the list of Byte, Word and Long; the value of Assign
  std::string_view assignName;  // of Assign
  uint32_t size = 0;            // bytes in the output
  uint32_t address = 0;         // location counter, 0..65535, once laid out; of Empty: see furtherLines()
  uint32_t lineNumber = 0;      // from 1, in the expanded source
  Kind kind = Kind::Empty;
  Mode mode = Mode::Implied;
  Mnemonic mnemonic = Mnemonic::None;
  bool labelLocal : 1 = false;        // written with a leading "." or ">"
  bool longBranchMarked : 1 = false;  // stands on a line that the long-branch rewriter made
  bool hasCommaSpaces : 1 = false;    // the operand may have spaces next to its commas
  bool isText : 1 = false;            // has a text, known or not; an Empty without one may stand for further lines
  bool autoSpill : 1 = false;         // inserted by the code-region spill; no source line shows it

  DataItems items() const { return DataItems(operand); }
  std::string_view assignValue() const { return operand; }
  // How many lines behind its own an Empty statement also stands for: runs of blank and comment lines take one.
  uint32_t furtherLines() const { return kind == Kind::Empty ? address : 0; }
};
static_assert(sizeof(AsLine) == 64);

// True for the kinds that put bytes into the output.
constexpr bool emitsBytes(Kind kind) {
  return kind == Kind::Instruction || (kind >= Kind::Byte && kind <= Kind::Space);
}

}  // namespace kiln
