#include "passes/segment_cursor.h"

namespace kiln {
namespace {

// A gap this long or longer begins a new segment; a shorter one is filled.
constexpr uint32_t shortestSplit = 256;

}  // namespace

bool SegmentCursor::splitsAt(uint32_t target) const {
  if (!isOpen_ || target < pc_ || target - pc_ >= shortestSplit) return true;
  return (isEmpty_ && start_ == target) || crossesRegions(target);
}

bool SegmentCursor::crossesRegions(uint32_t target) const {
  if (regions_.count() < 2) return false;
  const int32_t from = regions_.find(pc_);
  return from >= 0 && from < regions_.find(target);
}

}  // namespace kiln
