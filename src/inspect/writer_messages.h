// What the writers of output files say of a program.
#pragma once

#include <string_view>

#include "inspect/findings.h"
#include "inspect/placed_segments.h"
#include "inspect/program.h"

namespace kiln {

// The words of a message of kiln-as or kiln-check, without the program's name and the line end.
std::string_view wordsOf(std::string_view message);

// Reports the messages that kiln-as prints when it makes the file, each at the segment that it is about. `stage` is the
// last ".shadow_stage"; null data without one.
void reportWriterMessages(const Program& program, const PlacedSegments& segments, std::string_view stage,
                          Findings& findings);

}  // namespace kiln
