// Segments at the same addresses.
#pragma once

#include "inspect/findings.h"
#include "inspect/placed_segments.h"
#include "inspect/program.h"

namespace kiln {

// Reports each segment that overwrites bytes of an earlier one when it is loaded, or that a PRG file has no place for.
void checkOverlaps(const Program& program, OutputKind output, const PlacedSegments& segments, Findings& findings);

}  // namespace kiln
