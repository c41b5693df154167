// Which bytes of the segments each statement has made, and which bank they go to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "inspect/program.h"
#include "output/bank_values.h"

namespace kiln {

struct StatementPlace {
  uint64_t offset;   // of its first byte in the segment
  uint32_t segment;  // index among the segments; of the next one when none is open
  uint32_t address;  // 0..65535; of a statement that moves, where it moves to
};

struct SegmentBank {
  std::optional<BankValue> value;  // absent: not banked
  std::string_view name;           // the operand of the ".bank" that begins it; empty without one
};

struct Placements {
  std::vector<StatementPlace> statements;  // by index among the statements
  std::vector<SegmentBank> segments;       // by index among the segments
};

// The bytes that a statement makes in its segment. A text beyond ASCII makes more than its size says.
uint64_t byteCount(const AsLine& line);

// The program must be assembled.
Placements placeStatements(const Program& program);

// The bank of what is at a place; null for ordinary memory.
const BankValue* bankAt(const Placements& placements, const StatementPlace& place);

}  // namespace kiln
