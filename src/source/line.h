// One statement of the program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "isa/modes.h"
#include "isa/opcodes.h"
#include "source/kinds.h"
#include "source/symbols.h"

namespace kiln {

// Texts are views into the source or into the run's text store. Statements are most of what a run keeps, so they hold
// only what every pass needs: the source text is found through the line number, a label in a list of labels.
class AsLine {
 public:
  // Instruction: the operand. Directive: the argument, of Byte, Word and Long the list. Assign: the whole statement.
  std::string_view operand() const { return {operand_, operandSize_}; }
  // `text` is shorter than 4 GB and has to stay.
  void setOperand(std::string_view text) {
    operand_ = text.data();
    operandSize_ = static_cast<uint32_t>(text.size());
  }

  // The operand up to its first comma: the address of CloakedSegment.
  std::string_view firstItem() const { return operand().substr(0, operand().find(',')); }
  // Assign: the text before and after the first equals sign.
  std::string_view assignName() const { return trim(operand().substr(0, operand().find('='))); }
  std::string_view assignValue() const { return trim(operand().substr(operand().find('=') + 1)); }

 private:
  const char* operand_ = nullptr;
  uint32_t operandSize_ = 0;

 public:
  uint32_t nameHash = 0;    // symbolHash() of the name that an instruction's value expression consists of; else 0
  uint32_t size = 0;        // bytes in the output
  uint32_t address = 0;     // location counter before the statement, 0..65535, once laid out
  uint32_t lineNumber = 0;  // from 1, in the expanded source
  Kind kind = Kind::Empty;
  Mode mode = Mode::Implied;
  Mnemonic mnemonic = Mnemonic::None;
  bool hasLabel : 1 = false;
  bool labelLocal : 1 = false;        // written with a leading "." or ">"
  bool longBranchMarked : 1 = false;  // on a line that the long-branch rewriter made
  bool autoSpill : 1 = false;         // inserted by a code-region spill; no source line has it
};
static_assert(sizeof(AsLine) <= 32 || sizeof(void*) != 8);

// The statements of one iteration, in source order. A line without any text has no statement.
struct Statements {
  std::vector<AsLine> lines;
  std::vector<HashedName> labels;  // qualified with their scopes; one for each line with hasLabel, in the same order
  size_t branches = 0;             // lines with Mode::Relative
};

// Walks the labels beside the statements.
class LabelReader {
 public:
  explicit LabelReader(const std::vector<HashedName>& labels) : next_(labels.data()) {}

  // The label of a statement, empty without one. Every statement has to be asked for once, in order.
  HashedName of(const AsLine& line) { return line.hasLabel ? *next_++ : HashedName(); }

 private:
  const HashedName* next_;
};

}  // namespace kiln
