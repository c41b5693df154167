#include "output/pieces.h"

#include <algorithm>

namespace kiln {
namespace {

struct Range {
  uint64_t low;
  uint64_t high;
};

// The ranges that touch [first, last] (one that its cut to 16 bits has turned round touches nothing), clipped to it and
// ordered by start; equal starts keep the order in which they were declared.
std::vector<Range> rangesWithin(const ShadowPlan& plan, uint64_t first, uint64_t last) {
  std::vector<Range> kept;
  if (plan.stageAddress == 0) return kept;
  for (size_t i = 0; i + 1 < plan.ranges.size(); i += 2) {
    const uint64_t low = plan.ranges[i];
    const uint64_t high = plan.ranges[i + 1];
    if (low <= high && high >= first && low <= last) kept.push_back({std::max(first, low), std::min(last, high)});
  }
  std::stable_sort(kept.begin(), kept.end(), [](const Range& a, const Range& b) { return a.low < b.low; });
  return kept;
}

}  // namespace

void splitShadow(const AsSegment& segment, const ShadowPlan& plan, Pieces& pieces) {
  const uint64_t first = segment.start;
  const uint64_t last = first + segment.bytes.size() - 1;
  const auto piece = [&](uint64_t from, uint64_t to) {
    const std::span<const uint8_t> bytes(segment.bytes);
    return Piece{static_cast<uint32_t>(from & 0xFFFF), bytes.subspan(from - first, to - from + 1)};
  };
  uint64_t cursor = first;
  // The cursor follows each range in turn, even backwards: where ranges overlap, their bytes are staged twice.
  for (const Range& range : rangesWithin(plan, first, last)) {
    if (cursor < range.low) pieces.plain.push_back(piece(cursor, range.low - 1));
    pieces.shadow.push_back(piece(range.low, range.high));
    cursor = range.high + 1;
  }
  if (cursor <= last) pieces.plain.push_back(piece(cursor, last));
}

}  // namespace kiln
