#include "output/xex.h"

#include "output/atari_records.h"
#include "output/pieces.h"
#include "output/shadow.h"

namespace kiln {

std::optional<Image> writeXex(const std::vector<AsSegment>& segments, const ShadowPlan& plan, uint32_t runAddress,
                              Console& console) {
  const ShadowSplitter splitter(plan);
  Pieces pieces;
  for (const AsSegment& segment : segments) {
    if (!segment.bytes.empty()) splitter.split(segment, pieces);
  }
  Image image;
  appendMarker(image);
  for (const Piece& piece : pieces.plain)
    appendLoadSegment(image, piece.address, piece.bytes);
  if (!pieces.shadow.empty() && !stageShadow(image, plan.stageAddress, pieces.shadow, console)) return std::nullopt;
  appendRunAddress(image, runAddress);
  return image;
}

}  // namespace kiln
