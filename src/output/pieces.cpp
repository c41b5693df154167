#include "output/pieces.h"

#include <algorithm>

namespace kiln {

// Cut to 16 bits, the end of a range may be below its start; such a range is empty.
ShadowSplitter::ShadowSplitter(const ShadowPlan& plan) {
  if (plan.stageAddress == 0) return;
  for (size_t i = 0; i + 1 < plan.ranges.size(); i += 2) {
    if (plan.ranges[i] <= plan.ranges[i + 1]) ranges_.push_back({plan.ranges[i], plan.ranges[i + 1], i});
  }
  std::sort(ranges_.begin(), ranges_.end(), isBefore);
  for (const Range& range : ranges_)
    highestUpTo_.push_back(std::max(range.high, highestUpTo_.empty() ? 0 : highestUpTo_.back()));
}

bool ShadowSplitter::isBefore(const Range& a, const Range& b) {
  return a.low != b.low ? a.low < b.low : a.number < b.number;
}

// The ranges that touch [first, last], clipped to it and ordered by start; equal starts keep the order in which they
// were declared. There may be as many ranges as segments, so not all are tested: the search goes back from the last
// range that starts by `last`, until no earlier one reaches `first`.
std::vector<ShadowSplitter::Range> ShadowSplitter::rangesWithin(uint64_t first, uint64_t last) const {
  std::vector<Range> kept;
  const auto end = std::upper_bound(ranges_.begin(), ranges_.end(), last,
                                    [](uint64_t address, const Range& range) { return address < range.low; });
  for (size_t i = static_cast<size_t>(end - ranges_.begin()); i-- > 0 && highestUpTo_[i] >= first;) {
    const Range& range = ranges_[i];
    if (range.high >= first) kept.push_back({std::max(first, range.low), std::min(last, range.high), range.number});
  }
  std::sort(kept.begin(), kept.end(), isBefore);
  return kept;
}

void ShadowSplitter::split(const AsSegment& segment, Pieces& pieces) const {
  const uint64_t first = segment.start;
  const uint64_t last = first + segment.bytes.size() - 1;
  const auto piece = [&](uint64_t from, uint64_t to) {
    const std::span<const uint8_t> bytes(segment.bytes);
    return Piece{static_cast<uint32_t>(from & 0xFFFF), bytes.subspan(from - first, to - from + 1)};
  };
  uint64_t cursor = first;
  // The cursor moves past each range, even backwards: where ranges overlap, their bytes are staged twice.
  for (const Range& range : rangesWithin(first, last)) {
    if (cursor < range.low) pieces.plain.push_back(piece(cursor, range.low - 1));
    pieces.shadow.push_back(piece(range.low, range.high));
    cursor = range.high + 1;
  }
  if (cursor <= last) pieces.plain.push_back(piece(cursor, last));
}

}  // namespace kiln
