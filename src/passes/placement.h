// Where bytes go. Statements in source order become placements: a segment opens, a gap is filled, a statement's bytes
// come next, the segment closes. Every pass that depends on that order uses this walk.
#pragma once

#include <cstdint>

#include "base/arithmetic.h"
#include "passes/assembler.h"
#include "passes/segment_cursor.h"

namespace kiln {

struct Opening {
  uint32_t address;   // of the segment's first byte, 0..65535
  int32_t bank = -1;  // -1 = none
  bool isCloaked = false;
};

// A Listener has these members:
//   void openSegment(const Opening& opening, const AsLine& line);
//   void fillGap(uint32_t size);                               // zero bytes up to an origin
//   uint32_t placeBytes(const AsLine& line, uint32_t pc);      // returns the size that the statement takes
//   void closeSegment();                                       // the next byte opens another one
template <typename Listener>
class PlacementWalker {
 public:
  // `bankOrigin` is where code begins after a ".bank", 0..65535. The evaluator takes the warnings about addresses.
  PlacementWalker(const Iteration& iteration, Evaluator& evaluator, uint32_t bankOrigin, Listener& listener)
      : bankNumbers_(iteration.bankNumbers),
        evaluator_(evaluator),
        bankOrigin_(bankOrigin),
        listener_(listener),
        cursor_(iteration.codeRegions) {}

  // The address of the next byte, unless an origin comes first.
  uint32_t pc() const { return cursor_.pc(); }

  // To be called once for each statement, in order.
  void step(const AsLine& line) {
    if (emitsBytes(line.kind)) {
      if (!cursor_.isOpen()) open({cursor_.pc()}, line);
      cursor_.advance(listener_.placeBytes(line, cursor_.pc()));
    } else if (line.kind == Kind::Org) {
      setOrigin(low16(evaluator_.evaluate(line.operand())), line);
    } else if (line.kind == Kind::Bank) {
      open({bankOrigin_, static_cast<int32_t>(bankNumbers_.at(line.operand()))}, line);
    } else if (line.kind == Kind::CloakedSegment) {
      open({.address = low16(evaluator_.evaluate(line.firstItem())), .isCloaked = true}, line);
    } else if (line.kind == Kind::CloakedSegmentEnd) {
      cursor_.close();
      listener_.closeSegment();
    }
  }

 private:
  void open(const Opening& opening, const AsLine& line) {
    cursor_.open(opening.address);
    listener_.openSegment(opening, line);
  }

  void setOrigin(uint32_t target, const AsLine& line) {
    if (cursor_.splitsAt(target)) return open({target}, line);
    const uint32_t gap = target - cursor_.pc();
    listener_.fillGap(gap);
    cursor_.advance(gap);
  }

  const std::unordered_map<std::string_view, uint32_t>& bankNumbers_;
  Evaluator& evaluator_;
  const uint32_t bankOrigin_;
  Listener& listener_;
  SegmentCursor cursor_;
};

}  // namespace kiln
