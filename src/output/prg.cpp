#include "output/prg.h"

#include <algorithm>

namespace kiln {

std::optional<Image> writePrg(const std::vector<AsSegment>& segments) {
  std::vector<const AsSegment*> ordered;
  for (const AsSegment& segment : segments) {
    if (!segment.bytes.empty()) ordered.push_back(&segment);
  }
  if (ordered.empty()) return std::nullopt;
  std::stable_sort(ordered.begin(), ordered.end(),
                   [](const AsSegment* a, const AsSegment* b) { return a->start < b->start; });
  Image image;
  uint64_t cursor = ordered.front()->start;
  appendWord(image, ordered.front()->start);
  for (const AsSegment* segment : ordered) {
    if (cursor < segment->start) image.appendZeros(segment->start - cursor);
    appendBytes(image, segment->bytes);
    cursor = (segment->start + segment->bytes.size()) & 0xFFFF;
  }
  return image;
}

}  // namespace kiln
