// The segments of a program beside the statements that open them, and what becomes of them in its file.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "inspect/program.h"
#include "output/bank_values.h"
#include "passes/placement.h"

namespace kiln {

inline constexpr uint32_t addressCount = 0x10000;

struct PlacedSegment {
  // The statement that opens it. For one that a code region opens: the last statement that moved the address.
  std::string_view at;
  uint32_t start = 0;  // of its first byte, 0..65535
  int32_t bank = -1;   // the number of its ".bank"; -1 = none
  bool isCloaked = false;
  uint64_t size = 0;                      // in bytes
  std::optional<BankValue> written = {};  // the bank that banked output puts it into; absent in main memory
};

// The same segments as the assembler's, in the same order.
using PlacedSegments = std::vector<PlacedSegment>;

enum class OutputKind : uint8_t { Xex, BankedXex, Prg };

// What kiln-as would write.
OutputKind outputKindOf(const Program& program);

// The bank that the output puts a segment into; absent in main memory. To be called for each segment, in order.
std::optional<BankValue> writtenBank(OutputKind output, const Opening& opening, BankCounters& counters);

}  // namespace kiln
