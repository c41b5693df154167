// One statement of the program.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "isa/opcodes.h"
#include "source/literals.h"

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

  // Takes the next item when it is, without a blank around it, a "$" with 1 to 15 hexadecimal digits behind it or (if
  // `takesDecimals`) 1 to 15 decimal digits, and gives its value; otherwise takes nothing and is false. Most items are
  // of these (a source of data lists takes a fifth less time than with next() and the evaluator alone).
  bool nextLiteral(bool takesDecimals, int64_t& value) {
    const char* at = at_;
    const bool isHex = at != end_ && *at == '$';
    if (!isHex && !takesDecimals) return false;
    at += isHex ? 1 : 0;
    const char* const digits = at;
    uint64_t number = 0;
    if (isHex) {
      for (int digit; at != end_ && (digit = digitValues[static_cast<unsigned char>(*at)]) >= 0; ++at)
        number = number << 4 | static_cast<unsigned>(digit);
    } else {
      for (; at != end_ && isDigit(*at); ++at)
        number = number * 10 + static_cast<unsigned>(*at - '0');
    }
    if (at == digits || at - digits > 15 || (at != end_ && *at != ',')) return false;
    value = static_cast<int64_t>(number);
    at_ = at == end_ ? at : at + 1;
    return true;
  }

 private:
  const char* at_;
  const char* end_;
};

// A text of less than 4 GB, and beside it the symbolHash() of the name that it is or holds; 0 when it is not known.
class HashedText {
 public:
  HashedText() = default;
  HashedText(std::string_view text, uint32_t hash = 0)
      : data_(text.data()), size_(static_cast<uint32_t>(text.size())), hash_(hash) {}

  std::string_view text() const { return {data_, size_}; }
  operator std::string_view() const { return text(); }
  bool empty() const { return size_ == 0; }
  uint32_t hash() const { return hash_; }

 private:
  const char* data_ = nullptr;
  uint32_t size_ = 0;
  uint32_t hash_ = 0;
};

// Texts are views into the source or into the run's text store. A million statements are the greater part of what a run
// keeps, and the time that the system takes to give memory is a good part of a run: what is seldom asked for is found
// again, such as the source text through the line number.
struct AsLine {
  HashedText label;         // qualified with its scope; empty when the statement defines none
  HashedText operand;       // operand or argument; the list of Byte, Word and Long; the whole of Assign. Of an
                            // instruction it has the nameHash() of the value expression, else 0
  uint32_t size = 0;        // bytes in the output
  uint32_t address = 0;     // location counter, 0..65535, once laid out; of Empty: see furtherLines()
  uint32_t lineNumber = 0;  // from 1, in the expanded source
  Kind kind = Kind::Empty;
  Mode mode = Mode::Implied;
  Mnemonic mnemonic = Mnemonic::None;
  bool labelLocal : 1 = false;        // written with a leading "." or ">"
  bool longBranchMarked : 1 = false;  // stands on a line that the long-branch rewriter made
  bool hasCommaSpaces : 1 = false;    // the operand may have spaces next to its commas
  bool isText : 1 = false;            // has a text, known or not; an Empty without one may stand for further lines
  bool autoSpill : 1 = false;         // inserted by the code-region spill; no source line shows it

  DataItems items() const { return DataItems(operand); }
  // The operand up to its first comma, which is the address of CloakedSegment.
  std::string_view firstItem() const { return operand.text().substr(0, operand.text().find(',')); }
  // What stands on the left and on the right of the first equals sign of Assign.
  std::string_view assignName() const { return trim(operand.text().substr(0, operand.text().find('='))); }
  std::string_view assignValue() const { return trim(operand.text().substr(operand.text().find('=') + 1)); }
  // How many lines behind its own an Empty statement also stands for: runs of blank and comment lines take one.
  uint32_t furtherLines() const { return kind == Kind::Empty ? address : 0; }
};
static_assert(sizeof(AsLine) == 48);

// True for the kinds that put bytes into the output.
constexpr bool emitsBytes(Kind kind) {
  return kind == Kind::Instruction || (kind >= Kind::Byte && kind <= Kind::Space);
}

}  // namespace kiln
